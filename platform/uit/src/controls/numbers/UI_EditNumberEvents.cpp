// How UI_EditNumber answers the user.

#include "uit/controls/UI_EditNumber.h"

#include <cmath>

namespace uit::controls {

using kroui::Point;
using kroui::Rect;
using kroui::controls::HotTextLook;
using kroui::controls::NumberDrag;
using kroui::controls::NumberEntry;
using kroui::ui::Key;
using kroui::ui::MouseEvent;

namespace {

// Steps of the slider wider than this are felt, so the knob goes from one to the next.
constexpr double kWideStep = 4;
constexpr float kNarrowestEntry = 56; // of the field that a number is typed into

} // namespace

bool UI_EditNumber::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    UI_InteractiveControlView::UI_DoMouseEvent(node, event);
    if (node || !IsEnabled()) return false;
    KeepPlaces();
    switch (event.action) {
    case MouseEvent::Action::kPressed: return Press(event);
    case MouseEvent::Action::kDragged: Drag(event); return true;
    case MouseEvent::Action::kReleased: Release(event); return true;
    case MouseEvent::Action::kCaptureLost:
        fGesture.Abandon();
        fPointing.pressed = Part::kNone;
        UI_Invalidate();
        return true;
    case MouseEvent::Action::kWheel: return fEntry.IsOpen() || HandleWheel(event);
    case MouseEvent::Action::kMoved:
    case MouseEvent::Action::kEntered: SetHoverPart(PartAt(event.position)); return false;
    case MouseEvent::Action::kLeft: SetHoverPart(Part::kNone); return false;
    default: return false;
    }
}

bool UI_EditNumber::Press(const MouseEvent& event) {
    if (event.button != 1) return false;
    UI_TakeFocus();
    fPointing.pressed = PartAt(event.position);
    fPointing.last = event.position;
    fPointing.hasMoved = false;
    if (fPointing.pressed == Part::kSlider) PressSlider(event);
    if (fPointing.pressed == Part::kNumber) PressNumber(event);
    UI_Invalidate();
    return true;
}

void UI_EditNumber::PressSlider(const MouseEvent& event) {
    if (event.clickCount == 2) {
        fGesture.Reset();
        return;
    }
    const SliderLook look = Slider();
    fGesture.BeginDrag(IsSliderLinear() && look.Length() >= StepCount() * kWideStep);
    if (!event.Has(kroui::ui::kCommand) && !look.KnobRect().Contains(event.position))
        fGesture.DragTo(SliderValueAt(look.PositionAt(event.position)));
}

void UI_EditNumber::PressNumber(const MouseEvent& event) {
    if (event.clickCount == 2) {
        OpenEntry();
        return;
    }
    fNumberDrag.Begin(event.position);
    fGesture.BeginDrag(GetScale() == kLinear && NumberDrag::IsInSteps(StepCount()));
}

void UI_EditNumber::Drag(const MouseEvent& event) {
    if (fPointing.pressed == Part::kNumber) {
        fGesture.DragBy(fNumberDrag.MoveTo(event.position) / NumberDrag::Travel(StepCount()), event.modifiers);
        fPointing.hasMoved = fNumberDrag.HasMoved();
        return;
    }
    fPointing.hasMoved = fPointing.hasMoved || event.position != fPointing.last;
    if (fPointing.pressed == Part::kSlider)
        fGesture.DragBy(Slider().Fraction(event.position.x - fPointing.last.x, event.position.y - fPointing.last.y),
                        event.modifiers);
    fPointing.last = event.position;
}

void UI_EditNumber::Release(const MouseEvent& event) {
    const bool isAbandoned = fPointing.pressed != Part::kLabel && !fGesture.IsDragging();
    fGesture.EndDrag();
    fPointing.pressed = Part::kNone;
    if (!fPointing.hasMoved && !isAbandoned && event.Has(kroui::ui::kCommand)) fGesture.Reset();
    SetHoverPart(PartAt(event.position));
    UI_Invalidate();
}

