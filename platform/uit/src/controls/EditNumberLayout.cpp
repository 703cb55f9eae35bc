#include "uit/controls/EditNumberLayout.h"

#include "kroui/controls/HotTextLook.h"
#include "kroui/controls/SliderLook.h"
#include "uit/controls/SliderRuler.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {

using kroui::Rect;
using kroui::Size;
using kroui::controls::HotTextLook;
using kroui::controls::SliderLook;
using Needs = EditNumberLayout::Needs;

namespace {

constexpr float kGap = 12; // between label, track and number
constexpr float kHalfRow = 12;
constexpr float kRow = 2 * kHalfRow;
constexpr float kLabelLine = 18; // a label above the slider
constexpr float kUnitGap = 2;    // on top of the number's padding
constexpr float kShortestTrack = 24;

float NumberWidth(const Needs& needs) {
    return std::ceil(needs.numberWidth) + 2 * HotTextLook::kPadding;
}

float NumberAndUnitWidth(const Needs& needs) {
    return NumberWidth(needs) + (needs.unitWidth > 0 ? kUnitGap + std::ceil(needs.unitWidth) : 0);
}

float EndMargin(const Needs& needs) {
    return needs.hasRuler ? SliderRuler::kOverhang : SliderLook::kKnobReach;
}

bool HasLabelBeside(const Needs& needs) {
    return needs.isInline && needs.labelWidth > 0;
}

bool HasLabelAbove(const Needs& needs) {
    return !needs.isInline && needs.labelWidth > 0;
}

float TrackLeft(const Needs& needs) {
    return HasLabelBeside(needs) ? std::ceil(needs.labelWidth) + kGap : EndMargin(needs);
}

// From the top of the content to the middle of the row, and from there to its bottom.
float Above(const Needs& needs) {
    return std::max(kHalfRow, needs.rulerBefore) + (HasLabelAbove(needs) ? kLabelLine : 0);
}

float Below(const Needs& needs) {
    return std::max(kHalfRow, needs.rulerBehind);
}

EditNumberLayout InRow(Size size, const Needs& needs) {
    EditNumberLayout layout;
    const float spare = std::max(0.0F, std::floor((size.height - Above(needs) - Below(needs)) / 2));
    const float middle = spare + Above(needs);
    const float rowTop = middle - kHalfRow;
    if (HasLabelBeside(needs)) layout.label = {0, rowTop, std::ceil(needs.labelWidth), kRow};
    if (HasLabelAbove(needs)) layout.label = {0, spare, size.width, kLabelLine};

    float left = TrackLeft(needs);
    if (needs.sliderLength > 0) {
        const float room = size.width - left - kGap - NumberAndUnitWidth(needs);
        const float length = needs.stretches ? room : std::min(room, needs.sliderLength);
        layout.track = {left, middle, std::max(kShortestTrack, std::floor(length)), 0};
        const float top = middle - std::max(kHalfRow, needs.rulerBefore);
        layout.slider = {left - SliderLook::kKnobReach, top, layout.track.width + 2 * SliderLook::kKnobReach,
                         middle + Below(needs) - top};
        layout.rulerRoom = layout.track.Inset(-SliderRuler::kOverhang, 0);
        left = layout.track.Right() + kGap;
    } else if (HasLabelBeside(needs)) {
        left -= HotTextLook::kPadding;
    } else {
        left = 0;
    }
    layout.number = {left, rowTop, NumberWidth(needs), kRow};
    if (needs.unitWidth > 0) layout.unit = {layout.number.Right() + kUnitGap, rowTop, std::ceil(needs.unitWidth), kRow};
    return layout;
}

EditNumberLayout InColumn(Size size, const Needs& needs) {
    EditNumberLayout layout;
    const float labelHeight = needs.labelWidth > 0 ? kLabelLine : 0;
    if (labelHeight > 0) layout.label = {0, 0, size.width, kLabelLine};
    const float margin = EndMargin(needs);
    const float rowTop = std::max(labelHeight, size.height - kRow);
    if (needs.sliderLength > 0) {
        const float middle = std::round((size.width + needs.rulerBefore - needs.rulerBehind) / 2);
        const float top = labelHeight + margin;
        const float room = rowTop - margin - top;
        const float length = needs.stretches ? room : std::min(room, needs.sliderLength);
        layout.track = {middle, top, 0, std::max(kShortestTrack, std::floor(length))};
        layout.slider = {0, labelHeight, size.width, layout.track.height + 2 * margin};
        layout.rulerRoom = layout.track.Inset(0, -margin);
    }
    const float left = std::max(0.0F, std::round((size.width - NumberAndUnitWidth(needs)) / 2));
    layout.number = {left, rowTop, NumberWidth(needs), kRow};
    if (needs.unitWidth > 0) layout.unit = {layout.number.Right() + kUnitGap, rowTop, std::ceil(needs.unitWidth), kRow};
    return layout;
}

} // namespace

EditNumberLayout EditNumberLayout::In(Size size, const Needs& needs) {
    return needs.isVertical ? InColumn(size, needs) : InRow(size, needs);
}

Size EditNumberLayout::Natural(const Needs& needs) {
    if (needs.isVertical) {
        const float width = std::max({needs.rulerBefore + needs.rulerBehind, SliderLook::kVerticalKnobWidth,
                                      NumberAndUnitWidth(needs), needs.labelWidth});
        const float label = needs.labelWidth > 0 ? kLabelLine : 0;
        return {std::ceil(width), label + needs.sliderLength + 2 * EndMargin(needs) + kRow};
    }
    const float slider = needs.sliderLength > 0 ? needs.sliderLength + kGap : 0;
    return {TrackLeft(needs) + slider + NumberAndUnitWidth(needs), Above(needs) + Below(needs)};
}

} // namespace uit::controls
