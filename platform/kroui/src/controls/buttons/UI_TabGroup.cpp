#include "kroui/controls/UI_TabGroup.h"

#include "controls/base/ControlDrawing.h"
#include "krocore/Localizer.h"
#include "kroui/controls/TextMeasure.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace kroui::controls {

using drawing::Assign;
using ui::Key;
using ui::MouseEvent;
using ChangeMessage = UI_InteractiveControlChangedMessage::ChangeMessage;

namespace {

constexpr float kTextMargin = 14; // at both sides of a tab's text
constexpr float kLeastTextMargin = 4;
constexpr float kMarkHeight = 2; // of the line under the tab that is shown
constexpr float kHoverInset = 3;
constexpr float kHoverRadius = 4;

} // namespace

UI_TabGroup::UI_TabGroup() {
    SetWantsKeyboardFocus(true);
}

void UI_TabGroup::AddTab(std::u16string_view text) {
    fTabs.emplace_back(text);
    if (fValue < 0) fValue = 0;
    LayoutChanged();
    ShowPage();
}

void UI_TabGroup::DeleteAllTabs() {
    fTabs.clear();
    fValue = 0;
    fHoveredTab = -1;
    LayoutChanged();
}

const krocore::string16& UI_TabGroup::GetTabText(int tab) const {
    static const krocore::string16 sNone;
    return tab >= 0 && tab < GetTabCount() ? fTabs[tab] : sNone;
}

void UI_TabGroup::SetValue(int tab) {
    const bool exists = tab >= 0 && tab < GetTabCount();
    if (!Assign(fValue, exists ? tab : -1)) return;
    ShowPage();
    UI_InvalidateRect({0, 0, UI_GetLocalRect().width, kTabHeight});
}

void UI_TabGroup::SetArrangesPages(bool arranges) {
    fArrangesPages = arranges;
    ArrangePages();
}

Rect UI_TabGroup::PageRect() const {
    const Rect all = UI_GetLocalRect();
    const float top = kTabHeight + kPageGap;
    return all.height > top ? Rect{0, top, all.width, all.height - top} : Rect{};
}

Size UI_TabGroup::SizeAround(Size page) {
    return {page.width, page.height + kTabHeight + kPageGap};
}

Rect UI_TabGroup::TabRect(int tab) const {
    const std::vector<float>& ends = TabEnds();
    if (tab < 0 || tab >= static_cast<int>(ends.size())) return {};
    const float left = tab > 0 ? ends[tab - 1] : 0;
    return {left, 0, ends[tab] - left, kTabHeight};
}

int UI_TabGroup::TabAt(Point point) const {
    for (int tab = 0; tab < GetTabCount(); ++tab)
        if (TabRect(tab).Contains(point)) return tab;
    return -1;
}

// Where the row is too short, every tab gives in proportion to its width.
const std::vector<float>& UI_TabGroup::TabEnds() const {
    if (fTabEnds.size() == fTabs.size()) return fTabEnds;
    std::vector<float> ends;
    for (const krocore::string16& text : fTabs)
        ends.push_back(TextWidth(*this, text) + 2 * kTextMargin);
    std::partial_sum(ends.begin(), ends.end(), ends.begin());
    const float room = UI_GetLocalRect().width;
    const float factor = ends.empty() || ends.back() <= room ? 1 : room / ends.back();
    for (float& end : ends)
        end = std::floor(end * factor);
    fTabEnds = std::move(ends);
    return fTabEnds;
}

void UI_TabGroup::LayoutChanged() {
    fTabEnds.clear();
    UI_Invalidate();
}

void UI_TabGroup::ShowPage() {
    if (!fArrangesPages) return;
    for (std::size_t i = 0; i < ChildCount(); ++i)
        Child(i)->UI_Show(static_cast<int>(i) == fValue);
}

void UI_TabGroup::ArrangePages() {
    if (!fArrangesPages || PageRect().IsEmpty()) return;
    for (const auto& page : Children())
        page->UI_SetFrame(PageRect());
}

void UI_TabGroup::ChildrenChanged() {
    ArrangePages();
    ShowPage();
}

void UI_TabGroup::UI_SizeChanged(const RectT<float>& rect) {
    fTabEnds.clear();
    UI_InteractiveControlView::UI_SizeChanged(rect);
    ArrangePages();
}

void UI_TabGroup::UI_NodeChanged(NodeChange change) {
    if (change == kAttached) fTabEnds.clear();
    if (change == kDetaching) fHoveredTab = -1;
    UI_InteractiveControlView::UI_NodeChanged(change);
}

Size UI_TabGroup::UI_GetNaturalSize() const {
    float tabs = 0;
    for (const krocore::string16& text : fTabs)
        tabs += TextWidth(*this, text) + 2 * kTextMargin;
    Size page;
    for (const auto& child : Children()) {
        const Size natural = child->UI_GetNaturalSize();
        page = {std::max(page.width, natural.width), std::max(page.height, natural.height)};
    }
    const Size around = SizeAround(page);
    return {std::max(tabs, around.width), around.height};
}

float UI_TabGroup::UI_GetBaseline() const {
    return CentredBaseline(*this, kTabHeight);
}

void UI_TabGroup::SetHoveredTab(int tab) {
    const int before = fHoveredTab;
    if (!Assign(fHoveredTab, tab)) return;
    UI_InvalidateRect(TabRect(before));
    UI_InvalidateRect(TabRect(tab));
}

