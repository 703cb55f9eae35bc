#pragma once

#include "kroui/limner/Limner.h"
#include "kroui/ui/DamageRegion.h"
#include "kroui/ui/UI_Node.h"
#include "kroui/ui/WindowBackend.h"

#include <memory>
#include <vector>

namespace kroui::ui {

// The nodes over a window's content, back to front: menus and dialogs, which are modal, and tips over them. Those that
// leave the window have a surface of their own, which is painted here; the others are drawn over the content. Owned by
// the window.
class WindowOverlays {
public:
    struct Overlay {
        boost::intrusive_ptr<UI_Node> node;
        bool modal;
        std::unique_ptr<OverlaySurface> surface; // its own; null over the content
        Rect place;                              // of that surface, in window coordinates
        DamageRegion damage;                     // of it, from its corner
    };

    void Add(Overlay overlay);
    // The node, which stands over nothing any more; null if it did not.
    boost::intrusive_ptr<UI_Node> Remove(const UI_Node* node);
    const std::vector<Overlay>& All() const { return fOverlays; }

    // The topmost modal one; null for none.
    UI_Node* TopModal() const;
    // Whether somebody has to turn away from an overlay first to reach the node.
    bool AreBefore(const UI_Node& node) const;
    // What the pointer meets at a place of the window; null where that is the content.
    UI_Node* HitTest(Point position) const;

    // Those without a surface of their own.
    void Draw(limner::Limner& limner) const;
    // Surfaces of their own: what has to be painted again (window coordinates), and painting it on a ground. Returns
    // the number of pixels painted.
    void Invalidate(const Rect& rect);
    void InvalidateAll();
    bool NeedPaint() const;
    long Paint(const limner::Color& ground);
    void SetScale(float scale);

private:
    std::vector<Overlay> fOverlays;
};

// The node itself, or something in it. Null is in nothing.
bool IsInSubtree(const UI_Node* node, const UI_Node& root);
// What of a root is at a place of the window; null for nothing.
UI_Node* HitTestRoot(UI_Node& root, Point position);

} // namespace kroui::ui
