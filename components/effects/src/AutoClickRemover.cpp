#include "qoc/components/AutoClickRemover.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

// A power of two, so that every count is stored exactly.
constexpr float kMostRepairs = 1048576;

constexpr ParameterRow kRows[] = {
    {.index = kAutoClickRemoverThreshold,
     .id = "threshold",
     .name = "$$$/AutoClickRemover/ThresholdName=Threshold",
     .lo = 1,
     .hi = 100,
     .defaultValue = 30,
     .decimals = 1},
    {.index = kAutoClickRemoverComplexity,
     .id = "complexity",
     .name = "$$$/AutoClickRemover/ComplexityName=Complexity",
     .lo = 1,
     .hi = 100,
     .defaultValue = 16,
     .decimals = 1},
    {.index = kAutoClickRemoverRepairs,
     .id = "repairs",
     .name = "$$$/AutoClickRemover/RepairsName=Clicks Repaired",
     .hi = kMostRepairs,
     .defaultValue = 0,
     .decimals = 0,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
};

constexpr double kShortestFrame = 0.04; // seconds
constexpr double kLeastFrame = 512;     // samples, at the lowest sample rates
constexpr std::size_t kNeighbourhoodsPerFrame = 4;

// What the two parameters mean, at 0 and per unit.
constexpr double kThresholdBase = 2; // times the usual error
constexpr double kThresholdSlope = 0.15;
constexpr double kOrderBase = 16;
constexpr double kOrderSlope = 0.48;
constexpr double kLongestBase = 0.5e-3; // seconds
constexpr double kLongestSlope = 0.05e-3;
constexpr std::size_t kLargestOrder = 64;
// How much finer the model is that fills a click in.
constexpr std::size_t kInterpolationOrders = 2;

constexpr int kPasses = 4;
constexpr double kGuardSeconds = 0.2e-3;
// Samples that are no farther apart than that are of one click.
constexpr std::size_t kOneClick = 4;

} // namespace

AutoClickRemover::AutoClickRemover()
    : ComponentBase(kAutoClickRemoverComponentID, std::move(ParameterTable().Add(kRows))) {
}

AutoClickRemover::~AutoClickRemover() = default;

// A click at the sound's end is filled in, and what it is told to be longer than it is.
std::size_t AutoClickRemover::Tail() const noexcept {
    const double longest = (kLongestBase + kLongestSlope * Natural(kAutoClickRemoverComplexity)) * GetSampleRate();
    return static_cast<std::size_t>(std::lround(longest)) + kPasses;
}

void AutoClickRemover::PrepareProcessing(std::size_t /*maximumBlock*/) {
    const std::size_t frame = // that a model is fitted to
        std::bit_ceil(static_cast<std::size_t>(std::max(kLeastFrame, kShortestFrame * GetSampleRate())));
    // Two periods of the lowest voices lie around every place, so that their pulses are known.
    fLayout = {.before = frame / 2, .hop = frame / 2, .after = frame / 2};
    fStream.Prepare(GetNumberOfInputChannels(), fLayout);
    fModel.Prepare(frame, kLargestOrder);
    fFineModel.Prepare(frame, kInterpolationOrders * kLargestOrder);
    const std::size_t samples = fLayout.Frame();
    fDetector.Prepare(samples, frame / kNeighbourhoodsPerFrame, GetSampleRate());
    fInterpolator.Prepare(samples, kInterpolationOrders * kLargestOrder);
    fSound.assign(samples, 0.0);
    fRestored.assign(samples, 0.0);
    fUnknown.reserve(samples);
}

void AutoClickRemover::ResetProcessing() noexcept {
    fStream.Reset();
    fRepairs = 0;
    StoreRepairs();
}

