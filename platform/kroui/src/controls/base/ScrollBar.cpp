#include "kroui/controls/ScrollBar.h"

#include "krocore/Localizer.h"

#include <algorithm>

namespace kroui::controls {

using ui::MouseEvent;

namespace {

constexpr float kShortestThumb = 28;
constexpr float kMargin = 2;

} // namespace

void ScrollBar::SetRange(float content, float visible) {
    if (content == fContent && visible == fVisible) return;
    fContent = content;
    fVisible = visible;
    UI_Show(content > visible);
    UI_Invalidate();
}

void ScrollBar::SetPosition(float position) {
    if (position == fPosition) return;
    fPosition = position;
    UI_Invalidate();
}

ScrollBar::Thumb ScrollBar::ThumbPlace() const {
    const float room = Length();
    if (fContent <= fVisible) return {0, room};
    const float length = std::min(room, std::max(kShortestThumb, room * fVisible / fContent));
    return {(room - length) * fPosition / (fContent - fVisible), length};
}

void ScrollBar::UI_Draw(limner::Limner* limner) {
    const Thumb thumb = ThumbPlace();
    const bool isActive = fIsHovered || fIsDragged;
    const float inset = isActive ? kMargin : kMargin + 1;
    const Rect local = UI_GetLocalRect();
    const Rect rect = fIsVertical ? Rect{0, thumb.start, local.width, thumb.length}
                                  : Rect{thumb.start, 0, thumb.length, local.height};
    const Rect shape = rect.Inset(inset, inset);
    limner->FillRoundRect(shape, std::min(shape.width, shape.height) / 2,
                          GetColor(isActive ? ui::kColorDimText : ui::kColorLine));
}

bool ScrollBar::UI_DoMouseEvent(ui::UI_Node* node, const MouseEvent& event) {
    switch (event.action) {
    case MouseEvent::Action::kEntered: SetState(fIsHovered, true); return true;
    case MouseEvent::Action::kLeft: SetState(fIsHovered, false); return true;
    case MouseEvent::Action::kPressed: return event.button == 1 && Press(Along(event.position));
    case MouseEvent::Action::kDragged:
        if (fIsDragged) DragTo(Along(event.position));
        return true;
    case MouseEvent::Action::kReleased:
    case MouseEvent::Action::kCaptureLost: SetState(fIsDragged, false); return true;
    default: return UI_Node::UI_DoMouseEvent(node, event);
    }
}

bool ScrollBar::Press(float place) {
    const Thumb thumb = ThumbPlace();
    if (place >= thumb.start && place < thumb.start + thumb.length) {
        fGrip = place - thumb.start;
        SetState(fIsDragged, true);
    } else if (fListener) {
        fListener(fPosition + (place < thumb.start ? -fVisible : fVisible));
    }
    return true;
}

void ScrollBar::DragTo(float place) {
    const float room = Length() - ThumbPlace().length;
    if (room > 0 && fListener) fListener((place - fGrip) / room * (fContent - fVisible));
}

void ScrollBar::SetState(bool& state, bool on) {
    if (state == on) return;
    state = on;
    UI_Invalidate();
}

ui::AccessibleInfo ScrollBar::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info;
    info.role = ui::Role::kSlider;
    info.name = krocore::Localize("$$$/kroui/Scroll=Scroll");
    return info;
}

} // namespace kroui::controls
