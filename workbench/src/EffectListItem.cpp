#include "workbench/EffectListItem.h"

#include "kroui/controls/TypeAhead.h"
#include "workbench/PixelSnap.h"

#include <algorithm>

namespace workbench {

using kroui::ui::MouseEvent;

namespace {

constexpr float kIndent = 20;
constexpr float kRadius = 4;

} // namespace

EffectListItem::EffectListItem(const qoc::components::EffectDescription& effect)
    : fEffect(effect), fName(effect.DisplayName()) {
    UI_SetID("effect-" + std::string(effect.shortName));
}

bool EffectListItem::Matches(std::u16string_view text) const {
    const krocore::string16 all = fName + u' ' + qoc::components::CategoryName(fEffect.category);
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find(u' ', begin), text.size());
        if (!kroui::controls::TypeAhead::Contains(all, text.substr(begin, end - begin))) return false;
        begin = end + 1;
    }
    return true;
}

void EffectListItem::UI_Draw(kroui::limner::Limner* limner) {
    const kroui::Rect rect = Snapped(*this, *limner, UI_GetLocalRect());
    if (IsSelected()) {
        limner->FillRoundRect(rect, kRadius, GetColor(kroui::ui::kColorAccent));
    } else if (IsHovered()) {
        limner->FillRoundRect(rect, kRadius, GetColor(kroui::ui::kColorRaised));
    }
    const auto color = GetColor(IsSelected() ? kroui::ui::kColorAccentText : kroui::ui::kColorText);
    limner->DrawText(fName, {}, color, {kIndent, 0, rect.width - kIndent - kRadius, rect.height},
                     {.truncation = kroui::limner::TextTruncation::kEnd});
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
    return info;
}

} // namespace workbench
