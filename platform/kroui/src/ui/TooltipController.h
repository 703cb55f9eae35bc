#pragma once

#include "kroui/ui/UI_Window.h"

namespace kroui::ui {

// Shows the tool tip of the node under the pointer after half a second of rest. Owned by its window.
class UI_Window::TooltipController {
public:
    explicit TooltipController(UI_Window& window);
    ~TooltipController();

    // The pointer is over another node now (null: none), or has moved over the same one.
    void HoverChanged(UI_Node* node, Point position);
    // A press, a key, a wheel notch: no tip until the pointer moves to another node.
    void Dismiss();

private:
    class Tip;

    void Show();
    void Hide();

    UI_Window& fWindow;
    boost::intrusive_ptr<Tip> fTip;
    boost::intrusive_ptr<UI_Node> fNode; // whose tip is due or shown
    Point fPosition;
    bool fIsShown = false;
};

} // namespace kroui::ui
