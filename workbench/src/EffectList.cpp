#include "workbench/EffectList.h"

#include "kroui/controls/UI_StaticText.h"
#include "workbench/PixelSnap.h"

#include <algorithm>

namespace workbench {

using kroui::controls::UI_StaticText;
using kroui::ui::Key;
using qoc::components::EffectCategory;
using qoc::components::EffectDescription;

namespace {

constexpr float kTopMargin = 12;
constexpr float kItemMargin = 6;
constexpr float kHeadingMargin = 14;
constexpr float kHeadingHeight = 24;
constexpr float kHeadingSize = 11;
constexpr float kCategoryGap = 10;
constexpr float kFocusWidth = 2;
// What is left of the width inside the focus ring.
constexpr float kColumnWidth = EffectList::kWidth - 2 * kFocusWidth;

// As large as its lines.
class Column final : public kroui::ui::UI_Node {};

} // namespace

EffectList::EffectList(const Effects& effects, Listener listener)
    : fListener(std::move(listener)), fScroll(new ScrollView), fColumn(new Column) {
    UI_SetID("effects");
    UI_SetStateFlags(kStateWantsKeyboardFocus);
    float top = kTopMargin;
    for (int category = 0; category <= static_cast<int>(EffectCategory::kTimeAndPitch); ++category)
        AddCategory(static_cast<EffectCategory>(category), effects, top);
    fColumn->UI_SetFrame({0, 0, kColumnWidth, top});
    fScroll->SetDocument(fColumn);
    ChildPushBack(fScroll);
}

void EffectList::AddCategory(EffectCategory category, const Effects& effects, float& top) {
    const auto isInCategory = [category](const EffectDescription* effect) { return effect->category == category; };
    if (std::none_of(effects.begin(), effects.end(), isInCategory)) return;
    const boost::intrusive_ptr<UI_StaticText> heading(new UI_StaticText);
    heading->SetText(qoc::components::CategoryName(category));
    heading->SetBold(true);
    heading->SetFontSize(kHeadingSize);
    heading->SetColorRole(kroui::ui::kColorDimText);
    heading->UI_SetFrame({kHeadingMargin, top, kColumnWidth - 2 * kHeadingMargin, kHeadingHeight});
    fColumn->ChildPushBack(heading);
    top += kHeadingHeight;
    for (const EffectDescription* const effect : effects) {
        if (!isInCategory(effect)) continue;
        const boost::intrusive_ptr<EffectListItem> item(new EffectListItem(*effect));
        item->UI_SetFrame({kItemMargin, top, kColumnWidth - 2 * kItemMargin, EffectListItem::kHeight});
        item->NotifyWhenChanged([this](auto* message) { OnItem(message); });
        fColumn->ChildPushBack(item);
        fItems.push_back(item);
        top += EffectListItem::kHeight;
    }
    top += kCategoryGap;
}

void EffectList::Select(const EffectDescription& effect) {
    for (const auto& item : fItems) {
        item->Select(&item->Effect() == &effect);
        if (item->IsSelected()) fScroll->Reveal(item->UI_GetFrame().Inset(0, -kHeadingHeight));
    }
}

void EffectList::UI_Draw(kroui::limner::Limner* limner) {
    const kroui::Rect rect = UI_GetLocalRect();
    limner->FillRect(rect, GetColor(kroui::ui::kColorPanel));
    const kroui::Rect edge = Snapped(*this, *limner, {rect.width - 1, 0, 1, rect.height});
    limner->FillRect(edge, GetColor(kroui::ui::kColorLine));
    if (!UI_HasFocus()) return;
    limner->FrameRoundRect(rect, 0, GetColor(kroui::ui::kColorAccent), kFocusWidth);
}

void EffectList::UI_SizeChanged(const kroui::RectT<float>& rect) {
    const float edge = kFocusWidth;
    fScroll->UI_SetFrame({edge, edge, rect.width - 2 * edge, rect.height - 2 * edge});
}

std::size_t EffectList::SelectedIndex() const {
    const auto found = std::find_if(fItems.begin(), fItems.end(), [](const auto& item) { return item->IsSelected(); });
    return static_cast<std::size_t>(found - fItems.begin());
}

void EffectList::Choose(std::size_t index) {
    if (index < fItems.size() && !fItems[index]->IsSelected()) fListener(fItems[index]->Effect());
}

bool EffectList::UI_DoKeyEvent(const kroui::ui::KeyEvent& event) {
    if (event.modifiers != kroui::ui::kNoModifier || fItems.empty()) return false;
    const std::size_t selected = SelectedIndex();
    switch (event.key) {
    case Key::kUp: Choose(selected - std::min<std::size_t>(selected, 1)); return true;
    case Key::kDown: Choose(std::min(selected + 1, fItems.size() - 1)); return true;
    case Key::kHome: Choose(0); return true;
    case Key::kEnd: Choose(fItems.size() - 1); return true;
    default: return false;
    }
}

void EffectList::UI_FocusChanged(bool hasFocus) {
    UI_Node::UI_FocusChanged(hasFocus);
    UI_Invalidate();
}

kroui::ui::AccessibleInfo EffectList::UI_GetAccessibleInfo() const {
    kroui::ui::AccessibleInfo info = UI_Node::UI_GetAccessibleInfo();
    info.role = kroui::ui::Role::kList;
    info.focusable = true;
    return info;
}

void EffectList::OnItem(kroui::controls::UI_ControlChangedMessage* message) {
    fListener(static_cast<EffectListItem*>(message->GetControl())->Effect());
}

} // namespace workbench
