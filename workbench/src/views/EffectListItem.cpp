#include "workbench/views/EffectListItem.h"

#include "kroui/controls/TextMeasure.h"
#include "kroui/ui/PixelGrid.h"

#include <cmath>

namespace workbench {

using kroui::ui::MouseEvent;

namespace {

constexpr float kIndent = 20;
constexpr float kRadius = 4;
constexpr float kGap = 8;
constexpr float kLeastRoom = 36; // for words that can be recognised
constexpr kroui::limner::Font kFoundByFont{11};

} // namespace

EffectListItem::EffectListItem(const qoc::components::EffectDescription& effect)
    : fEffect(effect), fName(effect.DisplayName()) {
    UI_SetID("effect-" + std::string(effect.shortName));
}

void EffectListItem::SetFoundBy(std::u16string_view text) {
    if (text == fFoundBy) return;
    fFoundBy = text;
    // Their room may be too small for both.
    UI_SetTooltip(fFoundBy.empty() ? krocore::string16() : fName + u": " + fFoundBy);
    UI_Invalidate();
}

void EffectListItem::UI_Draw(kroui::limner::Limner* limner) {
    const kroui::Rect rect = kroui::ui::PixelGrid(*this, *limner).Snap(UI_GetLocalRect());
    if (IsSelected()) {
        limner->FillRoundRect(rect, kRadius, GetColor(kroui::ui::kColorAccent));
    } else if (IsHovered()) {
        limner->FillRoundRect(rect, kRadius, GetColor(kroui::ui::kColorRaised));
    }
    const auto color = GetColor(IsSelected() ? kroui::ui::kColorAccentText : kroui::ui::kColorText);
    const kroui::limner::TextPlacement options{.truncation = kroui::limner::TextTruncation::kEnd};
    const kroui::Rect room = {kIndent, 0, rect.width - kIndent - kRadius, rect.height};
    limner->DrawText(fName, {}, color, room, options);
    if (fFoundBy.empty()) return;
    const float end = std::ceil(kroui::controls::TextWidth(*this, fName, {})) + kGap;
    if (room.width - end < kLeastRoom) return;
    limner->DrawText(fFoundBy, kFoundByFont, IsSelected() ? color : GetColor(kroui::ui::kColorDimText),
                     {room.left + end, 0, room.width - end, rect.height}, options);
}

bool EffectListItem::UI_DoMouseEvent(kroui::ui::UI_Node* node, const MouseEvent& event) {
    if (event.IsAction(MouseEvent::Action::kPressed) && event.button == 1) {
        SendChanged();
        return true;
    }
    return UI_ControlView::UI_DoMouseEvent(node, event);
}

kroui::ui::AccessibleInfo EffectListItem::UI_GetAccessibleInfo() const {
    kroui::ui::AccessibleInfo info = UI_ControlView::UI_GetAccessibleInfo();
    info.role = kroui::ui::Role::kListItem;
    info.name = fName;
    info.value = IsSelected() ? u"selected" : u"";
    if (!fFoundBy.empty()) info.name += u", " + fFoundBy;
    return info;
}

} // namespace workbench
