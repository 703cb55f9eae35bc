#pragma once

#include "qoc/components/Biquad.h"
#include "qoc/components/SmoothedValue.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::components {

// A fixed number of second-order sections in a row, on several channels, that glide to other coefficients while sound
// goes through. Owned by its effect; everything but Prepare is real time safe.
class GlidingSections {
public:
    void Prepare(double sampleRate, std::size_t channels, std::size_t sections);
    // Forgets all sound.
    void Reset() noexcept;
    // As many as prepared. `settle`: without a glide.
    void Set(std::span<const BiquadCoefficients> sections, bool settle) noexcept;
    // Once for every frame, before its samples.
    void Advance() noexcept;
    double Process(std::size_t channel, double sample) noexcept;

private:
    void Apply() noexcept;

    std::size_t fSections = 0;
    std::vector<Biquad> fBiquads; // of the first channel, of the second, ...
    std::vector<BiquadCoefficients> fFrom;
    std::vector<BiquadCoefficients> fTo;
    std::vector<BiquadCoefficients> fNow;
    SmoothedValue fGlide; // 0...1
};

} // namespace qoc::components
