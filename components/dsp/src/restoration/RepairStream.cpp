#include "qoc/dsp/restoration/RepairStream.h"

#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>

namespace qoc::dsp {

void RepairStream::Prepare(std::size_t channels, const Layout& layout) {
    fLayout = layout;
    const std::vector<float> silence(layout.Frame() + layout.hop);
    fChannels.assign(channels, {silence, silence});
    fGrid.SetHop(layout.hop);
}

void RepairStream::Reset() noexcept {
    for (Channel& channel : fChannels) {
        std::ranges::fill(channel.original, 0.0F);
        std::ranges::fill(channel.repaired, 0.0F);
    }
    fGrid.Reset();
}

void RepairStream::Process(const kromediatypes::AudioBlock& block, FrameRepairer& repairer) noexcept {
    fGrid.Cut(
        block.frames,
        [&](std::size_t begin, std::size_t frames, std::size_t position) { Exchange(block, begin, frames, position); },
        [&] { RunFrame(repairer); });
}

// Input first, for the output may be the same memory.
void RepairStream::Exchange(const kromediatypes::AudioBlock& block, std::size_t begin, std::size_t frames,
                            std::size_t position) noexcept {
    const std::size_t newest = fLayout.Frame() + position;
    for (std::size_t channel = 0; channel < fChannels.size(); ++channel) {
        float* const original = fChannels[channel].original.data() + newest;
        float* const repaired = fChannels[channel].repaired.data();
        std::transform(block.inputs[channel] + begin, block.inputs[channel] + begin + frames, original, SaneSample);
        std::copy_n(original, frames, repaired + newest);
        std::copy_n(repaired + fLayout.before + position, frames, block.outputs[channel] + begin);
    }
}

void RepairStream::RunFrame(FrameRepairer& repairer) noexcept {
    const auto hop = static_cast<std::ptrdiff_t>(fLayout.hop);
    const std::size_t frame = fLayout.Frame();
    for (std::size_t channel = 0; channel < fChannels.size(); ++channel) {
        auto& [original, repaired] = fChannels[channel];
        std::copy(original.begin() + hop, original.end(), original.begin());
        std::copy(repaired.begin() + hop, repaired.end(), repaired.begin());
        repairer.Repair(channel, std::span(original).first(frame), std::span(repaired).first(frame));
    }
}

} // namespace qoc::dsp
