#include "qoc/dsp/spectrum/OverlapAdd.h"

#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>
#include <utility>

namespace qoc::dsp {

namespace {

// What goes with a transform costs so much of it.
constexpr double kWindowCost = 0.5;
constexpr double kAddCost = 0.5;

// Calls `take(place, i, count)` for the one or two runs of a ring that begin at `place` and hold the values from
// `begin` to below `end`.
template <class Take>
void CutRing(std::size_t ring, std::size_t place, std::size_t begin, std::size_t end, const Take& take) noexcept {
    while (begin < end) {
        const std::size_t at = (place + begin) % ring;
        const std::size_t count = std::min(end - begin, ring - at);
        take(at, begin, count);
        begin += count;
    }
}

} // namespace

void OverlapAdd::Prepare(std::size_t channels, const Layout& layout, std::span<const Work> work,
                         std::vector<float> analysis, std::vector<float> synthesis) {
    fLayout = layout;
    fGrid.SetHop(layout.hop);
    fTransform.emplace(layout.transform);
    fAnalysis = std::move(analysis);
    fSynthesis = std::move(synthesis);
    fScratch.assign(layout.transform, 0.0F);
    fChannels.assign(channels, {});
    fSpectra.clear();
    const std::size_t hopsOut = (layout.transform + 2 * layout.hop - 1) / layout.hop;
    for (Channel& channel : fChannels) {
        channel.input.assign(layout.frame + layout.hop, 0.0F);
        channel.output.assign(hopsOut * layout.hop, 0.0F);
        channel.spectrum.assign(fTransform->Bins(), {});
        fSpectra.emplace_back(channel.spectrum);
    }
    PlanWork(work);
    Reset();
}

void OverlapAdd::Reset() noexcept {
    for (Channel& channel : fChannels) {
        std::ranges::fill(channel.input, 0.0F);
        std::ranges::fill(channel.output, 0.0F);
    }
    fGrid.Reset();
    fPace.Restart();
    fOldest = 0;
    fHeard = 0;
    fHasFrame = false;
}

void OverlapAdd::Process(const kromediatypes::AudioBlock& block, SpectrumProcessor& processor) noexcept {
    fGrid.Cut(
        block.frames,
        [&](std::size_t begin, std::size_t frames, std::size_t position) {
            Exchange(block, begin, frames, position);
            if (fHasFrame) fPace.RunUntil(position + frames, [&](std::size_t step) { Do(fJobs[step], processor); });
        },
        [&] { FinishHop(processor); });
}

void OverlapAdd::PlanWork(std::span<const Work> work) {
    fPace.Clear();
    fJobs.clear();
    const std::size_t parts = PacedSteps::CountFor(fLayout.hop);
    for (std::size_t channel = 0; channel < fChannels.size(); ++channel) {
        AddJobs(Kind::kWindow, channel, (parts + 1) / 2, kWindowCost);
        AddJobs(Kind::kForward, channel, parts, 1);
    }
    std::size_t numbered = 0;
    for (const Work& each : work) {
        fPace.Add(each.steps, each.cost);
        for (std::size_t step = 0; step < each.steps; ++step)
            fJobs.push_back({Kind::kProcess, 0, {numbered++}});
    }
    for (std::size_t channel = 0; channel < fChannels.size(); ++channel) {
        AddJobs(Kind::kInverse, channel, parts, 1);
        AddJobs(Kind::kAdd, channel, (parts + 1) / 2, kAddCost);
    }
    fPace.SpreadOver(fLayout.hop);
}

void OverlapAdd::AddJobs(Kind kind, std::size_t channel, std::size_t parts, double cost) {
    fPace.Add(parts, cost);
    for (std::size_t part = 0; part < parts; ++part)
        fJobs.push_back({kind, channel, {part, parts}});
}

// Input first, for the output may be the same memory.
void OverlapAdd::Exchange(const kromediatypes::AudioBlock& block, std::size_t begin, std::size_t frames,
                          std::size_t position) noexcept {
    for (std::size_t index = 0; index < fChannels.size(); ++index) {
        Channel& channel = fChannels[index];
        float* const newest = channel.input.data() + (fOldest + fLayout.frame) % channel.input.size() + position;
        float* const heard = channel.output.data() + fHeard + position;
        std::transform(block.inputs[index] + begin, block.inputs[index] + begin + frames, newest, SaneSample);
        std::copy_n(heard, frames, block.outputs[index] + begin);
        std::fill_n(heard, frames, 0.0F);
    }
}

void OverlapAdd::FinishHop(SpectrumProcessor& processor) noexcept {
    fPace.Restart();
    fHasFrame = true;
    if (fChannels.empty()) return;
    fOldest = (fOldest + fLayout.hop) % fChannels.front().input.size();
    fHeard = (fHeard + fLayout.hop) % fChannels.front().output.size();
    processor.BeginFrame();
}

void OverlapAdd::Do(const Job& job, SpectrumProcessor& processor) noexcept {
    Channel& channel = fChannels[job.channel];
    const auto range = StepRange::Of(job.part.index, job.part.count, fLayout.transform);
    switch (job.kind) {
    case Kind::kWindow: return Window(channel, range);
    case Kind::kForward: return fTransform->Forward(fScratch, channel.spectrum, job.part);
    case Kind::kProcess: return processor.ProcessSpectra(fSpectra, job.part.index);
    case Kind::kInverse: return fTransform->Inverse(channel.spectrum, fScratch, job.part);
    case Kind::kAdd: return Add(channel, range);
    }
}

void OverlapAdd::Window(const Channel& channel, StepRange range) noexcept {
    const auto [begin, end] = range;
    const auto place = [this](std::size_t i) { return fScratch.begin() + static_cast<std::ptrdiff_t>(i); };
    const std::size_t sounding = std::clamp(fLayout.frame, begin, end);
    CutRing(channel.input.size(), fOldest, begin, sounding, [&](std::size_t at, std::size_t i, std::size_t count) {
        std::transform(&channel.input[at], &channel.input[at] + count, &fAnalysis[i], place(i), std::multiplies<>());
    });
    std::fill(place(sounding), place(end), 0.0F);
}

// From the next hop on.
void OverlapAdd::Add(Channel& channel, StepRange range) noexcept {
    const auto [begin, end] = range;
    if (!fSynthesis.empty()) {
        for (std::size_t i = begin; i < end; ++i)
            fScratch[i] *= fSynthesis[i];
    }
    CutRing(
        channel.output.size(), fHeard + fLayout.hop, begin, end, [&](std::size_t at, std::size_t i, std::size_t count) {
            std::transform(&fScratch[i], &fScratch[i] + count, &channel.output[at], &channel.output[at], std::plus<>());
        });
}

} // namespace qoc::dsp
