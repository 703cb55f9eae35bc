#include "qoc/components/Delay.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

constexpr float kMostChannels = Delay::kMaximumChannels;

constexpr ParameterRow TimeRow(int index, const char* id, const char* name, float defaultValue) {
    return {.index = index,
            .id = id,
            .name = name,
            .unit = "ms",
            .lo = -Delay::kLongestTime,
            .hi = Delay::kLongestTime,
            .defaultValue = defaultValue};
}

constexpr ParameterRow MixRow(int index, const char* id, const char* name) {
    return {.index = index, .id = id, .name = name, .unit = "%", .hi = 100, .defaultValue = 35, .decimals = 1};
}

constexpr ParameterRow kRows[] = {
    TimeRow(kDelayLeftTime, "leftDelay", "$$$/Delay/LeftTime=Left Delay Time", 100),
    MixRow(kDelayLeftMix, "leftMix", "$$$/Delay/LeftMix=Left Mix"),
    {.index = kDelayLeftInvert,
     .id = "leftInvert",
     .name = "$$$/Delay/LeftInvert=Left Invert",
     .kind = ParameterKind::kSwitch},
    TimeRow(kDelayRightTime, "rightDelay", "$$$/Delay/RightTime=Right Delay Time", 200),
    MixRow(kDelayRightMix, "rightMix", "$$$/Delay/RightMix=Right Mix"),
    {.index = kDelayRightInvert,
     .id = "rightInvert",
     .name = "$$$/Delay/RightInvert=Right Invert",
     .kind = ParameterKind::kSwitch},
    {.index = kDelayShowSamples,
     .id = "showSamples",
     .name = "$$$/Delay/ShowSamples=Show Times in Samples",
     .kind = ParameterKind::kSwitch,
     .flags = kParameterNotAutomatable},
    {.index = kDelayChannelCount,
     .id = "channels",
     .name = "$$$/Delay/Channels=Channels",
     .hi = kMostChannels,
     .defaultValue = 2,
     .decimals = 0,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
};

// Of a side's parameters, after its first.
constexpr int kTime = kDelayLeftTime - kDelayLeftTime;
constexpr int kMix = kDelayLeftMix - kDelayLeftTime;
constexpr int kInvert = kDelayLeftInvert - kDelayLeftTime;

} // namespace

Delay::Delay() : ComponentBase(kDelayComponentID, std::move(ParameterTable().Add(kRows))) {
}

Delay::~Delay() = default;

std::size_t Delay::Tail() const noexcept {
    std::ptrdiff_t longest = 0;
    for (const Channel& channel : fChannels)
        longest = std::max(longest, DelayInSamples(channel.firstParameter + kTime));
    return static_cast<std::size_t>(longest);
}

void Delay::PrepareProcessing(std::size_t /*maximumBlock*/) {
    StoreParameter(kDelayChannelCount, static_cast<float>(GetNumberOfInputChannels()) / kMostChannels);
    fLatency = static_cast<std::size_t>(std::llround(SecondsOfMilliseconds(kLongestTime) * GetSampleRate()));
    fChannels.assign(GetNumberOfInputChannels(), {});
    const std::vector<ChannelSide> sides = SidesOf(GetInputBuses().front().GetLayout());
    for (std::size_t i = 0; i < fChannels.size(); ++i) {
        Channel& channel = fChannels[i];
        channel.firstParameter = sides[i] == ChannelSide::kRight ? kDelayRightTime : kDelayLeftTime;
        channel.line.Prepare(2 * fLatency + 1);
        channel.tap.Prepare(GetSampleRate());
        channel.original.Prepare(GetSampleRate());
        channel.delayed.Prepare(GetSampleRate());
    }
}

void Delay::ResetProcessing() noexcept {
    for (Channel& channel : fChannels)
        channel.line.Reset();
}

void Delay::ReadParameters(bool settle) noexcept {
    for (Channel& channel : fChannels) {
        const std::ptrdiff_t delay = DelayInSamples(channel.firstParameter + kTime);
        const auto mix = static_cast<float>(FractionOfPercent(Natural(channel.firstParameter + kMix)));
        channel.tap.Set(static_cast<std::size_t>(static_cast<std::ptrdiff_t>(fLatency) + delay), settle);
        channel.original.Set(1 - mix, settle);
        channel.delayed.Set(IsOn(channel.firstParameter + kInvert) ? -mix : mix, settle);
    }
}

void Delay::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    for (std::size_t i = 0; i < fChannels.size(); ++i) {
        Channel& channel = fChannels[i];
        for (std::size_t frame = 0; frame < block.frames; ++frame) {
            channel.line.Write(SaneSample(block.inputs[i][frame]));
            const float original = channel.line.At(fLatency) * channel.original.Next();
            block.outputs[i][frame] = original + channel.tap.Next(channel.line) * channel.delayed.Next();
        }
    }
}

std::ptrdiff_t Delay::DelayInSamples(int timeParameter) const noexcept {
    return std::llround(SecondsOfMilliseconds(Natural(timeParameter)) * GetSampleRate());
}

} // namespace qoc::components
