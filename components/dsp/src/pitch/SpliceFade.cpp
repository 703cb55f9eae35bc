#include "qoc/dsp/pitch/SpliceFade.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

namespace {

// How fast the level recovers.
constexpr double kRecovery = 0.03; // seconds
constexpr double kRecoveryInHit = 0.001;

} // namespace

void SpliceFade::Reset() noexcept {
    fBegin = -1;
    fLength = 1;
    fLikeness = 1;
    fLevel = fFormerLevel = 1;
    fGain = 1;
    fFormerGain = 0;
}

void SpliceFade::Begin(double position, double length, const Pieces& pieces) noexcept {
    fBegin = position;
    fLength = length;
    fLikeness = pieces.likeness;
    fFormerLevel = fLevel;
    fLevel = pieces.goesBack ? std::min(1.0, fLevel * std::sqrt(kMostRise / pieces.rise)) : 1;
}

void SpliceFade::Advance(double position, bool isHit) noexcept {
    fLevel += (1 - fLevel) / ((isHit ? kRecoveryInHit : kRecovery) * fSampleRate);
    const double share = std::min(1.0, (position - fBegin) / fLength);
    const double former = 1 - share;
    // What two sounds of the same power add up to by their correlation.
    const double power = share * share + former * former + 2 * fLikeness * share * former;
    const double level = former > 0 ? 1 / std::sqrt(power) : 1;
    fGain = fLevel * level * share;
    fFormerGain = fFormerLevel * level * former;
}

} // namespace qoc::dsp
