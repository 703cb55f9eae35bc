#include "TabGroupAdapter.h"

#include "uit/lio/AttributeValues.h"

#include <algorithm>
#include <utility>

namespace krotarnlio {

using kroui::controls::UI_TabGroup;
using uit::lio::AttributeKind;
using uit::lio::AttributeRow;
using uit::lio::TextOf;

namespace {

enum Row { kItems, kBind, kName };
constexpr AttributeRow kRows[] = {
    {"items", AttributeKind::kFollows}, {"bind", AttributeKind::kBound}, {"name", AttributeKind::kFollows}};

} // namespace

TabGroupAdapter::TabGroupAdapter(const uit::lio::WidgetContext& context) : ControlAdapter(context) {
    fControl->SetLayoutChildren(false);
    fControl->SetArrangesPages(false);
    fControl->SetValue(-1); // there are no tabs yet
    Listen(&TabGroupAdapter::OnChanged);
}

std::span<const AttributeRow> TabGroupAdapter::Rows() {
    return kRows;
}

void TabGroupAdapter::SetAttribute(int row, const orrin::any_regular_t& value) {
    if (row == kName) return fControl->SetName(TextOf(value));
    if (row == kItems) return SetItems(value);
    fCell = value;
    fIsBound = true;
    ShowCell();
}

void TabGroupAdapter::SetItems(const orrin::any_regular_t& value) {
    std::vector<WidgetItem> items = ItemsOf(value);
    const int chosen = fControl->GetValue();
    fItems = std::move(items);
    fControl->DeleteAllTabs();
    for (const WidgetItem& item : fItems)
        fControl->AddTab(item.name);
    fContext.layoutChanged();
    if (fIsBound) return ShowCell();
    fControl->SetValue(std::max(chosen, 0));
    ChoosePages();
}

void TabGroupAdapter::ShowCell() {
    fControl->SetValue(FindItem(fItems, fCell));
    ChoosePages();
}

Margins TabGroupAdapter::Insets() const {
    return {0, UI_TabGroup::SizeAround({}).height, 0, 0};
}

void TabGroupAdapter::ChildMade(uit::lio::WidgetAdapter& child) {
    fPages.push_back(dynamic_cast<PanelAdapter*>(&child));
    ChoosePages();
}

void TabGroupAdapter::ChoosePages() {
    for (std::size_t page = 0; page < fPages.size(); ++page)
        if (fPages[page]) fPages[page]->SetChosen(IsChosen(page));
}

bool TabGroupAdapter::IsChosen(std::size_t page) const {
    const int tab = fControl->GetValue();
    if (tab < 0) return false;
    const orrin::any_regular_t* const value = fPages[page]->Value();
    return value ? fItems[static_cast<std::size_t>(tab)].value == *value : static_cast<std::size_t>(tab) == page;
}

void TabGroupAdapter::OnChanged() {
    ChoosePages();
    const int tab = fControl->GetValue();
    if (tab >= 0) Write(kBind, fItems[static_cast<std::size_t>(tab)].value);
}

} // namespace krotarnlio
