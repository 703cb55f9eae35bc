#include "qoc/components/Amplify.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

// The largest count has the stored value 1.
constexpr float kChannelCountScale = static_cast<float>(Amplify::kMaximumChannels);

constexpr ParameterRow kCommonRows[] = {
    {.index = kAmplifyChannelCount,
     .id = "channels",
     .name = "$$$/Amplify/Channels=Channels",
     .hi = kChannelCountScale,
     .defaultValue = 2,
     .decimals = 0,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
    {.index = kAmplifyLinkChannels,
     .id = "link",
     .name = "$$$/Amplify/LinkChannels=Link Channels",
     .defaultValue = 1,
     .kind = ParameterKind::kSwitch},
};

constexpr ParameterRow kGainRows[] = {
    {.index = kAmplifyFirstGain,
     .id = "gain",
     .name = "$$$/Amplify/Gain=Gain @0",
     .unit = "dB",
     .lo = -96,
     .hi = 48,
     .defaultValue = 0,
     .linkedBy = "link"},
};

// A step of the stored float at 0 dB is 9e-6 dB: anything this near is meant to be 0 dB.
constexpr float kUnityWindow = 2e-5F;

float ToGain(float decibels) noexcept {
    return std::abs(decibels) < kUnityWindow ? 1.0F : static_cast<float>(std::pow(10.0, decibels / 20.0));
}

void ApplyGain(SmoothedValue& gain, const float* input, float* output, std::size_t frames) noexcept {
    std::size_t i = 0;
    for (; i < frames && !gain.IsSettled(); ++i)
        output[i] = input[i] * gain.Next();
    const float settled = gain.Target();
    if (settled == 1.0F) {
        if (input != output) std::copy(input + i, input + frames, output + i);
        return;
    }
    for (; i < frames; ++i)
        output[i] = input[i] * settled;
}

} // namespace

Amplify::Amplify()
    : ComponentBase(
          kAmplifyComponentID,
          std::move(ParameterTable().Add(kCommonRows).AddRepeated(kGainRows, static_cast<int>(kMaximumChannels)))) {
    StoreChannelCount();
}

Amplify::~Amplify() = default;

int Amplify::GetParameterCount() const {
    return kAmplifyFirstGain + static_cast<int>(GetNumberOfInputChannels());
}

void Amplify::PrepareProcessing(std::size_t /*maximumBlock*/) {
    StoreChannelCount();
    for (SmoothedValue& gain : fGains)
        gain.Prepare(GetSampleRate());
}

void Amplify::ReadParameters(bool settle) noexcept {
    for (std::size_t channel = 0; channel < GetNumberOfInputChannels(); ++channel) {
        const float gain = ToGain(Natural(kAmplifyFirstGain + static_cast<int>(channel)));
        settle ? fGains[channel].Settle(gain) : fGains[channel].SetTarget(gain);
    }
}

void Amplify::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    for (std::size_t channel = 0; channel < block.outputs.size(); ++channel)
        ApplyGain(fGains[channel], block.inputs[channel], block.outputs[channel], block.frames);
}

void Amplify::StoreChannelCount() noexcept {
    StoreParameter(kAmplifyChannelCount, static_cast<float>(GetNumberOfInputChannels()) / kChannelCountScale);
}

} // namespace qoc::components
