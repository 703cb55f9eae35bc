// What UI_EditNumber shows and how it answers the user.

#include "uit/controls/UI_EditNumber.h"

#include <cmath>

namespace uit::controls {

using kroui::Point;
using kroui::Rect;
using kroui::controls::HotTextLook;
using kroui::controls::NumberDrag;
using kroui::controls::NumberEntry;
using kroui::controls::SliderLook;
using kroui::limner::Limner;
using kroui::ui::Key;
using kroui::ui::MouseEvent;

namespace {

// Steps of the slider wider than this are felt, so the knob goes from one to the next.
constexpr double kWideStep = 4;

} // namespace

void UI_EditNumber::UI_Draw(Limner* context) {
    DrawLabel(*context);
    if (fUseSlider) DrawSlider(*context);
    DrawNumber(*context);
}

void UI_EditNumber::DrawLabel(Limner& context) const {
    const Rect& place = Layout().label;
    if (place.IsEmpty() || !context.ClipBounds().Intersects(place)) return;
    kroui::limner::TextPlacement placement{fAlignment, kroui::limner::TextTruncation::kEnd, false};
    placement.alignment = fUseInline ? kroui::limner::TextAlignment::kRight : kroui::limner::TextAlignment::kLeft;
    if (IsVertical()) placement.alignment = kroui::limner::TextAlignment::kCentre;
    const int color = IsEnabled() ? kroui::ui::kColorText : kroui::ui::kColorDisabledText;
    context.DrawText(GetLabel(), {}, GetColor(color), place, placement);
}

void UI_EditNumber::DrawSlider(Limner& context) const {
    const SliderLook look = Slider();
    if (const SliderRuler ruler = Ruler(); ruler.ruler && fRulerFits) {
        fRuler->SetVertical(look.vertical);
        fRuler->SetPixelRange(look.PixelAt(SliderPosition(fRuler->GetFirstValue())),
                              look.PixelAt(SliderPosition(fRuler->GetLastValue())));
        ruler.Draw(context, *this, look, Layout().rulerRoom);
    }
    if (context.ClipBounds().Intersects(Layout().slider)) look.Draw(context, *this);
}

void UI_EditNumber::DrawNumber(Limner& context) const {
    const EditNumberLayout& layout = Layout();
    const kroui::limner::SupplierInterface* const supplier = UI_GetDrawSupplier();
    if (!supplier || !context.ClipBounds().Intersects(Union(layout.number, layout.unit))) return;
    const krocore::string16 text = FormatValue();
    HotTextLook look = Number(text);
    HotTextLook::Places places = look.PlaceIn(layout.number, *supplier);
    places.unit = layout.unit;
    look.unit = GetUnitLabel();
    if (fEntry.IsOpen()) {
        look.text = {};
        look.focused = false;
        places.text.width = 0;
    }
    look.Draw(context, *this, places);
}

bool UI_EditNumber::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    UI_InteractiveControlView::UI_DoMouseEvent(node, event);
    if (node || !IsEnabled()) return false;
    const boost::intrusive_ptr<UI_EditNumber> keepAlive(this);
    switch (event.action) {
    case MouseEvent::Action::kPressed: return Press(event);
    case MouseEvent::Action::kDragged: Drag(event); return true;
    case MouseEvent::Action::kReleased: Release(event); return true;
    case MouseEvent::Action::kCaptureLost:
        fGesture.Abandon();
        fPressedPart = Part::kNone;
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
    fPressedPart = PartAt(event.position);
    fLastPoint = event.position;
    fHasMoved = false;
    if (fPressedPart == Part::kSlider) PressSlider(event);
    if (fPressedPart == Part::kNumber) PressNumber(event);
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
    if (fPressedPart == Part::kNumber) {
        fGesture.DragBy(fNumberDrag.MoveTo(event.position) / NumberDrag::Travel(StepCount()), event.modifiers);
        fHasMoved = fNumberDrag.HasMoved();
        return;
    }
    fHasMoved = fHasMoved || event.position != fLastPoint;
    if (fPressedPart == Part::kSlider)
        fGesture.DragBy(Slider().Fraction(event.position.x - fLastPoint.x, event.position.y - fLastPoint.y),
                        event.modifiers);
    fLastPoint = event.position;
}

void UI_EditNumber::Release(const MouseEvent& event) {
    const bool isAbandoned = fPressedPart != Part::kLabel && !fGesture.IsDragging();
    fGesture.EndDrag();
    fPressedPart = Part::kNone;
    if (!fHasMoved && !isAbandoned && event.Has(kroui::ui::kCommand)) fGesture.Reset();
    SetHoverPart(PartAt(event.position));
    UI_Invalidate();
}

bool UI_EditNumber::UI_DoKeyEvent(const kroui::ui::KeyEvent& event) {
    if (!IsEnabled() || fEntry.IsOpen()) return false;
    const boost::intrusive_ptr<UI_EditNumber> keepAlive(this);
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
    const boost::intrusive_ptr<UI_EditNumber> keepAlive(this);
    return HandleTimer(timerID) || UI_InteractiveControlView::UI_DoTimerNotify(timerID);
}

void UI_EditNumber::UI_FocusChanged(bool hasFocus) {
    if (!hasFocus) fGesture.Flush();
    UI_InteractiveControlView::UI_FocusChanged(hasFocus);
}

void UI_EditNumber::UI_NodeChanged(NodeChange change) {
    if (change == kAttached) {
        fLayoutIsValid = false;
        TakeNaturalSize();
    }
    if (change == kDetaching) {
        fEntry.Close();
        SettleGesture();
        fHoverPart = fPressedPart = Part::kNone;
    }
    UI_InteractiveControlView::UI_NodeChanged(change);
}

void UI_EditNumber::UI_SizeChanged(const kroui::RectT<float>& rect) {
    fEntry.Close();
    fLayoutIsValid = false;
    UI_InteractiveControlView::UI_SizeChanged(rect);
}

kroui::ui::Cursor UI_EditNumber::UI_GetCursor(Point point) const {
    const bool isNumber = IsEnabled() && PartAt(point) == Part::kNumber;
    return isNumber ? kroui::ui::Cursor::kHorizontal : kroui::ui::Cursor::kArrow;
}

kroui::ui::AccessibleInfo UI_EditNumber::UI_GetAccessibleInfo() const {
    kroui::ui::AccessibleInfo info = UI_InteractiveControlView::UI_GetAccessibleInfo();
    info.role = kroui::ui::Role::kNumber;
    info.name = GetLabel();
    info.value = FormatValue();
    if (!GetUnitLabel().empty()) info.value.append(u" ").append(GetUnitLabel());
    return info;
}

void UI_EditNumber::ValueChanged(double oldValue) {
    if (!UI_IsAttached()) return;
    if (fUseSlider) UI_InvalidateRect(Slider().ChangedArea(SliderPosition(oldValue)));
    UI_InvalidateRect(Layout().number);
}

// A ruler made from the archive's properties follows the bounds; later words of the ruler's user stand.
void UI_EditNumber::ValueLookChanged() {
    const bool isMoved = GetMinValue() != fRulerLow || GetMaxValue() != fRulerHigh;
    if (fRuler && !fRulerIsGiven && isMoved) {
        fRulerLow = GetMinValue();
        fRulerHigh = GetMaxValue();
        fRuler->SetValueRange(fRulerLow, fRulerHigh);
    }
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
        fPressedPart = fHoverPart = Part::kNone;
    }
    UI_InteractiveControlView::ControlStateChanged();
}

