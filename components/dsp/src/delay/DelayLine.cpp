#include "qoc/dsp/delay/DelayLine.h"

#include <algorithm>
#include <bit>

namespace qoc::dsp {

void DelayLine::Prepare(std::size_t longest) {
    const std::size_t size = std::bit_ceil(longest + kRepeated + 1);
    fSamples.assign(size + kRepeated, 0.0F);
    fMask = size - 1;
    fPosition = 0;
}

void DelayLine::Reset() noexcept {
    std::ranges::fill(fSamples, 0.0F);
    fPosition = 0;
}

} // namespace qoc::dsp
