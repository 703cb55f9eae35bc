#include "workbench/views/EffectList.h"

#include "krocore/Localizer.h"
#include "kroui/ui/PixelGrid.h"

#include <algorithm>
#include <iterator>

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

boost::intrusive_ptr<UI_StaticText> NewHeading() {
    boost::intrusive_ptr<UI_StaticText> heading(new UI_StaticText);
    heading->SetBold(true);
    heading->SetFontSize(kHeadingSize);
    heading->SetColorRole(kroui::ui::kColorDimText);
    return heading;
}

} // namespace

EffectList::EffectList(const Effects& effects, EffectSearch search, Listener listener)
    : fSearch(std::move(search)), fListener(std::move(listener)), fScroll(new kroui::controls::ScrollView),
      fColumn(new Column), fNothing(NewHeading()) {
    UI_SetID("effects");
    UI_SetStateFlags(kStateWantsKeyboardFocus);
    fNothing->SetText(krocore::Localize("$$$/Workbench/NoEffect=Nothing is called so."));
    fColumn->ChildPushBack(fNothing);
    for (int category = 0; category <= static_cast<int>(EffectCategory::kTimeAndPitch); ++category)
        AddCategory(static_cast<EffectCategory>(category), effects);
    Arrange();
    fScroll->SetDocument(fColumn);
    ChildPushBack(fScroll);
}

void EffectList::AddCategory(EffectCategory category, const Effects& effects) {
    Category added{NewHeading(), {}};
    added.heading->SetText(qoc::components::CategoryName(category));
    fColumn->ChildPushBack(added.heading);
    for (const EffectDescription* const effect : effects) {
        if (effect->category != category) continue;
        const Item item(new EffectListItem(*effect));
        item->NotifyWhenChanged([this](auto* message) { OnItem(message); });
        fColumn->ChildPushBack(item);
        added.items.push_back(item);
    }
    fCategories.push_back(std::move(added));
}

void EffectList::Arrange() {
    float top = kTopMargin;
    for (const Category& category : fCategories)
        ArrangeCategory(category, top);
    fNothing->UI_Show(top == kTopMargin);
    fNothing->UI_SetFrame({kHeadingMargin, kTopMargin, kColumnWidth - 2 * kHeadingMargin, kHeadingHeight});
    fColumn->UI_SetFrame({0, 0, kColumnWidth, std::max(top, kTopMargin + kHeadingHeight)});
    fScroll->DocumentResized();
}

void EffectList::ArrangeCategory(const Category& category, float& top) {
    const bool isShown = std::ranges::any_of(category.items, [](const Item& item) { return item->UI_IsVisible(); });
    category.heading->UI_Show(isShown);
    if (!isShown) return;
    category.heading->UI_SetFrame({kHeadingMargin, top, kColumnWidth - 2 * kHeadingMargin, kHeadingHeight});
    top += kHeadingHeight;
    for (const Item& item : category.items) {
        if (!item->UI_IsVisible()) continue;
        item->UI_SetFrame({kItemMargin, top, kColumnWidth - 2 * kItemMargin, EffectListItem::kHeight});
        top += EffectListItem::kHeight;
    }
    top += kCategoryGap;
}

void EffectList::Filter(std::u16string_view text) {
    if (!fIsFiltered) fSearch.Refresh();
    fIsFiltered = !text.empty();
    for (const Category& category : fCategories) {
        for (const Item& item : category.items) {
            const auto hit = fSearch.Find(item->Effect(), text);
            item->UI_Show(hit.has_value());
            item->SetFoundBy(hit ? hit->by : krocore::string16());
        }
    }
    Arrange();
    fScroll->ScrollTo({});
    RevealSelected();
}

void EffectList::Select(const EffectDescription& effect) {
    for (const Category& category : fCategories) {
        for (const Item& item : category.items)
            item->Select(&item->Effect() == &effect);
    }
    RevealSelected();
}

// With a heading that may stand above it.
void EffectList::RevealSelected() {
    for (const EffectListItem* const item : ShownItems())
        if (item->IsSelected()) fScroll->Reveal(item->UI_GetFrame().Inset(0, -kHeadingHeight - kTopMargin));
}

void EffectList::UI_Draw(kroui::limner::Limner* limner) {
    const kroui::Rect rect = UI_GetLocalRect();
    limner->FillRect(rect, GetColor(kroui::ui::kColorPanel));
    DrawRightLine(*this, *limner);
    if (!UI_HasFocus()) return;
    limner->FrameRoundRect(rect, 0, GetColor(kroui::ui::kColorAccent), kFocusWidth);
}

void EffectList::DrawRightLine(const UI_Node& node, kroui::limner::Limner& limner) {
    const kroui::Rect rect = node.UI_GetLocalRect();
    limner.FillRect(kroui::ui::PixelGrid(node, limner).Snap({rect.width - 1, 0, 1, rect.height}),
                    node.GetColor(kroui::ui::kColorLine));
}

void EffectList::UI_SizeChanged(const kroui::RectT<float>& rect) {
    const float edge = kFocusWidth;
    const bool hadNoRoom = fScroll->UI_GetFrame().height <= 0;
    fScroll->UI_SetFrame({edge, edge, rect.width - 2 * edge, rect.height - 2 * edge});
    if (!hadNoRoom) return;
    fScroll->ScrollTo({});
    RevealSelected();
}

std::vector<EffectListItem*> EffectList::ShownItems() const {
    std::vector<EffectListItem*> shown;
    for (const Category& category : fCategories) {
        for (const Item& item : category.items)
            if (item->UI_IsVisible()) shown.push_back(item.get());
    }
    return shown;
}

void EffectList::Choose(const EffectListItem& item) {
    if (!item.IsSelected()) fListener(item.Effect());
}

bool EffectList::ChooseByKey(Key key) {
    const std::vector<EffectListItem*> shown = ShownItems();
    if (shown.empty()) return true;
    const auto found = std::ranges::find_if(shown, [](const EffectListItem* item) { return item->IsSelected(); });
    if (found == shown.end() || key == Key::kHome) {
        Choose(*shown.front());
    } else if (key == Key::kEnd) {
        Choose(*shown.back());
    } else if (key == Key::kUp && found != shown.begin()) {
        Choose(**std::prev(found));
    } else if (key == Key::kDown && std::next(found) != shown.end()) {
        Choose(**std::next(found));
    }
    return true;
}

bool EffectList::UI_DoKeyEvent(const kroui::ui::KeyEvent& event) {
    if (event.modifiers != kroui::ui::kNoModifier) return false;
    switch (event.key) {
    case Key::kUp:
    case Key::kDown:
    case Key::kHome:
    case Key::kEnd:
    case Key::kEnter: return ChooseByKey(event.key);
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
    info.name = krocore::Localize("$$$/Workbench/Effects=Effects");
    info.focusable = true;
    return info;
}

void EffectList::OnItem(kroui::controls::UI_ControlChangedMessage* message) {
    fListener(static_cast<EffectListItem*>(message->GetControl())->Effect());
}

} // namespace workbench
