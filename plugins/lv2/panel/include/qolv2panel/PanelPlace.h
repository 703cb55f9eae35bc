#pragma once

#include "kroui/controls/ScrollView.h"
#include "kroui/controls/UI_Menu.h"
#include "qolv2panel/PanelLook.h"

namespace qolv2 {

// All of a plug-in's window: its panel, which fills a larger window and scrolls in a smaller one. A press of the second
// button on nothing that wants it opens a menu of how panels look; Ctrl with plus, minus and 0 zooms.
class PanelPlace final : public kroui::ui::UI_Node {
public:
    PanelPlace(boost::intrusive_ptr<kroui::ui::UI_Node> panel, PanelLook& look);

    // The panel's own size has changed.
    void PanelResized();
    kroui::Size PanelSize() const { return fPanelSize; }
    // A key that nothing in the panel wanted.
    bool DoShortcut(const kroui::ui::KeyEvent& event);

    bool UI_DoMouseEvent(kroui::ui::UI_Node* node, const kroui::ui::MouseEvent& event) override;
    void UI_NodeChanged(NodeChange change) override;
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;

private:
    void Arrange();
    void OpenMenu(kroui::Point place);

    boost::intrusive_ptr<kroui::ui::UI_Node> fPanel;
    PanelLook& fLook;
    kroui::Size fPanelSize; // that it has when nobody stretches it, view units
    bool fIsArranging = false;
    boost::intrusive_ptr<kroui::controls::ScrollView> fScroll{new kroui::controls::ScrollView};
    boost::intrusive_ptr<kroui::controls::UI_Menu> fMenu{new kroui::controls::UI_Menu};
};

} // namespace qolv2
