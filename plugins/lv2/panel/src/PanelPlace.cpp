#include "qolv2panel/PanelPlace.h"

#include "krocore/Localizer.h"

#include <algorithm>

namespace qolv2 {

using krocore::Localize;
using kroui::ui::Key;
using kroui::ui::MouseEvent;

namespace {

kroui::Size SizeOf(const kroui::ui::UI_Node& node) {
    return {node.UI_GetFrame().width, node.UI_GetFrame().height};
}

} // namespace

PanelPlace::PanelPlace(boost::intrusive_ptr<kroui::ui::UI_Node> panel, PanelLook& look)
    : fPanel(std::move(panel)), fLook(look), fPanelSize(SizeOf(*fPanel)) {
    fScroll->SetDocument(fPanel);
    ChildPushBack(fScroll);
}

void PanelPlace::PanelResized() {
    if (fIsArranging) return;
    fPanelSize = SizeOf(*fPanel);
    Arrange();
}

void PanelPlace::UI_SizeChanged(const kroui::RectT<float>& /*rect*/) {
    Arrange();
}

void PanelPlace::Arrange() {
    fIsArranging = true;
    const kroui::Rect room = UI_GetLocalRect();
    const kroui::Rect panel = fPanel->UI_GetFrame();
    fPanel->UI_SetFrame(
        {panel.left, panel.top, std::max(room.width, fPanelSize.width), std::max(room.height, fPanelSize.height)});
    fScroll->UI_SetFrame(room);
    fScroll->DocumentResized();
    fIsArranging = false;
}

bool PanelPlace::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    if (event.IsAction(MouseEvent::Action::kPressed) && event.button == 3) {
        OpenMenu(event.position);
        return true;
    }
    return UI_Node::UI_DoMouseEvent(node, event);
}

bool PanelPlace::DoShortcut(const kroui::ui::KeyEvent& event) {
    if (!event.Has(kroui::ui::kCommand) || event.key != Key::kCharacter) return false;
    switch (event.character) {
    case u'+':
    case u'=': fLook.ZoomIn(); return true;
    case u'-': fLook.ZoomOut(); return true;
    case u'0': fLook.SetZoom(1); return true;
    default: return false;
    }
}

void PanelPlace::UI_NodeChanged(NodeChange change) {
    if (change == kDetaching) fMenu->Close();
    UI_Node::UI_NodeChanged(change);
}

void PanelPlace::OpenMenu(kroui::Point place) {
    if (!UI_GetWindow() || fMenu->IsOpen()) return;
    enum Command { kIn, kOut, kNormal, kLine, kTheme };
    fMenu->SetItems({
        {Localize("$$$/QoPanel/ZoomIn=Zoom In (Ctrl +)"), fLook.Zoom() < PanelLook::kLargestZoom},
        {Localize("$$$/QoPanel/ZoomOut=Zoom Out (Ctrl -)"), fLook.Zoom() > PanelLook::kSmallestZoom},
        {Localize("$$$/QoPanel/ZoomToNormal=100 % (Ctrl 0)"), fLook.Zoom() != 1},
        {{}, false, true},
        {Localize(fLook.IsDark() ? "$$$/QoPanel/ToLight=Light Theme" : "$$$/QoPanel/ToDark=Dark Theme")},
    });
    const kroui::Point at = UI_LocalToWindow(place);
    fMenu->OpenBelow(*UI_GetWindow(), {at.x, at.y, 1, 1}, [this](int item) {
        switch (item) {
        case kIn: return fLook.ZoomIn();
        case kOut: return fLook.ZoomOut();
        case kNormal: return fLook.SetZoom(1);
        case kTheme: return fLook.ToggleTheme();
        default: return;
        }
    });
}

} // namespace qolv2
