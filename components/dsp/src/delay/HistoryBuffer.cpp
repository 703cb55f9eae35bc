#include "qoc/dsp/delay/HistoryBuffer.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

void HistoryBuffer::Prepare(std::size_t channels, std::size_t capacity) {
    fCapacity = capacity;
    fChannels.assign(channels, std::vector<float>(2 * capacity));
    fNow = 0;
}

void HistoryBuffer::Reset() noexcept {
    for (std::vector<float>& channel : fChannels)
        std::ranges::fill(channel, 0.0F);
    fNow = 0;
}

void HistoryBuffer::Write(std::span<const float* const> inputs, std::size_t offset, std::size_t frames) noexcept {
    for (std::size_t channel = 0; channel < fChannels.size(); ++channel) {
        const float* input = inputs[channel] + offset;
        float* kept = fChannels[channel].data();
        for (std::size_t i = 0; i < frames; ++i) {
            const std::size_t slot = Slot(fNow + static_cast<std::int64_t>(i));
            kept[slot] = kept[slot + fCapacity] = std::isfinite(input[i]) ? input[i] : 0.0F;
        }
    }
    fNow += static_cast<std::int64_t>(frames);
}

const float* HistoryBuffer::At(std::size_t channel, std::int64_t time) const noexcept {
    return fChannels[channel].data() + Slot(time);
}

} // namespace qoc::dsp
