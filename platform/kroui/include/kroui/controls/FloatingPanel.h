#pragma once

#include "kroui/ui/UI_Window.h"

namespace kroui::controls {

// Base of what stands over a window until the user turns away: menus, pickers, small dialogs. The node is larger than
// the panel by the shadow around it.
class FloatingPanel : public ui::UI_Node {
public:
    static constexpr float kShadow = 8;       // around the panel, view units
    static constexpr float kWindowMargin = 4; // between the panel and the edges of the room
    static constexpr float kAnchorGap = 2;    // between an anchor and the panel under or over it

protected:
    ~FloatingPanel() override = default;

    // The side of an anchor (window coordinates) on which a panel of a height opens, and the height there is: below,
    // unless it has no room there and more above.
    struct Side {
        bool isAbove;
        float room;
    };
    static Side SideOf(const Rect& anchor, float height, const ui::UI_Window& window);
    static float TopOn(const Side& side, const Rect& anchor, float height);

    // Shows the panel at a place of the window, moved so that it keeps the margin in the room for overlays, its corner
    // on a whole pixel.
    void ShowPanel(ui::UI_Window& window, const Rect& panel);
    // In the node's coordinates.
    Rect Panel() const { return UI_GetLocalRect().Inset(kShadow, kShadow); }
    // Shadow, ground and outline.
    void DrawPanel(limner::Limner& context) const;
};

} // namespace kroui::controls