bool UI_EditNumber::UI_DoKeyEvent(const kroui::ui::KeyEvent& event) {
    if (!IsEnabled() || fEntry.IsOpen()) return false;
    const bool isEntryKey = event.key == Key::kEnter || event.key == Key::kF2;
    if (isEntryKey && event.modifiers == kroui::ui::kNoModifier && !fGesture.IsDragging()) return OpenEntry();
    return fGesture.Key(event);
}

bool UI_EditNumber::UI_DoTextEvent(const kroui::ui::TextEvent& event) {
    const bool canBegin = IsEnabled() && !fEntry.IsOpen() && !fGesture.IsDragging();
    if (!canBegin || !NumberEntry::IsNumberStart(event.text) || !OpenEntry()) return false;
    fEntry.Field()->TypeText(event.text);
    return true;
}

bool UI_EditNumber::UI_DoTimerNotify(long timerID) {
    return HandleTimer(timerID) || UI_InteractiveControlView::UI_DoTimerNotify(timerID);
}

void UI_EditNumber::UI_FocusChanged(bool hasFocus) {
    if (!hasFocus) fGesture.Flush();
    UI_InteractiveControlView::UI_FocusChanged(hasFocus);
}

void UI_EditNumber::UI_NodeChanged(NodeChange change) {
    if (change == kAttached) {
        fPlaced.reset();
        TakeNaturalSize();
    }
    // A field over the window would stay.
    if (change == kHidden) fEntry.Close();
    if (change == kDetaching) {
        fEntry.Close();
        SettleGesture();
        fPointing.hovered = fPointing.pressed = Part::kNone;
    }
    UI_InteractiveControlView::UI_NodeChanged(change);
}

void UI_EditNumber::UI_SizeChanged(const kroui::RectT<float>& rect) {
    fEntry.Close();
    fPlaced.reset();
    UI_InteractiveControlView::UI_SizeChanged(rect);
}

kroui::ui::Cursor UI_EditNumber::UI_GetCursor(Point point) const {
    const bool isNumber = IsEnabled() && PartAt(point) == Part::kNumber;
    if (!isNumber) return kroui::ui::Cursor::kArrow;
    const bool isVertical = fNumberDrag.GetDirection() == DragDirection::kVertical;
    return isVertical ? kroui::ui::Cursor::kVertical : kroui::ui::Cursor::kHorizontal;
}

kroui::ui::AccessibleInfo UI_EditNumber::UI_GetAccessibleInfo() const {
    kroui::ui::AccessibleInfo info = UI_InteractiveControlView::UI_GetAccessibleInfo();
    info.role = kroui::ui::Role::kNumber;
    info.value = FormatValue();
    if (!GetUnitLabel().empty()) info.value.append(u" ").append(GetUnitLabel());
    AddAccessibleRange(info);
    return info;
}

bool UI_EditNumber::UI_DoAccessibleAction(const kroui::ui::AccessibleRequest& request) {
    fEntry.Close();
    return HandleAccessible(request);
}

std::optional<double> UI_EditNumber::ReadTyped(std::u16string_view typed) const {
    return krocore::ParseTypedNumber(typed, GetUnitLabel());
}

// The band of an equaliser has its name under the slider.
krocore::string16 UI_EditNumber::ShownName() const {
    if (!GetLabel().empty()) return GetLabel();
    return fDescription2.empty() ? fDescription1 : fDescription2;
}

void UI_EditNumber::ValueChanged(double oldValue) {
    if (!UI_IsAttached()) return;
    KeepPlaces();
    if (fUseSlider) UI_InvalidateRect(Slider().ChangedArea(SliderPosition(oldValue)));
    UI_InvalidateRect(Layout().number);
}

void UI_EditNumber::ValueLookChanged() {
    fRulers.SetBounds(GetMinValue(), GetMaxValue());
    UI_Invalidate();
}

void UI_EditNumber::SendGesture(int changeMessage) {
    using Message = kroui::controls::UI_InteractiveControlChangedMessage;
    SendInteractive(static_cast<Message::ChangeMessage>(changeMessage));
    if (changeMessage == Message::kEnded) SendChanged();
}

