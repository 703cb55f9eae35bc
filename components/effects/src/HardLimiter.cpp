#include "qoc/components/HardLimiter.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/math/Decibels.h"
#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>
#include <cmath>
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
        channel.sound.resize(fLatency + 1);
    }
}

void HardLimiter::ResetProcessing() noexcept {
    for (Channel& channel : fChannels) {
        channel.peak.Reset();
        std::ranges::fill(channel.sound, 0.0F);
        channel.allowed = channel.allowedBefore = 1;
    }
    fPosition = 0;
}

void HardLimiter::ReadParameters(bool settle) noexcept {
    fCeiling.Set(ToFactor(Natural(kHardLimiterMaximumAmplitude)), settle);
    fBoost.Set(ToFactor(Natural(kHardLimiterInputBoost)), settle);
    fIsLinked = IsOn(kHardLimiterLinkChannels);
    const double perMillisecond = SecondsOfMilliseconds(1) * GetSampleRate();
    for (Channel& channel : fChannels) {
        channel.gain.SetLookAhead(
            static_cast<std::size_t>(std::llround(Natural(kHardLimiterLookAhead) * perMillisecond)), settle);
        channel.gain.SetRelease(Natural(kHardLimiterRelease) * perMillisecond);
    }
}

void HardLimiter::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    for (std::size_t i = 0; i < block.frames; ++i) {
        const float boost = fBoost.Next();
        const float ceiling = fCeiling.Next();
        for (std::size_t channel = 0; channel < fChannels.size(); ++channel)
            Take(fChannels[channel], SaneSample(block.inputs[channel][i]) * boost, ceiling);
        const float forAll = fIsLinked ? AllowedForAll() : 1.0F;
        const std::size_t oldest = (fPosition + 1) % (fLatency + 1);
        for (std::size_t channel = 0; channel < fChannels.size(); ++channel) {
            Channel& each = fChannels[channel];
            const float allowed = std::min({each.allowed, each.allowedBefore, forAll});
            block.outputs[channel][i] = each.sound[oldest] * each.gain.Next(allowed);
        }
        fPosition = oldest;
    }
}

void HardLimiter::Take(Channel& channel, float sample, float ceiling) noexcept {
    channel.sound[fPosition] = sample;
    const float peak = channel.peak.Next(sample);
    // A peak lies between two samples, which are both to obey.
    channel.allowedBefore = std::exchange(channel.allowed, peak > ceiling ? ceiling / peak : 1.0F);
}

float HardLimiter::AllowedForAll() const noexcept {
    float least = 1;
    for (const Channel& channel : fChannels)
        least = std::min({least, channel.allowed, channel.allowedBefore});
    return least;
}

} // namespace qoc::components
