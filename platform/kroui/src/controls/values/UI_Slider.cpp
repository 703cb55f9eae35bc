#include "kroui/controls/UI_Slider.h"

#include <cmath>

namespace kroui::controls {

using ui::MouseEvent;

namespace {

// Steps wider than this are felt, so the knob goes from one to the next.
constexpr double kWideStep = 4;

} // namespace

UI_Slider::UI_Slider() {
    SetWantsKeyboardFocus(true);
}

void UI_Slider::SetVertical(bool vertical) {
    if (vertical == fVertical) return;
    fVertical = vertical;
    UI_Invalidate();
}

void UI_Slider::SetInvert(bool invert) {
    if (invert == fInverted) return;
    fInverted = invert;
    UI_Invalidate();
}

void UI_Slider::UI_Draw(limner::Limner* context) {
    Look().Draw(*context, *this);
}

bool UI_Slider::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    UI_InteractiveControlView::UI_DoMouseEvent(node, event);
    if (node || !IsEnabled()) return false;
    switch (event.action) {
    case MouseEvent::Action::kPressed: return Press(event);
    case MouseEvent::Action::kDragged: Drag(event); return true;
    case MouseEvent::Action::kReleased: Release(event); return true;
    case MouseEvent::Action::kCaptureLost: fGesture.Abandon(); return true;
    case MouseEvent::Action::kWheel: return HandleWheel(event);
    default: return false;
    }
}

bool UI_Slider::Press(const MouseEvent& event) {
    if (event.button != 1) return false;
    const boost::intrusive_ptr<UI_Slider> keepAlive(this);
    UI_TakeFocus();
    if (event.clickCount == 2) {
        fGesture.Reset();
        return true;
    }
    const SliderLook look = Look();
    fPressPoint = fLastPoint = event.position;
    fHasMoved = false;
    fGesture.BeginDrag(Look().Length() >= StepCount() * kWideStep && GetScale() == kLinear);
    if (!event.Has(ui::kCommand) && !look.KnobRect().Contains(event.position))
        fGesture.DragTo(GestureValueAt(look.PositionAt(event.position)));
    UI_InvalidateRect(Look().ChangedArea(look.position));
    return true;
}

void UI_Slider::Drag(const MouseEvent& event) {
    const boost::intrusive_ptr<UI_Slider> keepAlive(this);
    fHasMoved = fHasMoved || event.position != fPressPoint;
    fGesture.DragBy(Look().Fraction(event.position.x - fLastPoint.x, event.position.y - fLastPoint.y), event.modifiers);
    fLastPoint = event.position;
}

void UI_Slider::Release(const MouseEvent& event) {
    const boost::intrusive_ptr<UI_Slider> keepAlive(this);
    const bool isReset = fGesture.IsDragging() && !fHasMoved && event.Has(ui::kCommand);
    fGesture.EndDrag();
    if (isReset) fGesture.Reset();
    UI_Invalidate();
}

bool UI_Slider::UI_DoKeyEvent(const ui::KeyEvent& event) {
    const boost::intrusive_ptr<UI_Slider> keepAlive(this);
    return IsEnabled() && fGesture.Key(event);
}

bool UI_Slider::UI_DoTimerNotify(long timerID) {
    const boost::intrusive_ptr<UI_Slider> keepAlive(this);
    return HandleTimer(timerID) || UI_InteractiveControlView::UI_DoTimerNotify(timerID);
}

void UI_Slider::UI_FocusChanged(bool hasFocus) {
    if (!hasFocus) fGesture.Flush();
    UI_InteractiveControlView::UI_FocusChanged(hasFocus);
}

void UI_Slider::UI_NodeChanged(NodeChange change) {
    if (change == kDetaching) SettleGesture();
    UI_InteractiveControlView::UI_NodeChanged(change);
}

ui::AccessibleInfo UI_Slider::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info = UI_InteractiveControlView::UI_GetAccessibleInfo();
    info.role = ui::Role::kSlider;
    info.value = FormatValue();
    AddAccessibleRange(info);
    return info;
}

bool UI_Slider::UI_DoAccessibleAction(const ui::AccessibleRequest& request) {
    return HandleAccessible(request);
}

std::optional<double> UI_Slider::ReadTyped(std::u16string_view typed) const {
    return krocore::ParseTypedNumber(typed, {});
}

Rect UI_Slider::TrackRect() const {
    const Rect all = UI_GetLocalRect();
    return fVertical ? all.Inset(0, SliderLook::kKnobReach) : all.Inset(SliderLook::kKnobReach, 0);
}

SliderLook UI_Slider::Look() const {
    SliderLook look;
    look.track = TrackRect();
    look.position = GesturePosition(GetValue());
    look.origin = GestureMinimum() < 0 && GestureMaximum() > 0 ? GesturePosition(0) : 0;
    look.vertical = fVertical;
    look.inverted = RunsBackwards();
    look.enabled = IsEnabled();
    look.hovered = IsHovered();
    look.pressed = fGesture.IsDragging();
    look.focused = ShowsFocus();
    return look;
}

void UI_Slider::ValueChanged(double oldValue) {
    if (UI_IsAttached()) UI_InvalidateRect(Look().ChangedArea(GesturePosition(oldValue)));
}

void UI_Slider::SendGesture(int changeMessage) {
    using Message = UI_InteractiveControlChangedMessage;
    SendInteractive(static_cast<Message::ChangeMessage>(changeMessage));
    if (changeMessage == Message::kEnded) SendChanged();
}

void UI_Slider::ControlStateChanged() {
    if (!IsEnabled()) SettleGesture();
    UI_InteractiveControlView::ControlStateChanged();
}

} // namespace kroui::controls
