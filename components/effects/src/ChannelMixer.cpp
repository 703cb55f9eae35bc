#include "qoc/components/ChannelMixer.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

// The largest count has the stored value 1.
constexpr float kChannelCountScale = static_cast<float>(ChannelMixer::kMaximumChannels);

constexpr ParameterRow kChannelRows[] = {
    {.index = kChannelMixerChannelCount,
     .id = "channels",
     .name = "$$$/ChannelMixer/Channels=Channels",
     .hi = kChannelCountScale,
     .defaultValue = 2,
     .decimals = 0,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
};

struct OutputTexts {
    const char* id;
    const char* name;
};

constexpr OutputTexts kOutputTexts[ChannelMixer::kMixedChannels] = {
    {"output1Input", "$$$/ChannelMixer/Output1=Output 1 from Input @0"},
    {"output2Input", "$$$/ChannelMixer/Output2=Output 2 from Input @0"},
    {"output3Input", "$$$/ChannelMixer/Output3=Output 3 from Input @0"},
    {"output4Input", "$$$/ChannelMixer/Output4=Output 4 from Input @0"},
    {"output5Input", "$$$/ChannelMixer/Output5=Output 5 from Input @0"},
    {"output6Input", "$$$/ChannelMixer/Output6=Output 6 from Input @0"},
    {"output7Input", "$$$/ChannelMixer/Output7=Output 7 from Input @0"},
    {"output8Input", "$$$/ChannelMixer/Output8=Output 8 from Input @0"},
};

// Every output takes its own input.
std::array<ParameterRow, ChannelMixer::kMixedChannels> RowsOf(std::size_t output) {
    std::array<ParameterRow, ChannelMixer::kMixedChannels> rows;
    for (std::size_t input = 0; input < rows.size(); ++input)
        rows[input] = {.index = kChannelMixerFirstAmount + static_cast<int>(output * rows.size() + input),
                       .id = kOutputTexts[output].id,
                       .name = kOutputTexts[output].name,
                       .unit = "%",
                       .lo = -100,
                       .hi = 100,
                       .defaultValue = input == output ? 100.0F : 0,
                       .decimals = 1};
    return rows;
}

ParameterTable MakeTable() {
    ParameterTable table;
    for (std::size_t output = 0; output < ChannelMixer::kMixedChannels; ++output)
        table.AddNumbered(RowsOf(output));
    table.Add(kChannelRows);
    return table;
}

// An amount this small means none: just below 0 it is what an inverted 0 % is stored as.
constexpr float kNoPercent = 1e-4F;
// A step of the stored float is 1.2e-5 % at 100 %: anything this near is meant to be 100 %.
constexpr float kUnityWindow = 2e-5F;

float ToGain(float percent) noexcept {
    const float magnitude = std::abs(percent);
    if (magnitude < kNoPercent) return 0;
    if (100 - magnitude < kUnityWindow) return std::copysign(1.0F, percent);
    return static_cast<float>(FractionOfPercent(percent));
}

} // namespace

ChannelMixer::ChannelMixer() : ComponentBase(kChannelMixerComponentID, MakeTable()), fOutputs(kMixedChannels) {
    StoreChannelCount();
}

ChannelMixer::~ChannelMixer() = default;

void ChannelMixer::PrepareProcessing(std::size_t /*maximumBlock*/) {
    StoreChannelCount();
    for (Output& output : fOutputs) {
        for (std::size_t input = 0; input < kMixedChannels; ++input) {
            output.paths[input].input = input;
            output.paths[input].gain.Prepare(GetSampleRate());
        }
    }
}

// A path is heard until the next change of a parameter, be it silent by then: which paths are looked at must not depend
// on where blocks end.
void ChannelMixer::ReadParameters(bool settle) noexcept {
    const std::size_t count = MixedCount();
    for (std::size_t index = 0; index < count; ++index) {
        Output& output = fOutputs[index];
        output.heardCount = 0;
        for (std::size_t input = 0; input < count; ++input) {
            Path& path = output.paths[input];
            const float gain = ToGain(Natural(static_cast<int>(index * kMixedChannels + input)));
            path.gain.Set(gain, settle);
            if (!path.gain.IsSettled() || gain != 0) output.heard[output.heardCount++] = &path;
        }
    }
}

void ChannelMixer::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    for (std::size_t begin = 0; begin < block.frames; begin += kMost)
        MixRow(block, begin, std::min(block.frames - begin, kMost));
    for (std::size_t channel = MixedCount(); channel < block.outputs.size(); ++channel) {
        if (block.inputs[channel] != block.outputs[channel])
            std::copy_n(block.inputs[channel], block.frames, block.outputs[channel]);
    }
}

std::size_t ChannelMixer::MixedCount() const noexcept {
    return std::min(GetNumberOfInputChannels(), kMixedChannels);
}

void ChannelMixer::StoreChannelCount() noexcept {
    StoreParameter(kChannelMixerChannelCount, static_cast<float>(GetNumberOfInputChannels()) / kChannelCountScale);
}

// All inputs are taken first, for an output may be the memory of one.
void ChannelMixer::MixRow(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin,
                          std::size_t count) noexcept {
    for (std::size_t channel = 0; channel < MixedCount(); ++channel)
        std::copy_n(block.inputs[channel] + begin, count, fInputs[channel].begin());
    for (std::size_t channel = 0; channel < MixedCount(); ++channel)
        Mix(fOutputs[channel], {block.outputs[channel] + begin, count});
}

void ChannelMixer::Mix(Output& output, std::span<float> sum) const noexcept {
    if (output.heardCount == 0) std::ranges::fill(sum, 0.0F);
    for (std::size_t i = 0; i < output.heardCount; ++i) {
        Path& path = *output.heard[i];
        const Row& input = fInputs[path.input];
        Row gain;
        path.gain.Next(std::span(gain).first(sum.size()));
        for (std::size_t k = 0; k < sum.size(); ++k)
            sum[k] = i == 0 ? input[k] * gain[k] : sum[k] + input[k] * gain[k];
    }
}

} // namespace qoc::components
