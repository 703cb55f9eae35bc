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
constexpr float kDescriptionLine = 14;
constexpr float kUnitGap = 2; // on top of the number's padding
constexpr float kShortestTrack = 24;

float NumberWidth(const Needs& needs) {
    return std::ceil(needs.numberWidth) + 2 * HotTextLook::kPadding;
}

float NumberAndUnitWidth(const Needs& needs) {
    return NumberWidth(needs) + (needs.unitWidth > 0 ? kUnitGap + std::ceil(needs.unitWidth) : 0);
}

// Labels beside a vertical track reach no farther over its end than the knob, so that tracks side by side are alike
// whether they have rulers or not.
float EndMargin(const Needs& needs) {
    return needs.hasRuler && !needs.isVertical ? SliderRuler::kOverhang : SliderLook::kKnobReach;
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

float DescriptionLine(float width) {
    return width > 0 ? kDescriptionLine : 0;
}

// From the top of the content to the middle of the row, and from there to its bottom.
float Above(const Needs& needs) {
    const float label = HasLabelAbove(needs) ? kLabelLine : 0;
    return label + DescriptionLine(needs.description1Width) + std::max(kHalfRow, needs.rulerBefore);
}

float Below(const Needs& needs) {
    return std::max(kHalfRow, needs.rulerBehind) + DescriptionLine(needs.description2Width);
}

// A description is as wide as the slider, or as what stands in its place.
void PlaceDescriptions(EditNumberLayout& layout, const Needs& needs, const Rect& along, float top, float bottom) {
    const float height = kDescriptionLine;
    if (needs.description1Width > 0) layout.description1 = {along.left, top - height, along.width, height};
    if (needs.description2Width > 0) layout.description2 = {along.left, bottom, along.width, height};
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
                         middle + std::max(kHalfRow, needs.rulerBehind) - top};
        layout.rulerRoom = layout.track.Inset(-SliderRuler::kOverhang, 0);
        left = layout.track.Right() + kGap;
    } else if (HasLabelBeside(needs)) {
        left -= HotTextLook::kPadding;
    } else {
        left = 0;
    }
    layout.number = {left, rowTop, NumberWidth(needs), kRow};
    if (needs.unitWidth > 0) layout.unit = {layout.number.Right() + kUnitGap, rowTop, std::ceil(needs.unitWidth), kRow};
    PlaceDescriptions(layout, needs, needs.sliderLength > 0 ? layout.slider : Union(layout.number, layout.unit),
                      middle - std::max(kHalfRow, needs.rulerBefore), middle + std::max(kHalfRow, needs.rulerBehind));
    return layout;
}

// What a vertical slider takes to the left and to the right of its middle.
float RoomBefore(const Needs& needs) {
    return std::max(SliderLook::kVerticalKnobWidth / 2 + 1, needs.rulerBefore);
}

float RoomBehind(const Needs& needs) {
    return std::max(SliderLook::kVerticalKnobWidth / 2 + 1, needs.rulerBehind);
}

EditNumberLayout InColumn(Size size, const Needs& needs) {
    EditNumberLayout layout;
    const float labelHeight = needs.labelWidth > 0 ? kLabelLine : 0;
    const float margin = EndMargin(needs);
    const float sliderTop = labelHeight + DescriptionLine(needs.description1Width);
    const float description2 = DescriptionLine(needs.description2Width);
    const float rowTop = std::max(sliderTop + description2, size.height - kRow);
    if (needs.sliderLength > 0) {
        const float middle = std::round((size.width + RoomBefore(needs) - RoomBehind(needs)) / 2);
        const float top = sliderTop + margin;
        const float room = rowTop - description2 - margin - top;
        const float length = needs.stretches ? room : std::min(room, needs.sliderLength);
        layout.track = {middle, top, 0, std::max(kShortestTrack, std::floor(length))};
        layout.slider = {0, sliderTop, size.width, layout.track.height + 2 * margin};
        layout.rulerRoom = layout.track.Inset(0, -margin);
    }
    // The texts over and under the slider stand in its middle, whatever its rulers take at one side.
    const float reach = std::min(layout.track.left, size.width - layout.track.left);
    const Rect along =
        needs.sliderLength > 0 ? Rect{layout.track.left - reach, 0, 2 * reach, 0} : Rect{0, 0, size.width, 0};
    if (labelHeight > 0) layout.label = {along.left, 0, along.width, kLabelLine};
    PlaceDescriptions(layout, needs, along, sliderTop, rowTop - description2);
    const float left = std::max(along.left, std::round(along.Centre().x - NumberAndUnitWidth(needs) / 2));
    const float unit = needs.unitWidth > 0 ? kUnitGap + std::ceil(needs.unitWidth) : 0;
    layout.number = {left, rowTop, std::max(0.0F, std::min(NumberWidth(needs), along.Right() - left - unit)), kRow};
    if (needs.unitWidth > 0) layout.unit = {layout.number.Right() + kUnitGap, rowTop, std::ceil(needs.unitWidth), kRow};
    return layout;
}

} // namespace

EditNumberLayout EditNumberLayout::In(Size size, const Needs& needs) {
    return needs.isVertical ? InColumn(size, needs) : InRow(size, needs);
}

Size EditNumberLayout::Natural(const Needs& needs) {
    if (needs.isVertical) {
        const float before = RoomBefore(needs);
        const float behind = RoomBehind(needs);
        // What stands under the track has its middle there.
        const float centred = std::max(
            {NumberAndUnitWidth(needs), std::ceil(needs.labelWidth), needs.description1Width, needs.description2Width});
        const float width = std::max(before + behind, centred + std::abs(before - behind));
        const float descriptions = DescriptionLine(needs.description1Width) + DescriptionLine(needs.description2Width);
        const float label = needs.labelWidth > 0 ? kLabelLine : 0;
        const float slider = needs.sliderLength > 0 ? needs.sliderLength + 2 * EndMargin(needs) : 0;
        return {std::ceil(width), label + descriptions + slider + kRow};
    }
    const float descriptions = std::max(needs.description1Width, needs.description2Width);
    const float length = std::max(needs.sliderLength, std::ceil(descriptions) - 2 * SliderLook::kKnobReach);
    const float slider = needs.sliderLength > 0 ? length + kGap : 0;
    return {TrackLeft(needs) + slider + NumberAndUnitWidth(needs), Above(needs) + Below(needs)};
}

float EditNumberLayout::NaturalRowTop(const Needs& needs) {
    return needs.isVertical ? Natural(needs).height - kRow : Above(needs) - kHalfRow;
}

} // namespace uit::controls