void UI_EditNumber::ControlStateChanged() {
    if (!IsEnabled()) {
        fEntry.Close();
        SettleGesture();
        fPointing.pressed = fPointing.hovered = Part::kNone;
    }
    UI_InteractiveControlView::ControlStateChanged();
}

double UI_EditNumber::GesturePosition(double value) const {
    if (fPointing.pressed != Part::kNumber) return SliderPosition(value);
    if (GetScale() != kLogarithmic || fHotTextRange.low <= 0) return ScalePosition(value, GetScale());
    return value > fHotTextRange.low
               ? std::log(value / fHotTextRange.low) / std::log(fHotTextRange.high / fHotTextRange.low)
               : 0;
}

double UI_EditNumber::GestureValueAt(double position) const {
    if (fPointing.pressed != Part::kNumber) return SliderValueAt(position);
    if (GetScale() != kLogarithmic || fHotTextRange.low <= 0) return ScaleValueAt(position, GetScale());
    return fHotTextRange.low * std::pow(fHotTextRange.high / fHotTextRange.low, position);
}

UI_EditNumber::Part UI_EditNumber::PartAt(Point point) const {
    const EditNumberLayout& layout = Layout();
    if (Union(layout.number, layout.unit).Contains(point)) return Part::kNumber;
    if (fUseSlider && layout.slider.Contains(point)) return Part::kSlider;
    return Part::kLabel;
}

double UI_EditNumber::SliderPosition(double value) const {
    const SliderRuler ruler = Ruler();
    if (ruler.ruler && !ruler.ruler->IsDegenerate()) return ruler.Position(value);
    return ScalePosition(value, fLogarithmic ? kLogarithmic : kLinear);
}

double UI_EditNumber::SliderValueAt(double position) const {
    const SliderRuler ruler = Ruler();
    if (ruler.ruler && !ruler.ruler->IsDegenerate()) return ruler.ValueAt(position);
    return ScaleValueAt(position, fLogarithmic ? kLogarithmic : kLinear);
}

bool UI_EditNumber::IsSliderLinear() const {
    constexpr double kTolerance = 1e-6;
    return std::abs(SliderPosition((GestureMinimum() + GestureMaximum()) / 2) - 0.5) < kTolerance;
}

bool UI_EditNumber::RunsBackwards() const {
    return fInvertSlider || Ruler().RunsBackwards(IsVertical());
}

void UI_EditNumber::SetHoverPart(Part part) {
    if (part == fPointing.hovered || fPointing.pressed != Part::kNone) return;
    fPointing.hovered = part;
    UI_Invalidate();
}

// A field in a narrow column reaches out of it.
Rect UI_EditNumber::EntryFrame(const HotTextLook::Places& places) const {
    const Rect& number = Layout().number;
    if (!IsVertical() || number.width >= kNarrowestEntry)
        return HotTextLook::FieldFrame(number, places, NumberAlignment());
    const Rect wide{number.Centre().x - kNarrowestEntry / 2, number.top, kNarrowestEntry, number.height};
    return HotTextLook::FieldFrame(wide, {wide.Inset(HotTextLook::kPadding, 0), {}}, NumberAlignment());
}

bool UI_EditNumber::OpenEntry() {
    const kroui::limner::SupplierInterface* const supplier = UI_GetDrawSupplier();
    if (!supplier || !UI_IsAttached()) return false;
    SettleGesture();
    const EditNumberLayout& layout = Layout();
    const krocore::string16 shown = FormatValue();
    HotTextLook::Places places = Number(shown).PlaceIn(layout.number, *supplier);
    places.unit = layout.unit;
    constexpr std::uint32_t kWithoutPadding = krocore::kFormatNoTrailingZeros | krocore::kFormatNoLocalization;
    const std::uint32_t flags = GetFormatFlags() & kWithoutPadding;
    const krocore::string16 written = krocore::FormatNumber(GetValue(), GetDecimalPlaces(), flags);
    fEntry.Open(EntryFrame(places), written, GetUnitLabel(), {fFontSize}, NumberAlignment());
    return true;
}

} // namespace uit::controls
