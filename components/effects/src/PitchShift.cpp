#include "qoc/components/PitchShift.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/components/SumInTurns.h"

#include <array>
#include <bit>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

constexpr float kLowestSplicingFrequency = 10; // hertz

constexpr const char* kPrecisions[] = {"$$$/PitchShift/Low=Low", "$$$/PitchShift/Medium=Medium",
                                       "$$$/PitchShift/High=High"};

constexpr ParameterRow kRows[] = {
    {.id = "ratio",
     .name = "$$$/PitchShift/Ratio=Ratio",
     .lo = Splicer::kLowestRatio,
     .hi = Splicer::kHighestRatio,
     .defaultValue = 1,
     .decimals = 4,
     .scale = ParameterScale::kLogarithmic},
    {.id = "precision",
     .name = "$$$/PitchShift/Precision=Precision",
     .hi = 2,
     .defaultValue = 2,
     .decimals = 0,
     .kind = ParameterKind::kChoice,
     .items = kPrecisions},
    {.id = "splicing",
     .name = "$$$/PitchShift/SplicingFrequency=Splicing Frequency",
     .unit = "Hz",
     .lo = kLowestSplicingFrequency,
     .hi = 200,
     .defaultValue = 52,
     .decimals = 1,
     .scale = ParameterScale::kLogarithmic},
    {.id = "overlap",
     .name = "$$$/PitchShift/Overlapping=Overlapping",
     .unit = "%",
     .lo = 0,
     .hi = 50,
     .defaultValue = 21.5,
     .decimals = 1},
    {.id = "defaults",
     .name = "$$$/PitchShift/UseDefaultSettings=Use Default Settings",
     .defaultValue = 1,
     .kind = ParameterKind::kSwitch},
};

constexpr double kPercent = 100;
// The interpolator's, to either side of the place that is read, at the highest speed.
constexpr std::int64_t kReach = 2 * SampleInterpolator::kLargestHalfWidth + 2;

using Kind = SampleInterpolator::Kind;
constexpr std::array<Kind, 3> kKinds = {Kind::kSinc8, Kind::kSinc16, Kind::kSinc32}; // by precision

} // namespace

PitchShift::PitchShift() : ComponentBase(kPitchShiftComponentID, std::move(ParameterTable().Add(kRows))) {
}

PitchShift::~PitchShift() = default;

void PitchShift::PrepareProcessing(std::size_t maximumBlock) {
    const double sampleRate = GetSampleRate();
    fSplicer.Prepare(GetNumberOfInputChannels(), sampleRate, sampleRate / kLowestSplicingFrequency);
    const std::size_t reach = fSplicer.Reach() + kReach;
    fLatency = reach;
    const std::size_t kept = std::bit_ceil(fLatency + reach + maximumBlock);
    fClock.Prepare(kept);
    fHistory.Prepare(GetNumberOfInputChannels(), kept);
    for (SmoothedValue* value : {&fRatio, &fWet})
        value->Prepare(sampleRate);
}

void PitchShift::ResetProcessing() noexcept {
    fClock.Reset();
    fHistory.Reset();
    fSplicer.Reset();
}

void PitchShift::ReadParameters(bool settle) noexcept {
    const float ratio = Natural(kPitchShiftRatio);
    fRatio.Set(ratio, settle);
    if (settle) fWet.Settle(ratio == 1.0F ? 0.0F : 1.0F);
    fKind = kKinds[static_cast<std::size_t>(Item(kPitchShiftPrecision))];
    fSplicer.SetLengths(ReadLengths());
}

Splicer::Lengths PitchShift::ReadLengths() const noexcept {
    if (IsOn(kPitchShiftUseDefaultSettings)) return {};
    const double sequence = GetSampleRate() / double{Natural(kPitchShiftSplicingFrequency)};
    return {sequence, sequence * Natural(kPitchShiftOverlapping) / kPercent};
}

void PitchShift::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    const std::int64_t start = fClock.Now() - static_cast<std::int64_t>(fLatency);
    fHistory.Write(block.inputs, 0, block.frames);
    for (std::size_t i = 0; i < block.frames; ++i)
        fClock.Push(fRatio.Next());
    for (std::size_t i = 0; i < block.frames; ++i)
        Write(block, i, start + static_cast<std::int64_t>(i));
}

void PitchShift::Write(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t frame,
                       std::int64_t source) noexcept {
    if (source < 0) {
        for (float* output : block.outputs)
            output[frame] = 0;
        return;
    }
    fWet.SetTarget(fClock.RatioAt(source) == 1.0F ? 0.0F : 1.0F);
    const float wet = fWet.Next();
    if (wet > 0) {
        WriteShifted(block, frame, source, wet);
        return;
    }
    fSplicer.Follow(source, fClock);
    for (std::size_t channel = 0; channel < block.outputs.size(); ++channel)
        block.outputs[channel][frame] = *fHistory.At(channel, source);
}

void PitchShift::WriteShifted(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t frame, std::int64_t source,
                              float wet) noexcept {
    const float ratio = fClock.RatioAt(source);
    fSplicer.Advance(source, fClock, fHistory);
    const float share = fSplicer.Share();
    PlaceReading(fSplicer.Place(), ratio, fPresent);
    if (share < 1) PlaceReading(fSplicer.FormerPlace(), ratio, fFormer);
    for (std::size_t channel = 0; channel < block.outputs.size(); ++channel) {
        float shifted = Read(fPresent, channel);
        if (share < 1) {
            const float former = Read(fFormer, channel);
            shifted = former + share * (shifted - former);
        }
        const float dry = *fHistory.At(channel, source);
        block.outputs[channel][frame] = wet == 1 ? shifted : dry + wet * (shifted - dry);
    }
}

void PitchShift::PlaceReading(double place, float ratio, Reading& reading) const noexcept {
    const double whole = std::floor(place);
    fInterpolator.Compute(fKind, place - whole, ratio, static_cast<double>(kReach), reading.weights);
    reading.first = static_cast<std::int64_t>(whole) + reading.weights.first;
}

float PitchShift::Read(const Reading& reading, std::size_t channel) const noexcept {
    const float* const weights = reading.weights.values.data();
    const float* const sound = fHistory.At(channel, reading.first);
    return SumInTurns<float>(0, reading.weights.count, [=](std::size_t i) { return weights[i] * sound[i]; });
}

} // namespace qoc::components
