#include "qoc/dsp/restoration/PacedRepairStream.h"

#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>

namespace qoc::dsp {

void PacedRepairStream::Prepare(std::size_t channels, const Layout& layout, std::size_t steps) {
    fLayout = layout;
    fSteps = steps;
    const std::vector<float> silence(layout.Frame() + 2 * layout.hop);
    fChannels.assign(channels, {silence, silence});
    fGrid.SetHop(layout.hop);
    Reset();
}

void PacedRepairStream::Reset() noexcept {
    for (Channel& channel : fChannels) {
        std::ranges::fill(channel.original, 0.0F);
        std::ranges::fill(channel.repaired, 0.0F);
    }
    fGrid.Reset();
    fDone = 0;
    fIsBusy = false;
}

void PacedRepairStream::Process(const kromediatypes::AudioBlock& block, PacedFrameRepairer& repairer) noexcept {
    fGrid.Cut(
        block.frames,
        [&](std::size_t begin, std::size_t frames, std::size_t position) {
            Exchange(block, begin, frames, position);
            WorkUntil(position + frames, repairer);
        },
        [&] { Advance(); });
}

// Input first, for the output may be the same memory.
void PacedRepairStream::Exchange(const kromediatypes::AudioBlock& block, std::size_t begin, std::size_t frames,
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

// As much of all channels' work as this much of the hop's time is worth, and the first step at its beginning.
void PacedRepairStream::WorkUntil(std::size_t position, PacedFrameRepairer& repairer) noexcept {
    const std::size_t due = (fSteps * fChannels.size() * position + fLayout.hop - 1) / fLayout.hop;
    for (; fDone < due; ++fDone) {
        const std::size_t step = fDone % fSteps;
        if (step == 0) {
            auto& [original, repaired] = fChannels[fDone / fSteps];
            const std::size_t frame = fLayout.Frame();
            fIsBusy = repairer.Begin(fDone / fSteps, std::span(original).subspan(fLayout.hop, frame),
                                     std::span(repaired).subspan(fLayout.hop, frame));
        }
        if (fIsBusy) repairer.Step(step);
    }
}

void PacedRepairStream::Advance() noexcept {
    const auto hop = static_cast<std::ptrdiff_t>(fLayout.hop);
    for (auto& [original, repaired] : fChannels) {
        std::copy(original.begin() + hop, original.end(), original.begin());
        std::copy(repaired.begin() + hop, repaired.end(), repaired.begin());
    }
    fDone = 0;
}

} // namespace qoc::dsp
