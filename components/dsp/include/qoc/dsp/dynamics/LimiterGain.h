#pragma once

#include "qoc/dsp/dynamics/LimiterEnvelope.h"

#include <array>
#include <cstddef>

namespace qoc::dsp {

// The gain of a look-ahead limiter whose look-ahead may change: an envelope with the new one runs along unheard until
// it has seen enough, and is faded to. Neither lies above what is allowed, and so does nothing between them.
class LimiterGain {
public:
    // As of a LimiterEnvelope.
    void Prepare(std::size_t longestLookAhead, double sampleRate);
    // 2 to the longest, in samples. `settle`: back to a gain of 1, as if nothing had gone before.
    void SetLookAhead(std::size_t samples, bool settle) noexcept;
    void SetRelease(double samples) noexcept;

    // Takes the largest gain, 0...1, that the next sample allows. Returns the gain of the sample that came the longest
    // look-ahead and LimiterEnvelope::kHold earlier.
    float Next(float allowed) noexcept;

private:
    // So slow that the gain hardly changes along the samples that one peak is made of.
    std::size_t FadeLength() const noexcept { return 4 * fLongest; }
    LimiterEnvelope& Present() noexcept { return fEnvelopes[fPresent]; }
    LimiterEnvelope& Other() noexcept { return fEnvelopes[1 - fPresent]; }
    void StartChange() noexcept;

    std::array<LimiterEnvelope, 2> fEnvelopes;
    std::size_t fPresent = 0;
    std::size_t fLongest = 2;
    std::size_t fWanted = 2;
    std::size_t fUnheard = 0; // samples that the other envelope has yet to see
    std::size_t fFading = 0;  // samples until it is the only one
};

} // namespace qoc::dsp