void AutoClickRemover::ReadParameters(bool /*settle*/) noexcept {
    const double complexity = Natural(kAutoClickRemoverComplexity);
    fOrder = static_cast<std::size_t>(std::lround(kOrderBase + kOrderSlope * complexity));
    fSettings.threshold = kThresholdBase + kThresholdSlope * Natural(kAutoClickRemoverThreshold);
    fSettings.longest =
        static_cast<std::size_t>(std::lround((kLongestBase + kLongestSlope * complexity) * GetSampleRate()));
}

void AutoClickRemover::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    fStream.Process(block, *this);
    StoreRepairs();
}

// Clicks spoil the model that finds them: the first pass takes more away than is bad, the second looks again with the
// model of what is left, and the others look for what was hidden or not wholly found.
void AutoClickRemover::Repair(std::size_t /*channel*/, std::span<const float> /*original*/,
                              std::span<float> repaired) noexcept {
    std::ranges::copy(repaired, fSound.begin());
    fRestored = fSound;
    fUnknown.clear();
    const auto guard = static_cast<std::size_t>(kGuardSeconds * GetSampleRate());
    for (int pass = 0; pass < kPasses; ++pass) {
        fModel.Fit(Middle(), fOrder);
        const bool isFromNew = pass < 2;
        if (isFromNew) fUnknown.clear();
        ClickDetector::Settings settings = fSettings;
        settings.isModelSpoiled = pass == 0;
        const auto clicks = fDetector.Find(fModel, isFromNew ? fSound : fRestored, settings);
        if (clicks.empty() && (!isFromNew || pass == 0)) break;
        for (const ClickDetector::Click& click : clicks)
            AddClick(click, pass == 0 ? guard : isFromNew ? 0 : 1);
        Restore();
    }
    TakeOver(repaired);
}

// Of what has been restored, as much as a model is fitted to.
std::span<const double> AutoClickRemover::Middle() const noexcept {
    return std::span(fRestored).subspan(fLayout.before - fLayout.hop / 2, 2 * fLayout.hop);
}

void AutoClickRemover::AddClick(const ClickDetector::Click& click, std::size_t guard) noexcept {
    const std::size_t reach = kInterpolationOrders * fOrder;
    const std::size_t begin = std::max(click.begin - std::min(click.begin, guard), reach);
    const std::size_t end = std::min(click.end + guard, fSound.size() - reach);
    for (std::size_t place = begin; place < end; ++place) {
        const auto next = std::ranges::lower_bound(fUnknown, place);
        if (next == fUnknown.end() || *next != place) fUnknown.insert(next, place);
    }
}

// A finer model than the one that finds clicks tells what was there.
void AutoClickRemover::Restore() noexcept {
    fFineModel.Fit(Middle(), kInterpolationOrders * fOrder);
    fRestored = fSound;
    fInterpolator.Restore(fFineModel.Coefficients(), fUnknown, fRestored);
}

// Whole clicks that end within the hop or go on behind it, but for the samples that have been heard.
void AutoClickRemover::TakeOver(std::span<float> repaired) noexcept {
    const std::size_t end = fLayout.before + fLayout.hop;
    for (std::size_t first = 0, next = 0; first < fUnknown.size(); first = next) {
        next = first + 1;
        while (next < fUnknown.size() && fUnknown[next] <= fUnknown[next - 1] + kOneClick)
            ++next;
        if (fUnknown[next - 1] < fLayout.before || fUnknown[first] >= end) continue;
        ++fRepairs;
        for (std::size_t i = first; i < next; ++i) {
            const std::size_t place = fUnknown[i];
            if (place >= fLayout.before) repaired[place] = static_cast<float>(fRestored[place]);
        }
    }
}

void AutoClickRemover::StoreRepairs() noexcept {
    if (fRepairs == fStoredRepairs) return;
    fStoredRepairs = fRepairs;
    const auto count = std::min(static_cast<float>(fRepairs), kMostRepairs);
    StoreParameter(kAutoClickRemoverRepairs, GetParameterInfo(kAutoClickRemoverRepairs)->ToNormalised(count));
}

} // namespace qoc::components
