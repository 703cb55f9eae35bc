#pragma once

#include "kroui/controls/UI_InteractiveControlView.h"

#include <vector>

namespace kroui::controls {

// A row of tabs over pages, of which one is shown: child number i is the page of tab i. A press on a tab shows its
// page; the arrow keys, Home and End do while the row has the focus, Ctrl+Tab and Ctrl+Shift+Tab go round from anywhere
// in the group. Each is a whole gesture (0, 1, 2) and a committed change. Tabs that have too little room shorten their
// texts.
class UI_TabGroup : public UI_InteractiveControlView {
public:
    UI_TabGroup();

    // From code: no messages.
    void AddTab(std::u16string_view text);
    void DeleteAllTabs();
    int GetTabCount() const { return static_cast<int>(fTabs.size()); }
    // Empty for a tab that does not exist.
    const krocore::string16& GetTabText(int tab) const;
    // The tab whose page is shown, 0 at first; one that does not exist shows none (-1).
    void SetValue(int tab);
    int GetValue() const { return fValue; }
    // Whether pages are given the room below the tabs, and shown and hidden, as they are at first; otherwise the caller
    // does all that.
    void SetArrangesPages(bool arranges);

    // What is left for the pages below the tabs; nothing if there is no room.
    Rect PageRect() const;
    // The row of tabs above a page of that size.
    static Size SizeAround(Size page);
    // Where a tab is, in the group's coordinates; empty if it does not exist.
    Rect TabRect(int tab) const;
    int TabAt(Point point) const; // -1 for none

    // Room for all tabs and for the greatest page, by the pages' natural sizes.
    Size UI_GetNaturalSize() const override;
    float UI_GetBaseline() const override;
    void UI_Draw(limner::Limner* context) override;
    bool UI_DoMouseEvent(UI_Node* node, const ui::MouseEvent& event) override;
    bool UI_DoKeyEvent(const ui::KeyEvent& event) override;
    void UI_NodeChanged(NodeChange change) override;
    void UI_SizeChanged(const RectT<float>& rect) override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    int UI_GetAccessiblePartCount() const override { return GetTabCount(); }
    ui::AccessiblePart UI_GetAccessiblePart(int part) const override;
    bool UI_DoAccessibleAction(const ui::AccessibleRequest& request) override;

    static constexpr float kTabHeight = 28;
    static constexpr float kPageGap = 8; // between the tabs and the pages

protected:
    ~UI_TabGroup() override = default;

    void ChildrenChanged() override;

private:
    const std::vector<float>& TabEnds() const;
    void LayoutChanged();
    void ShowPage();
    void ArrangePages();
    void SetHoveredTab(int tab);
    void ChooseByUser(int tab);
    bool ChooseByAction(int tab);
    void DrawTab(limner::Limner& context, int tab) const;

    std::vector<krocore::string16> fTabs;
    mutable std::vector<float> fTabEnds; // right edges; empty: to be measured
    int fValue = 0;
    int fHoveredTab = -1;
    bool fArrangesPages = true;
};

} // namespace kroui::controls
