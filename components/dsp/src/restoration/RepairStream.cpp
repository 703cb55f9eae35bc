#include "qoc/dsp/restoration/RepairStream.h"

#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>

namespace qoc::dsp {

void RepairStream::Prepare(std::size_t channels, const Layout& layout, std::span<const double> costs) {
    fLayout = layout;
    const std::vector<float> silence(layout.Frame() + 2 * layout.hop);
    fChannels.assign(channels, {silence, silence});
    fFrames.clear();
    for (Channel& channel : fChannels)
        fFrames.push_back({std::span(channel.original).subspan(layout.hop, layout.Frame()),
                           std::span(channel.repaired).subspan(layout.hop, layout.Frame())});
    fPace.Clear();
    for (const double cost : costs)
        fPace.Add(1, cost);
    fPace.SpreadOver(layout.hop);
    fGrid.SetHop(layout.hop);
    Reset();
}

void RepairStream::Reset() noexcept {
    for (Channel& channel : fChannels) {
        std::ranges::fill(channel.original, 0.0F);
        std::ranges::fill(channel.repaired, 0.0F);
    }
    fGrid.Reset();
    fPace.Restart();
}

void RepairStream::Process(const kromediatypes::AudioBlock& block, FrameRepairer& repairer) noexcept {
    fGrid.Cut(
        block.frames,
        [&](std::size_t begin, std::size_t frames, std::size_t position) {
            Exchange(block, begin, frames, position);
            fPace.RunUntil(position + frames, [&](std::size_t step) {
                if (step == 0) repairer.Begin(fFrames);
                repairer.Step(step);
            });
        },
        [&] { Advance(); });
}

// Input first, for the output may be the same memory.
void RepairStream::Exchange(const kromediatypes::AudioBlock& block, std::size_t begin, std::size_t frames,
                            std::size_t position) noexcept {
    const std::size_t newest = fLayout.hop + fLayout.Frame() + position;
    for (std::size_t channel = 0; channel < fChannels.size(); ++channel) {
        float* const original = fChannels[channel].original.data() + newest;
        float* const repaired = fChannels[channel].repaired.data();
        std::transform(block.inputs[channel] + begin, block.inputs[channel] + begin + frames, original, SaneSample);
        std::copy_n(original, frames, repaired + newest);
        std::copy_n(repaired + fLayout.before + position, frames, block.outputs[channel] + begin);
    }
}

void RepairStream::Advance() noexcept {
    const auto hop = static_cast<std::ptrdiff_t>(fLayout.hop);
    for (auto& [original, repaired] : fChannels) {
        std::copy(original.begin() + hop, original.end(), original.begin());
        std::copy(repaired.begin() + hop, repaired.end(), repaired.begin());
    }
    fPace.Restart();
}

} // namespace qoc::dsp
