#include "qoc/dsp/pitch/PitchCorrector.h"

#include <cmath>

namespace qoc::dsp {

namespace {

constexpr double kCentsPerSemitone = 100;
// How far a pitch must go beyond the border to the next note, and beyond the reach, before it is let go: keeps a voice
// that wavers there from jumping to and fro.
constexpr double kHysteresis = 5; // cents
// A correction that no ear and no meter tells from none.
constexpr double kNothing = 1e-3; // cents

double Distance(double pitch, int note) {
    return std::abs(pitch - note) * kCentsPerSemitone;
}

} // namespace

void PitchCorrector::Reset() noexcept {
    fCorrection = 0;
    fNote.reset();
    fPulling = false;
}

double PitchCorrector::Advance(std::optional<double> pitch, double samples) noexcept {
    const double wanted = Wanted(pitch);
    const double tenfolds = samples / fAttack;
    fCorrection = wanted + (fCorrection - wanted) * std::pow(10.0, -tenfolds);
    if (wanted == 0 && std::abs(fCorrection) < kNothing) fCorrection = 0;
    return fCorrection;
}

double PitchCorrector::Wanted(std::optional<double> pitch) noexcept {
    if (!pitch) {
        fNote.reset();
        fPulling = false;
        return 0;
    }
    const int nearest = fScale.Nearest(*pitch);
    const bool keeps =
        fNote && fScale.Contains(*fNote) && Distance(*pitch, *fNote) < Distance(*pitch, nearest) + 2 * kHysteresis;
    if (!keeps) fNote = nearest;
    const double distance = Distance(*pitch, *fNote);
    fPulling = fReach > 0 && distance <= fReach + (fPulling ? kHysteresis : 0);
    return fPulling ? (*fNote - *pitch) * kCentsPerSemitone : 0;
}

} // namespace qoc::dsp
