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

void DelayLine::Write(std::span<const float> samples) noexcept {
    while (!samples.empty()) {
        const std::size_t place = (fPosition + 1) & fMask;
        const std::size_t count = std::min(samples.size(), fMask + 1 - place);
        std::copy_n(samples.data(), count, fSamples.data() + place);
        if (place < kRepeated)
            std::copy_n(samples.data(), std::min(count, kRepeated - place), fSamples.data() + place + fMask + 1);
        fPosition = place + count - 1;
        samples = samples.subspan(count);
    }
}

void DelayLine::Read(std::size_t delay, std::span<float> output) const noexcept {
    const std::size_t place = (fPosition - delay) & fMask;
    const std::size_t count = std::min(output.size(), fMask + 1 - place);
    std::copy_n(fSamples.data() + place, count, output.data());
    std::copy_n(fSamples.data(), output.size() - count, output.data() + count);
}

} // namespace qoc::dsp