bool UI_TabGroup::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    UI_InteractiveControlView::UI_DoMouseEvent(node, event);
    if (node || !IsEnabled()) return false;
    switch (event.action) {
    case MouseEvent::Action::kEntered:
    case MouseEvent::Action::kMoved: SetHoveredTab(TabAt(event.position)); return false;
    case MouseEvent::Action::kLeft: SetHoveredTab(-1); return false;
    case MouseEvent::Action::kPressed: break;
    default: return event.IsAction(MouseEvent::Action::kDragged) || event.IsAction(MouseEvent::Action::kReleased);
    }
    const int tab = TabAt(event.position);
    if (event.button != 1 || tab < 0) return false;
    UI_TakeFocus();
    ChooseByUser(tab);
    return true;
}

bool UI_TabGroup::UI_DoKeyEvent(const ui::KeyEvent& event) {
    const int count = GetTabCount();
    if (!IsEnabled() || count == 0) return false;
    if (event.key == Key::kTab && event.Has(ui::kCommand)) {
        const int step = event.Has(ui::kShift) ? -1 : 1;
        ChooseByUser((std::max(fValue, 0) + step + count) % count);
        // The focus may have been on the page that is gone.
        UI_TakeFocus();
        return true;
    }
    // Keys that the controls of a page have left come here too.
    if (!UI_HasFocus() || event.modifiers != ui::kNoModifier) return false;
    switch (event.key) {
    case Key::kLeft: ChooseByUser(std::max(fValue - 1, 0)); return true;
    case Key::kRight: ChooseByUser(std::min(fValue + 1, count - 1)); return true;
    case Key::kHome: ChooseByUser(0); return true;
    case Key::kEnd: ChooseByUser(count - 1); return true;
    default: return false;
    }
}

void UI_TabGroup::ChooseByUser(int tab) {
    if (tab == fValue) return;
    SendInteractive(ChangeMessage::kStarted);
    SetValue(tab);
    SendInteractive(ChangeMessage::kChanged);
    SendInteractive(ChangeMessage::kEnded);
    SendChanged();
}

void UI_TabGroup::UI_Draw(limner::Limner* context) {
    if (!context->ClipBounds().Intersects({0, 0, UI_GetLocalRect().width, kTabHeight})) return;
    const ui::PixelGrid grid(*this, *context);
    const float line = grid.Line();
    const Rect base{0, grid.Y(kTabHeight - line), UI_GetLocalRect().width, line};
    context->FillRect(grid.Snap(base), GetColor(ui::kColorLine));
    for (int tab = 0; tab < GetTabCount(); ++tab)
        DrawTab(*context, tab);
}

void UI_TabGroup::DrawTab(limner::Limner& context, int tab) const {
    const ui::PixelGrid grid(*this, context);
    const Rect rect = grid.Snap(TabRect(tab));
    const bool isShown = tab == fValue;
    const bool isHovered = IsEnabled() && tab == fHoveredTab;
    const Rect box = rect.Inset(kHoverInset, kHoverInset);
    if (isHovered && !isShown) context.FillRoundRect(box, kHoverRadius, GetColor(ui::kColorRaised));
    if (isShown && ShowsFocus()) context.FrameRoundRect(box, kHoverRadius, GetColor(ui::kColorAccent), grid.Line());
    const int plain = isShown || isHovered ? ui::kColorText : ui::kColorDimText;
    const float margin = std::clamp((rect.width - TextWidth(*this, fTabs[tab])) / 2, kLeastTextMargin, kTextMargin);
    context.DrawText(fTabs[tab], {}, GetColor(IsEnabled() ? plain : ui::kColorDisabledText), rect.Inset(margin, 0),
                     {limner::TextAlignment::kCentre, limner::TextTruncation::kEnd});
    if (!isShown) return;
    const float height = grid.Line(kMarkHeight);
    const Rect mark{rect.left, grid.Y(kTabHeight) - height, rect.width, height};
    context.FillRect(grid.Snap(mark), GetColor(IsEnabled() ? ui::kColorAccent : ui::kColorDisabledText));
}

ui::AccessibleInfo UI_TabGroup::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info = UI_InteractiveControlView::UI_GetAccessibleInfo();
    info.role = ui::Role::kTabGroup;
    if (info.name.empty()) info.name = krocore::Localize("$$$/kroui/TabGroup/Name=Pages");
    info.value = GetTabText(fValue);
    using Action = ui::AccessibleAction;
    if (IsEnabled()) info.actions = ui::AccessibleActions(Action::kIncrease, Action::kDecrease, Action::kSetValue);
    return info;
}

ui::AccessiblePart UI_TabGroup::UI_GetAccessiblePart(int part) const {
    ui::AccessiblePart tab{{}, TabRect(part)};
    tab.info.role = ui::Role::kTab;
    tab.info.name = GetTabText(part);
    tab.info.selected = part == fValue;
    tab.info.enabled = IsEnabled();
    if (IsEnabled()) tab.info.actions = ui::AccessibleActions(ui::AccessibleAction::kPress);
    return tab;
}

bool UI_TabGroup::UI_DoAccessibleAction(const ui::AccessibleRequest& request) {
    if (!IsEnabled()) return false;
    if (request.part >= 0) return ChooseByAction(request.part);
    switch (request.action) {
    case ui::AccessibleAction::kIncrease: return ChooseByAction(fValue + 1);
    case ui::AccessibleAction::kDecrease: return ChooseByAction(fValue - 1);
    case ui::AccessibleAction::kSetValue:
        return std::abs(request.value) < GetTabCount() && ChooseByAction(static_cast<int>(std::lround(request.value)));
    default: return false;
    }
}

bool UI_TabGroup::ChooseByAction(int tab) {
    if (tab < 0 || tab >= GetTabCount()) return false;
    ChooseByUser(tab);
    return true;
}

} // namespace kroui::controls
