#include "qoc/components/PitchShift.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"

#include <bit>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

constexpr float kLowestSplicingFrequency = 10; // hertz

constexpr const char* kPrecisions[] = {"$$$/PitchShift/Low=Low", "$$$/PitchShift/Medium=Medium",
                                       "$$$/PitchShift/High=High"};

constexpr ParameterRow kRows[] = {
    {.index = kPitchShiftRatio,
     .id = "ratio",
     .name = "$$$/PitchShift/Ratio=Ratio",
     .lo = SoundStretcher::kLowestRatio,
     .hi = SoundStretcher::kHighestRatio,
     .defaultValue = 1,
     .decimals = 4,
     .scale = ParameterScale::kLogarithmic},
    {.index = kPitchShiftPrecision,
     .id = "precision",
     .name = "$$$/PitchShift/Precision=Precision",
     .hi = 2,
     .defaultValue = 2,
     .decimals = 0,
     .kind = ParameterKind::kChoice,
     .items = kPrecisions},
    {.index = kPitchShiftSplicingFrequency,
     .id = "splicing",
     .name = "$$$/PitchShift/SplicingFrequency=Splicing Frequency",
     .unit = "Hz",
     .lo = kLowestSplicingFrequency,
     .hi = 200,
     .defaultValue = 52,
     .decimals = 1,
     .scale = ParameterScale::kLogarithmic},
    {.index = kPitchShiftOverlapping,
     .id = "overlap",
     .name = "$$$/PitchShift/Overlapping=Overlapping",
     .unit = "%",
     .lo = 0,
     .hi = 50,
     .defaultValue = 21.5,
     .decimals = 1},
    {.index = kPitchShiftUseDefaultSettings,
     .id = "defaults",
     .name = "$$$/PitchShift/UseDefaultSettings=Use Default Settings",
     .defaultValue = 1,
     .kind = ParameterKind::kSwitch},
};

constexpr auto kReach = static_cast<std::int64_t>(BandLimitedInterpolator::kReach);

} // namespace

PitchShift::PitchShift() : ComponentBase(kPitchShiftComponentID, std::move(ParameterTable().Add(kRows))) {
}

PitchShift::~PitchShift() = default;

std::size_t PitchShift::Tail() const noexcept {
    if (Natural(kPitchShiftRatio) == 1.0F) return 0;
    const double late = SoundStretcher::FarthestOff(ReadLengths(), GetSampleRate());
    return static_cast<std::size_t>(std::ceil(late)) + BandLimitedInterpolator::kReach;
}

void PitchShift::PrepareProcessing(std::size_t maximumBlock) {
    const double sampleRate = GetSampleRate();
    fStretcher.Prepare(GetNumberOfInputChannels(), sampleRate, sampleRate / kLowestSplicingFrequency,
                       BandLimitedInterpolator::kReach + 4);
    const std::size_t reach = fStretcher.Reach() + kReach;
    fLatency = reach;
    const std::size_t kept = std::bit_ceil(fLatency + reach + maximumBlock);
    fTimeMap.Prepare(kept);
    fHistory.Prepare(GetNumberOfInputChannels(), kept);
    fOnsets.Prepare(GetNumberOfInputChannels(), sampleRate, kept);
    for (SmoothedValue* value : {&fRatio, &fWet})
        value->Prepare(sampleRate);
}

void PitchShift::ResetProcessing() noexcept {
    fTimeMap.Reset();
    fHistory.Reset();
    fOnsets.Reset();
    fInterpolator.Reset();
    fStretcher.Reset();
}

void PitchShift::ReadParameters(bool settle) noexcept {
    const float ratio = Natural(kPitchShiftRatio);
    fRatio.Set(ratio, settle);
    if (settle) fWet.Settle(ratio == 1.0F ? 0.0F : 1.0F);
    fPrecision = static_cast<BandLimitedInterpolator::Precision>(Item(kPitchShiftPrecision));
    fStretcher.SetLengths(ReadLengths());
    fStretcher.SetSpectral(fPrecision == BandLimitedInterpolator::Precision::kHigh);
}

SoundStretcher::Lengths PitchShift::ReadLengths() const noexcept {
    if (IsOn(kPitchShiftUseDefaultSettings)) return {};
    const double sequence = GetSampleRate() / double{Natural(kPitchShiftSplicingFrequency)};
    return {sequence, FractionOfPercent(sequence * Natural(kPitchShiftOverlapping))};
}

void PitchShift::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    const std::int64_t start = fTimeMap.Now() - static_cast<std::int64_t>(fLatency);
    fHistory.Write(block.inputs, 0, block.frames);
    fOnsets.Listen(fHistory);
    for (std::size_t i = 0; i < block.frames; ++i)
        fTimeMap.Push(fRatio.Next());
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
    fWet.SetTarget(fTimeMap.RatioAt(source) == 1.0F ? 0.0F : 1.0F);
    const float wet = fWet.Next();
    if (wet > 0) {
        WriteShifted(block, frame, source, wet);
        return;
    }
    fStretcher.Follow(source, fTimeMap);
    for (std::size_t channel = 0; channel < block.outputs.size(); ++channel)
        block.outputs[channel][frame] = *fHistory.At(channel, source);
}

void PitchShift::WriteShifted(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t frame, std::int64_t source,
                              float wet) noexcept {
    const float ratio = fTimeMap.RatioAt(source);
    fStretcher.Advance(source, {fTimeMap, fHistory, fOnsets});
    const auto voices = fStretcher.Voices(fHistory);
    fInterpolator.Set(fPrecision, ratio);
    for (std::size_t voice = 0; voice < voices.size(); ++voice) {
        if (voices[voice].gain > 0) PlaceReading(voices[voice].place, fReadings[voice]);
    }
    for (std::size_t channel = 0; channel < block.outputs.size(); ++channel) {
        float shifted = 0;
        for (std::size_t voice = 0; voice < voices.size(); ++voice) {
            if (voices[voice].gain > 0)
                shifted += voices[voice].gain * Read(*voices[voice].sound, fReadings[voice], channel);
        }
        const float dry = *fHistory.At(channel, source);
        block.outputs[channel][frame] = wet == 1 ? shifted : dry + wet * (shifted - dry);
    }
}

void PitchShift::PlaceReading(double place, Reading& reading) noexcept {
    const double whole = std::floor(place);
    fInterpolator.Compute(place - whole, reading.weights);
    reading.whole = static_cast<std::int64_t>(whole);
}

float PitchShift::Read(const HistoryBuffer& sound, const Reading& reading, std::size_t channel) noexcept {
    return reading.weights.Apply(sound.At(channel, reading.whole + reading.weights.First()));
}

} // namespace qoc::components
