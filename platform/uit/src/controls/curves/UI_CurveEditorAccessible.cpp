// What UI_CurveEditor tells of its points to those who cannot see them, and what these can do with them.

#include "uit/controls/UI_CurveEditor.h"

#include "controls/curves/CurveGesture.h"
#include "controls/curves/CurvePress.h"

#include "krocore/Localizer.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {

using kroui::ui::AccessibleAction;
using kroui::ui::AccessibleActions;
using kroui::ui::AccessiblePart;
using kroui::ui::AccessibleRange;
using kroui::ui::AccessibleRequest;
using kroui::ui::Key;

namespace {

krocore::string16 NumberText(std::size_t number) {
    return krocore::ToUTF16(std::to_string(number));
}

double Typed(const AxisText& text, double axisValue) {
    return text.axisToTyped ? text.axisToTyped(axisValue) : axisValue;
}

double OnAxis(const AxisText& text, double typed) {
    return text.typedToAxis ? text.typedToAxis(typed) : typed;
}

Key KeyFor(AccessibleAction action) {
    switch (action) {
    case AccessibleAction::kIncrease: return Key::kUp;
    case AccessibleAction::kDecrease: return Key::kDown;
    case AccessibleAction::kIncreasePosition: return Key::kRight;
    case AccessibleAction::kDecreasePosition: return Key::kLeft;
    default: return Key::kNone;
    }
}

} // namespace

kroui::ui::AccessibleInfo UI_CurveEditor::UI_GetAccessibleInfo() const {
    auto info = UI_RulerGridBase::UI_GetAccessibleInfo();
    info.role = kroui::ui::Role::kGraph;
    info.name = UI_GetTooltip();
    if (info.name.empty()) info.name = krocore::Localize("$$$/uit/CurveEditor/Name=Curve");
    const krocore::string16 count = NumberText(fPoints.Count());
    if (const int selected = GetSelectedNode(); selected >= 0) {
        const krocore::string16 number = NumberText(static_cast<std::size_t>(selected) + 1);
        info.value =
            krocore::ReplacePlaceholders(krocore::Localize("$$$/uit/CurveEditor/SelectedPoint=Point @0 of @1: @2"),
                                         {number, count, PositionText(fPoints.At(selected).coordinates)});
    } else {
        info.value =
            krocore::ReplacePlaceholders(krocore::Localize("$$$/uit/CurveEditor/PointCount=@0 points"), {count});
    }
    if (IsEnabled() && CanAddAt(MiddleOfWidestGap())) info.actions.Add(AccessibleActions(AccessibleAction::kAdd));
    return info;
}

int UI_CurveEditor::UI_GetAccessiblePartCount() const {
    int count = 0;
    for (int index = fPoints.NextVisible(-1, true); index >= 0; index = fPoints.NextVisible(index, true))
        ++count;
    return count;
}

int UI_CurveEditor::IndexOfPart(int part) const {
    int index = fPoints.NextVisible(-1, true);
    for (; part > 0 && index >= 0; --part)
        index = fPoints.NextVisible(index, true);
    return index;
}

AccessibleRange UI_CurveEditor::RangeOf(int index, bool isHorizontal) const {
    const CoordinatePair& place = fPoints.At(index).coordinates;
    const CoordinatePair pixel = PixelLength(place);
    const AxisText text = isHorizontal ? HorizontalText() : VerticalText();
    const double value = isHorizontal ? place.horizontal : place.vertical;
    const double next = value + (isHorizontal ? pixel.horizontal : pixel.vertical);
    const int bound = isHorizontal ? 0 : 2;
    const auto [low, high] = std::minmax({Typed(text, GetBound(bound)), Typed(text, GetBound(bound + 1))});
    return {Typed(text, value), low, high, std::abs(Typed(text, next) - Typed(text, value))};
}

AccessiblePart UI_CurveEditor::UI_GetAccessiblePart(int part) const {
    const int index = IndexOfPart(part);
    const auto number = static_cast<std::size_t>(index);
    AccessiblePart point;
    if (IsInSight(index)) point.bounds = HandleArea(index);
    auto& info = point.info;
    info.role = kroui::ui::Role::kGraphPoint;
    const bool isLabelled = number < fPointLabels.size() && !fPointLabels[number].empty();
    info.name = krocore::ReplacePlaceholders(krocore::Localize("$$$/uit/CurveEditor/Point=Point @0"),
                                             {isLabelled ? fPointLabels[number] : NumberText(number + 1)});
    info.value = PositionText(fPoints.At(index).coordinates);
    info.position = RangeOf(index, true);
    info.range = RangeOf(index, false);
    info.selected = fPoints.IsSelected(index);
    info.enabled = IsEnabled();
    if (!IsEnabled()) return point;
    info.actions = AccessibleActions(AccessibleAction::kSelect);
    if (fPoints.May(CurvePointSet::kHorizontal, index))
        info.actions.Add(AccessibleActions(AccessibleAction::kIncreasePosition, AccessibleAction::kDecreasePosition,
                                           AccessibleAction::kSetPosition));
    if (fPoints.May(CurvePointSet::kVertical, index))
        info.actions.Add(
            AccessibleActions(AccessibleAction::kIncrease, AccessibleAction::kDecrease, AccessibleAction::kSetValue));
    if (fDeleteEnabled && fPoints.May(CurvePointSet::kDeletable, index))
        info.actions.Add(AccessibleActions(AccessibleAction::kRemove));
    return point;
}

bool UI_CurveEditor::UI_DoAccessibleAction(const AccessibleRequest& request) {
    if (!IsEnabled() || fPress) return false;
    if (request.part < 0) return request.action == AccessibleAction::kAdd && AddByAction();
    const int index = IndexOfPart(request.part);
    if (!fPoints.Has(index)) return false;
    const bool isOther = fPoints.Selection() != std::vector<int>{index};
    if (isOther) FlushRun();
    SelectByUser([&] { fPoints.Select(index); });
    return MoveByAction(index, request);
}

// The selected point.
bool UI_CurveEditor::MoveByAction(int index, const AccessibleRequest& request) {
    switch (request.action) {
    case AccessibleAction::kSelect: return true;
    case AccessibleAction::kRemove: return EditKey({.key = Key::kDelete});
    case AccessibleAction::kSetPosition:
        PlacePoint(index, OnAxis(HorizontalText(), request.value), std::nullopt);
        return true;
    case AccessibleAction::kSetValue:
        PlacePoint(index, std::nullopt, OnAxis(VerticalText(), request.value));
        return true;
    default: return NudgeKey({.key = KeyFor(request.action)});
    }
}

bool UI_CurveEditor::AddByAction() {
    FlushRun();
    const CoordinatePair place = MiddleOfWidestGap();
    if (!CanAddAt(place)) return false;
    const CurvePoint point{fPoints.NewIdentifier(), place};
    const bool isAdded = fGesture->Publish([&](CurvePointSet& points) {
        points.Insert(IndexFor(place), point);
        return true;
    });
    fSelectionChanged();
    return isAdded;
}

} // namespace uit::controls
