#pragma once

#include "kroui/ui/Accessible.h"

namespace kroui::ui {

// What has become another in what a node, or a part of it, says about itself. A set of bits.
enum AccessibleChange : std::uint8_t {
    kAccessibleName = 1,
    kAccessibleValue = 2,     // the text of the value, the range or the position
    kAccessibleState = 4,     // role, enabled, focusable, selected, checked, expanded, actions
    kAccessibleText = 8,      // contents, caret or selection of a text field
    kAccessibleChildren = 16, // visible children or parts have come or gone
};

// Who tells somebody that cannot see the window what goes on in it: one at each window, none at first. Changes that
// come at once (a poll, a preset, a gesture) are told together when the event loop next runs the timers, each once for
// a node and with the present state there to be asked; a change that has been taken back by then is not told. A node
// that is new or has just been shown is told of by its parent's children alone. User-interface thread.
//
// A call may change the tree and do accessible actions; it must not destroy the window.
class AccessibilityObserver {
public:
    // `changes`: AccessibleChange bits, never none. `part`: AccessibleRequest::kWhole, or the part's number; parts that
    // come and go are a change of the node's children, after which all are to be asked anew.
    virtual void AccessibleChanged(UI_Node& node, int part, std::uint8_t changes) = 0;
    // The keyboard focus is elsewhere: null for nowhere.
    virtual void AccessibleFocusMoved(UI_Node* node) = 0;
    // Content or overlays (menus, dialogs) of the window have come or gone: UI_Window::Roots.
    virtual void AccessibleRootsChanged() = 0;
    // A node is leaving the window; its children have been told of before it. Told at once, the only notice that is:
    // who keeps pointers to nodes forgets this one.
    virtual void AccessibleGone(UI_Node& node) = 0;

protected:
    ~AccessibilityObserver() = default;
};

} // namespace kroui::ui
