#pragma once

#include <cmath>

namespace qoc::dsp {

// The sample, or 0 for one that is no number or absurdly large, so that nothing that remembers sound is ever poisoned.
// The limit is far above any sound and leaves room for gains and sums below the largest float.
inline float SaneSample(float sample) noexcept {
    constexpr float kAbsurd = 1e15F;
    return std::abs(sample) < kAbsurd ? sample : 0.0F;
}

} // namespace qoc::dsp