double UI_EditNumber::GesturePosition(double value) const {
    return fPressedPart == Part::kNumber ? ScalePosition(value, GetScale()) : SliderPosition(value);
}

double UI_EditNumber::GestureValueAt(double position) const {
    return fPressedPart == Part::kNumber ? ScaleValueAt(position, GetScale()) : SliderValueAt(position);
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

SliderLook UI_EditNumber::Slider() const {
    SliderLook look;
    look.track = Layout().track;
    look.position = SliderPosition(GetValue());
    look.origin = GestureMinimum() < 0 && GestureMaximum() > 0 ? SliderPosition(0) : 0;
    look.vertical = IsVertical();
    look.inverted = fInvertSlider;
    look.enabled = IsEnabled();
    look.hovered = fHoverPart == Part::kSlider;
    look.pressed = fPressedPart == Part::kSlider;
    look.focused = ShowsFocus();
    return look;
}

HotTextLook UI_EditNumber::Number(std::u16string_view text) const {
    HotTextLook look;
    look.text = text;
    look.alignment = fAlignment;
    look.enabled = IsEnabled();
    look.hovered = fHoverPart == Part::kNumber || fPressedPart == Part::kNumber;
    look.focused = ShowsFocus() && !fUseSlider;
    return look;
}

void UI_EditNumber::SetHoverPart(Part part) {
    if (part == fHoverPart || fPressedPart != Part::kNone) return;
    fHoverPart = part;
    UI_Invalidate();
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
    fEntry.Open(HotTextLook::FieldFrame(layout.number, places, fAlignment),
                krocore::FormatNumber(GetValue(), GetDecimalPlaces(), flags), GetUnitLabel(), {}, fAlignment);
    return true;
}

} // namespace uit::controls
