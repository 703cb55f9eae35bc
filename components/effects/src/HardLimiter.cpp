#include "qoc/components/HardLimiter.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/math/Decibels.h"
#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <span>
#include <utility>

namespace qoc::components {

namespace {

constexpr float kLongestLookAhead = 20; // milliseconds

constexpr ParameterRow kRows[] = {
    {.index = kHardLimiterMaximumAmplitude,
     .id = "maximumAmplitude",
     .name = "$$$/HardLimit/MaximumAmplitudeName=Maximum Amplitude",
     .unit = "dB",
     .lo = -100,
     .hi = 0,
     .defaultValue = -0.1F},
    {.index = kHardLimiterInputBoost,
     .id = "inputBoost",
     .name = "$$$/HardLimit/InputBoostName=Input Boost",
     .unit = "dB",
     .lo = -100,
     .hi = 50,
     .defaultValue = 0},
    {.index = kHardLimiterLookAhead,
     .id = "lookAhead",
     .name = "$$$/HardLimit/LookaheadTimeName=Look-Ahead Time",
     .unit = "ms",
     .lo = 5,
     .hi = kLongestLookAhead,
     .defaultValue = 7.1F,
     .decimals = 1},
    {.index = kHardLimiterRelease,
     .id = "release",
     .name = "$$$/HardLimit/ReleaseTimeName=Release Time",
     .unit = "ms",
     .lo = 40,
     .hi = 200,
     .defaultValue = 100,
     .decimals = 1},
    {.index = kHardLimiterLinkChannels,
     .id = "link",
     .name = "$$$/HardLimit/LinkChannels=Link Channels",
     .defaultValue = 1,
     .kind = ParameterKind::kSwitch},
};

} // namespace

HardLimiter::HardLimiter() : ComponentBase(kHardLimiterComponentID, std::move(ParameterTable().Add(kRows))) {
}

HardLimiter::~HardLimiter() = default;

void HardLimiter::PrepareProcessing(std::size_t /*maximumBlock*/) {
    const double sampleRate = GetSampleRate();
    const auto longest = static_cast<std::size_t>(std::ceil(SecondsOfMilliseconds(kLongestLookAhead) * sampleRate));
    // A peak is told when the sample before it is this old.
    fLatency = longest + LimiterEnvelope::kHold + TruePeak::kDelay + 1;
    fBoost.Prepare(sampleRate);
    fCeiling.Prepare(sampleRate);
    fChannels.assign(GetNumberOfInputChannels(), {});
    for (Channel& channel : fChannels) {
        channel.gain.Prepare(longest, sampleRate);
        channel.later.Prepare(fLatency);
    }
}

void HardLimiter::ResetProcessing() noexcept {
    for (Channel& channel : fChannels) {
        channel.peak.Reset();
        channel.later.Reset();
        channel.allowedBefore = 1;
    }
}

void HardLimiter::ReadParameters(bool settle) noexcept {
    fCeiling.Set(ToFactor(Natural(kHardLimiterMaximumAmplitude)), settle);
    fBoost.Set(ToFactor(Natural(kHardLimiterInputBoost)), settle);
    fIsLinked = IsOn(kHardLimiterLinkChannels);
    if (settle)
        fIsOneGain = fIsLinked;
    else if (!fIsLinked)
        SplitGain();
    const double perMillisecond = SecondsOfMilliseconds(1) * GetSampleRate();
    for (Channel& channel : fChannels) {
        channel.gain.SetLookAhead(
            static_cast<std::size_t>(std::llround(Natural(kHardLimiterLookAhead) * perMillisecond)), settle);
        channel.gain.SetRelease(Natural(kHardLimiterRelease) * perMillisecond);
    }
}

void HardLimiter::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    for (std::size_t begin = 0; begin < block.frames; begin += TruePeak::kMost)
        ProcessRow(block, begin, std::min(block.frames - begin, TruePeak::kMost));
}

// All channels are taken before any is given: an output may be another's input.
void HardLimiter::ProcessRow(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin,
                             std::size_t count) noexcept {
    Levels levels;
    fBoost.Next(std::span(levels.boost).first(count));
    fCeiling.Next(std::span(levels.ceiling).first(count));
    for (std::size_t i = 0; i < fChannels.size(); ++i)
        Take(fChannels[i], block.inputs[i] + begin, levels, count);
    if (fIsLinked) Link(count);
    for (Channel& channel : ChannelsWithGains()) {
        for (float& gain : std::span(channel.allowed).first(count))
            gain = channel.gain.Next(gain);
    }
    for (std::size_t i = 0; i < fChannels.size(); ++i) {
        const TruePeak::Row& gains = fChannels[fIsOneGain ? 0 : i].allowed;
        std::transform(gains.begin(), gains.begin() + count, fChannels[i].sound.begin(), block.outputs[i] + begin,
                       std::multiplies());
    }
}

void HardLimiter::Take(Channel& channel, const float* input, const Levels& levels, std::size_t count) noexcept {
    const std::span<float> sound = std::span(channel.sound).first(count);
    for (std::size_t k = 0; k < count; ++k)
        sound[k] = SaneSample(input[k]) * levels.boost[k];
    TruePeak::Row peaks;
    channel.peak.Next(sound, peaks);
    for (std::size_t k = 0; k < count; ++k) {
        const float allowed = peaks[k] > levels.ceiling[k] ? levels.ceiling[k] / peaks[k] : 1.0F;
        // A peak lies between two samples, which are both to obey.
        channel.allowed[k] = std::min(allowed, std::exchange(channel.allowedBefore, allowed));
    }
    channel.later.Process(sound);
}

void HardLimiter::Link(std::size_t count) noexcept {
    TruePeak::Row& least = fChannels.front().allowed;
    for (const Channel& channel : fChannels)
        std::transform(least.begin(), least.begin() + count, channel.allowed.begin(), least.begin(),
                       [](float a, float b) { return std::min(a, b); });
    for (Channel& channel : fChannels)
        std::copy_n(least.begin(), count, channel.allowed.begin());
}

// From now on each channel has a gain of its own, which goes on from the one of all.
void HardLimiter::SplitGain() noexcept {
    if (!std::exchange(fIsOneGain, false)) return;
    for (Channel& channel : std::span(fChannels).subspan(1))
        channel.gain = fChannels.front().gain;
}

} // namespace qoc::components
