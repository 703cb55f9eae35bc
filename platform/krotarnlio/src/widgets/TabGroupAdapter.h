#pragma once

#include "ControlAdapter.h"
#include "PanelAdapter.h"
#include "WidgetItems.h"

#include "kroui/controls/UI_TabGroup.h"

namespace krotarnlio {

// A row of tabs over pages in the same place, of which one is shown: "tab_group". Its children are panels. A panel with
// a value belongs to the tab with that value, the others to the tabs in order. The group has room for the largest page,
// so that choosing a tab moves nothing.
//   items  the tabs, see ItemsOf
//   bind   a cell that has the chosen tab's value; without one the first tab is chosen at first
//   name   of the group, for those who can't see it
class TabGroupAdapter final : public ControlAdapter<kroui::controls::UI_TabGroup, ContainerAdapter> {
public:
    explicit TabGroupAdapter(const uit::lio::WidgetContext& context);
    static std::span<const uit::lio::AttributeRow> Rows();

    void SetAttribute(int row, const orrin::any_regular_t& value) override;
    Placement DefaultPlacement() const override { return Placement::kOverlay; }
    Margins Insets() const override;
    void ChildMade(uit::lio::WidgetAdapter& child) override;

private:
    void SetItems(const orrin::any_regular_t& value);
    void ShowCell();
    void ChoosePages();
    bool IsChosen(std::size_t page) const;
    void OnChanged();

    std::vector<WidgetItem> fItems;
    std::vector<PanelAdapter*> fPages; // null for a child that is no panel
    orrin::any_regular_t fCell;
    bool fIsBound = false;
};

} // namespace krotarnlio
