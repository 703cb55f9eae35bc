#include "qoc/dsp/dynamics/LimiterGain.h"

#include <algorithm>

namespace qoc::dsp {

void LimiterGain::Prepare(std::size_t longestLookAhead, double sampleRate) {
    fLongest = longestLookAhead;
    for (LimiterEnvelope& envelope : fEnvelopes)
        envelope.Prepare(longestLookAhead, sampleRate);
    SetLookAhead(longestLookAhead, true);
}

void LimiterGain::SetLookAhead(std::size_t samples, bool settle) noexcept {
    fWanted = std::clamp<std::size_t>(samples, 2, fLongest);
    if (!settle) return;
    Present().Start(fWanted);
    fUnheard = fFading = 0;
}

void LimiterGain::SetRelease(double samples) noexcept {
    for (LimiterEnvelope& envelope : fEnvelopes)
        envelope.SetRelease(samples);
}

float LimiterGain::Next(float allowed) noexcept {
    constexpr auto kOne = static_cast<double>(LimiterEnvelope::kOne);
    // Rounded down, so that no rounding lets a peak through.
    const auto asked = static_cast<LimiterEnvelope::Fixed>(static_cast<double>(allowed) * kOne);
    if (fFading == 0 && Present().LookAhead() != fWanted) StartChange();
    const auto gain = static_cast<double>(Present().Next(asked));
    if (fFading == 0) return static_cast<float>(gain / kOne);
    const auto other = static_cast<double>(Other().Next(asked));
    if (fUnheard > 0) {
        --fUnheard;
        return static_cast<float>(gain / kOne);
    }
    const double left = static_cast<double>(--fFading) / static_cast<double>(FadeLength());
    const double share = left * left * (3 - 2 * left); // without a kink at either end
    if (fFading == 0) fPresent = 1 - fPresent;
    return static_cast<float>((other + share * (gain - other)) / kOne);
}

void LimiterGain::StartChange() noexcept {
    Other().StartFrom(Present(), fWanted);
    fUnheard = Other().Sight();
    fFading = FadeLength();
}

} // namespace qoc::dsp
