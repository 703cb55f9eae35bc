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
    {.id = "threshold",
     .name = "$$$/AutoClickRemover/ThresholdName=Threshold",
     .lo = 1,
     .hi = 100,
     .defaultValue = 30,
     .decimals = 1},
    {.id = "complexity",
     .name = "$$$/AutoClickRemover/ComplexityName=Complexity",
     .lo = 1,
     .hi = 100,
     .defaultValue = 16,
     .decimals = 1},
    {.id = "repairs",
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

} // namespace

AutoClickRemover::AutoClickRemover()
    : ComponentBase(kAutoClickRemoverComponentID, std::move(ParameterTable().Add(kRows))) {
}

AutoClickRemover::~AutoClickRemover() = default;

// A sound that breaks off is a click at its end, and is filled in beyond it.
std::size_t AutoClickRemover::Tail() const noexcept {
    const double longest = (kLongestBase + kLongestSlope * Natural(kAutoClickRemoverComplexity)) * GetSampleRate();
    return static_cast<std::size_t>(std::lround(longest)) + 2;
}

void AutoClickRemover::PrepareProcessing(std::size_t /*maximumBlock*/) {
    const std::size_t frame =
        std::bit_ceil(static_cast<std::size_t>(std::max(kLeastFrame, kShortestFrame * GetSampleRate())));
    fLayout = {.before = frame / 4, .hop = frame / 2, .after = frame / 4};
    fStream.Prepare(GetNumberOfInputChannels(), fLayout);
    fModel.Prepare(frame, kLargestOrder);
    fDetector.Prepare(frame, frame / kNeighbourhoodsPerFrame);
    fInterpolator.Prepare(frame, kLargestOrder);
    fSound.assign(frame, 0.0);
    fRestored.assign(frame, 0.0);
    fUnknown.reserve(frame);
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

// Clicks spoil the model that finds them, so they are looked for once more with the model of the sound that has been
// repaired.
void AutoClickRemover::Repair(std::size_t /*channel*/, std::span<const float> /*original*/,
                              std::span<float> repaired) noexcept {
    std::ranges::copy(repaired, fSound.begin());
    fModel.Fit(fSound, fOrder);
    if (FindClicks() == 0) return;
    fRestored = fSound;
    fInterpolator.Restore(fModel.Coefficients(), fUnknown, fRestored);
    fModel.Fit(fRestored, fOrder);
    fRepairs += FindClicks();
    fInterpolator.Restore(fModel.Coefficients(), fUnknown, fSound);
    for (const std::size_t place : fUnknown)
        repaired[place] = static_cast<float>(fSound[place]);
}

// How many there are in the hop; their samples, but for those that have been heard, are then unknown.
std::size_t AutoClickRemover::FindClicks() noexcept {
    fUnknown.clear();
    std::size_t count = 0;
    for (const ClickDetector::Click& click : fDetector.Find(fModel, fSound, fSettings)) {
        if (click.end <= fLayout.before || click.begin >= fLayout.before + fLayout.hop) continue;
        ++count;
        for (std::size_t place = std::max(click.begin, fLayout.before); place < click.end; ++place)
            fUnknown.push_back(place);
    }
    return count;
}

void AutoClickRemover::StoreRepairs() noexcept {
    if (fRepairs == fStoredRepairs) return;
    fStoredRepairs = fRepairs;
    const auto count = std::min(static_cast<float>(fRepairs), kMostRepairs);
    StoreParameter(kAutoClickRemoverRepairs, GetParameterInfo(kAutoClickRemoverRepairs)->ToNormalised(count));
}

} // namespace qoc::components
