#include "qoc/components/StereoExpander.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace qoc::components {

namespace {

constexpr ParameterRow kRows[] = {
    {.index = kStereoExpanderPan,
     .id = "pan",
     .name = "$$$/StereoExpander/CenterChannelPan=Center Channel Pan",
     .unit = "%",
     .lo = -100,
     .hi = 100,
     .defaultValue = 0,
     .decimals = 1},
    {.index = kStereoExpanderExpand,
     .id = "expand",
     .name = "$$$/StereoExpander/StereoExpand=Stereo Expand",
     .unit = "%",
     .lo = 0,
     .hi = 300,
     .defaultValue = 100,
     .decimals = 1},
};

// Equal power, and 1 in the middle: the sine law scaled by sqrt(2). `pan`: -1...1, away from the side that it is for.
float MidGain(float pan) noexcept {
    if (pan == 0.0F) return 1.0F;
    return static_cast<float>(std::numbers::sqrt2 * std::cos((1.0 + pan) * std::numbers::pi / 4));
}

void Pass(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin) noexcept {
    for (std::size_t channel = 0; channel < block.outputs.size(); ++channel)
        std::copy(block.inputs[channel] + begin, block.inputs[channel] + block.frames, block.outputs[channel] + begin);
}

// (left + right) / 2 is the middle, (left - right) / 2 the side.
void Mix(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t i, float toLeft, float toRight,
         float side) noexcept {
    const float left = block.inputs[0][i];
    const float right = block.inputs[1][i];
    block.outputs[0][i] = (toLeft + side) / 2 * left + (toLeft - side) / 2 * right;
    block.outputs[1][i] = (toRight - side) / 2 * left + (toRight + side) / 2 * right;
}

} // namespace

StereoExpander::StereoExpander() : ComponentBase(kStereoExpanderComponentID, std::move(ParameterTable().Add(kRows))) {
}

StereoExpander::~StereoExpander() = default;

void StereoExpander::PrepareProcessing(std::size_t /*maximumBlock*/) {
    for (SmoothedValue* gain : {&fMidToLeft, &fMidToRight, &fSide})
        gain->Prepare(GetSampleRate());
}

void StereoExpander::ReadParameters(bool settle) noexcept {
    const auto pan = static_cast<float>(FractionOfPercent(Natural(kStereoExpanderPan)));
    const auto set = [settle](SmoothedValue& gain, float value) {
        settle ? gain.Settle(value) : gain.SetTarget(value);
    };
    set(fMidToLeft, MidGain(pan));
    set(fMidToRight, MidGain(-pan));
    set(fSide, FractionOfPercent(Natural(kStereoExpanderExpand)));
}

void StereoExpander::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    constexpr std::size_t kStereo = 2;
    if (block.inputs.size() != kStereo) {
        Pass(block, 0);
        return;
    }
    std::size_t i = 0;
    for (; i < block.frames && !IsSettled(); ++i)
        Mix(block, i, fMidToLeft.Next(), fMidToRight.Next(), fSide.Next());
    if (IsNeutral()) {
        Pass(block, i);
        return;
    }
    for (; i < block.frames; ++i)
        Mix(block, i, fMidToLeft.Target(), fMidToRight.Target(), fSide.Target());
}

bool StereoExpander::IsSettled() const noexcept {
    return fMidToLeft.IsSettled() && fMidToRight.IsSettled() && fSide.IsSettled();
}

bool StereoExpander::IsNeutral() const noexcept {
    return IsSettled() && fMidToLeft.Target() == 1 && fMidToRight.Target() == 1 && fSide.Target() == 1;
}

} // namespace qoc::components
