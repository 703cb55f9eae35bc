#include "qoc/dsp/spectrum/OverlapAdd.h"

#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::dsp {

namespace {

// Drops the first `count` values and lets zeros follow.
void Shift(std::vector<float>& values, std::size_t count) noexcept {
    const auto kept = std::copy(values.begin() + static_cast<std::ptrdiff_t>(count), values.end(), values.begin());
    std::fill(kept, values.end(), 0.0F);
}

} // namespace

void OverlapAdd::Prepare(std::size_t channels, const Layout& layout, std::vector<float> analysis,
                         std::vector<float> synthesis) {
    fLayout = layout;
    fGrid.SetHop(layout.hop);
    fTransform.emplace(layout.transform);
    fAnalysis = std::move(analysis);
    fSynthesis = std::move(synthesis);
    fScratch.assign(layout.transform, 0.0F);
    fChannels.assign(channels, {});
    fSpectra.clear();
    for (Channel& channel : fChannels) {
        channel.input.assign(layout.frame, 0.0F);
        channel.output.assign(layout.transform, 0.0F);
        channel.spectrum.assign(fTransform->Bins(), {});
        fSpectra.emplace_back(channel.spectrum);
    }
    Reset();
}

void OverlapAdd::Reset() noexcept {
    for (Channel& channel : fChannels) {
        std::ranges::fill(channel.input, 0.0F);
        std::ranges::fill(channel.output, 0.0F);
    }
    fGrid.Reset();
}

void OverlapAdd::Process(const kromediatypes::AudioBlock& block, SpectrumProcessor& processor) noexcept {
    fGrid.Cut(
        block.frames,
        [&](std::size_t begin, std::size_t frames, std::size_t position) { Exchange(block, begin, frames, position); },
        [&] { RunFrame(processor); });
}

// Input first, for the output may be the same memory.
void OverlapAdd::Exchange(const kromediatypes::AudioBlock& block, std::size_t begin, std::size_t frames,
                          std::size_t position) noexcept {
    for (std::size_t channel = 0; channel < fChannels.size(); ++channel) {
        float* const newest = fChannels[channel].input.data() + (fLayout.frame - fLayout.hop) + position;
        std::transform(block.inputs[channel] + begin, block.inputs[channel] + begin + frames, newest, SaneSample);
        std::copy_n(fChannels[channel].output.data() + position, frames, block.outputs[channel] + begin);
    }
}

void OverlapAdd::RunFrame(SpectrumProcessor& processor) noexcept {
    for (Channel& channel : fChannels)
        Analyse(channel);
    processor.ProcessSpectra(fSpectra);
    for (Channel& channel : fChannels)
        Synthesise(channel);
}

void OverlapAdd::Analyse(Channel& channel) noexcept {
    for (std::size_t i = 0; i < fLayout.frame; ++i)
        fScratch[i] = channel.input[i] * fAnalysis[i];
    std::fill(fScratch.begin() + static_cast<std::ptrdiff_t>(fLayout.frame), fScratch.end(), 0.0F);
    fTransform->Forward(fScratch, channel.spectrum);
    Shift(channel.input, fLayout.hop);
}

void OverlapAdd::Synthesise(Channel& channel) noexcept {
    fTransform->Inverse(channel.spectrum, fScratch);
    Shift(channel.output, fLayout.hop);
    if (!fSynthesis.empty()) std::ranges::transform(fScratch, fSynthesis, fScratch.begin(), std::multiplies<>());
    for (std::size_t i = 0; i < fLayout.transform; ++i)
        channel.output[i] += fScratch[i];
}

} // namespace qoc::dsp
