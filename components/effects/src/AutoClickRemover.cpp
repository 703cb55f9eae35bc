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

// What the two parameters mean, at 0 and per unit.
constexpr double kThresholdBase = 2; // times the usual error
constexpr double kThresholdSlope = 0.15;
constexpr double kOrderBase = 16;
constexpr double kOrderSlope = 0.48;
constexpr double kLongestBase = 0.5e-3; // seconds
constexpr double kLongestSlope = 0.05e-3;
constexpr std::size_t kLargestOrder = 64;

constexpr double kLongerBySamples = 4; // than it is may a click be told to be
// The part of the time in which is found out whether there are clicks. Where there are none that is all the work; where
// there are, several times as much is left for the rest.
constexpr double kLooking = 0.6;
// Above that rate the rest gets more of the time, for it comes near to what a processor can do.
constexpr double kFullLookingRate = 50000;
// More is found by and by than one can tell at first: the rest is done faster, so that there is time for that.
constexpr double kAhead = 1.3;

} // namespace

AutoClickRemover::AutoClickRemover()
    : ComponentBase(kAutoClickRemoverComponentID, std::move(ParameterTable().Add(kRows))) {
}

AutoClickRemover::~AutoClickRemover() = default;

// A click at the sound's end is filled in, and what it is told to be longer than it is.
std::size_t AutoClickRemover::Tail() const noexcept {
    const double longest = (kLongestBase + kLongestSlope * Natural(kAutoClickRemoverComplexity)) * GetSampleRate();
    return static_cast<std::size_t>(std::lround(longest + kLongerBySamples));
}

void AutoClickRemover::PrepareProcessing(std::size_t /*maximumBlock*/) {
    const std::size_t frame = // that a model is fitted to
        std::bit_ceil(static_cast<std::size_t>(std::max(kLeastFrame, kShortestFrame * GetSampleRate())));
    // Two periods of the lowest voices lie around every place, so that their pulses are known.
    const RepairStream::Layout layout = {.before = frame / 2, .hop = frame / 2, .after = frame / 2};
    fSteps = PacedSteps::CountFor(layout.hop);
    const double looking = kLooking * std::min(1.0, kFullLookingRate / GetSampleRate());
    fLookingSteps = static_cast<std::size_t>(std::lround(looking * static_cast<double>(fSteps)));
    fStream.Prepare(GetNumberOfInputChannels(), layout, std::vector<double>(fSteps, 1));
    fFiller.Prepare(layout.Frame(), frame, kLargestOrder);
    fRepairers = std::vector<ClickRepairer>(GetNumberOfInputChannels());
    for (ClickRepairer& repairer : fRepairers)
        repairer.Prepare(layout, GetSampleRate(), kLargestOrder, fFiller);
}

void AutoClickRemover::ResetProcessing() noexcept {
    fStream.Reset();
    fRepairs = 0;
    StoreRepairs();
}

void AutoClickRemover::ReadParameters(bool /*settle*/) noexcept {
    const double complexity = Natural(kAutoClickRemoverComplexity);
    fSettings.order = static_cast<std::size_t>(std::lround(kOrderBase + kOrderSlope * complexity));
    fSettings.detection.threshold = kThresholdBase + kThresholdSlope * Natural(kAutoClickRemoverThreshold);
    fSettings.detection.longest =
        static_cast<std::size_t>(std::lround((kLongestBase + kLongestSlope * complexity) * GetSampleRate()));
}

void AutoClickRemover::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    fStream.Process(block, *this);
    StoreRepairs();
}

void AutoClickRemover::Begin(std::span<const Frame> frames) noexcept {
    for (std::size_t channel = 0; channel < fRepairers.size(); ++channel)
        fRepairers[channel].Begin(frames[channel].repaired, fSettings);
}

// How much there is to do becomes known by and by: each step does its part of what is left as far as one can tell.
void AutoClickRemover::Step(std::size_t step) noexcept {
    if (step < fLookingSteps) return Look(fLookingSteps - step);
    Repair(fSteps - step);
    if (step + 1 < fSteps) return;
    for (const ClickRepairer& repairer : fRepairers)
        fRepairs += repairer.Repairs();
}

void AutoClickRemover::Look(std::size_t stepsLeft) noexcept {
    double left = 0;
    for (const ClickRepairer& repairer : fRepairers)
        left += repairer.CostOfLooking();
    double budget = left / static_cast<double>(stepsLeft);
    for (ClickRepairer& repairer : fRepairers) {
        while (repairer.IsLooking() && budget > 0)
            budget -= repairer.Work();
    }
}

void AutoClickRemover::Repair(std::size_t stepsLeft) noexcept {
    double left = 0;
    for (const ClickRepairer& repairer : fRepairers)
        left += repairer.CostLeft();
    double budget = kAhead * left / static_cast<double>(stepsLeft);
    for (ClickRepairer& repairer : fRepairers) {
        while (!repairer.IsDone() && (budget > 0 || stepsLeft == 1))
            budget -= repairer.Work();
    }
}

void AutoClickRemover::StoreRepairs() noexcept {
    if (fRepairs == fStoredRepairs) return;
    fStoredRepairs = fRepairs;
    const auto count = std::min(static_cast<float>(fRepairs), kMostRepairs);
    StoreParameter(kAutoClickRemoverRepairs, GetParameterInfo(kAutoClickRemoverRepairs)->ToNormalised(count));
}

} // namespace qoc::components
