#pragma once

#include "qoc/dsp/pitch/ScaleQuantizer.h"

#include <optional>

namespace qoc::dsp {

// Decides by how much a voice is corrected: which note it is pulled to, whether it is near enough to be pulled, and how
// fast. Owned by the effect; it counts time in samples.
//
// Sensitivity is the reach of the notes in percent of a semitone, that is in cents: a pitch further away from the
// nearest note of the scale is left alone. At 50 % the chromatic scale reaches every pitch, at 100 % every scale does;
// at 0 % nothing is corrected.
//
// Attack is the time that it takes to pull a pitch nine tenths of its way. What is left goes on shrinking at that rate,
// so a held tone ends on its note; a vibrato faster than the attack stays in the voice. A voice that has fallen silent
// is let go at the same rate.
class PitchCorrector {
public:
    void SetScale(MusicalScale scale, int key) noexcept { fScale.SetScale(scale, key); }
    // Percent, 0...100.
    void SetSensitivity(double percent) noexcept { fReach = percent; }
    void SetAttack(double samples) noexcept { fAttack = samples; }
    void Reset() noexcept;

    // The correction in cents after `samples` more, in which the pitch was `pitch` semitones (69 = A), or nothing when
    // there was no pitch to be heard.
    double Advance(std::optional<double> pitch, double samples) noexcept;

private:
    double Wanted(std::optional<double> pitch) noexcept;

    ScaleQuantizer fScale;
    double fReach = 50;
    double fAttack = 1;
    double fCorrection = 0; // cents
    std::optional<int> fNote;
    bool fPulling = false;
};

} // namespace qoc::dsp
