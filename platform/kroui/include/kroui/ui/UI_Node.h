#pragma once

#include "kroui/limner/Limner.h"
#include "kroui/ui/Accessible.h"
#include "kroui/ui/Events.h"
#include "kroui/ui/LocalizedText.h"
#include "kroui/ui/Property.h"
#include "kroui/ui/UI_Container.h"
#include "kroui/ui/UI_DragDropHandler.h"
#include "kroui/ui/UI_NodeBase.h"

namespace kroui::ui {

class UI_Window;

// A part of the picture: a rectangle in its parent, drawn back to front, that takes events. Held by
// boost::intrusive_ptr; user-interface thread only. A tree is attached while its root is in a window, real or headless.
class UI_Node : public UI_NodeBase, public UI_Container, public ThemeClient, public UI_DragDropHandler {
public:
    // What has happened to a node. Each goes to every node of the subtree that it holds for, parents first. Attached
    // and detaching come in turn, once each, whatever those who hear them do to the tree: what leaves before it has
    // been told that it is attached hears of neither, nor does what comes to a node that is leaving.
    enum NodeChange : int {
        kAttached = 0,     // it has just become part of an attached tree
        kShown = 1,        // it has been shown, or a node above it with nothing in between that is hidden
        kHidden = 2,       // the same for hiding
        kThemeChanged = 3, // the colours that hold for it are others now
        kDetaching = 4,    // it is about to leave the attached tree; its parent is still there
        kScaleChanged = 5, // the window's scale factor is another now
    };

    UI_Node();

    // --- geometry ---

    // The rectangle in the parent's coordinates.
    const Rect& UI_GetFrame() const { return fFrame; }
    void UI_SetFrame(const Rect& frame);
    // The same area in the node's own coordinates: left and top are 0.
    Rect UI_GetLocalRect() const { return {0, 0, fFrame.width, fFrame.height}; }
    // Takes the size of `rect` and keeps the place in the parent.
    void UI_SetLocalRect(const Rect& rect) { UI_SetFrame({fFrame.left, fFrame.top, rect.width, rect.height}); }
    // The size that the node would like to have. Views that arrange their children ask it of those that have none yet.
    virtual Size UI_GetNaturalSize() const { return {fFrame.width, fFrame.height}; }
    // Where the baseline of its (first) line of text lies in a node of that size, from its top; below 0 for a node that
    // has no text to be aligned with others.
    virtual float UI_GetBaseline() const { return -1; }
    // From the node's coordinates to those of its window's content, and back.
    Point UI_LocalToWindow(Point point) const;
    Point UI_WindowToLocal(Point point) const;

    // --- tree ---

    UI_Node* UI_GetParent() const { return fParent; }
    // The node that gets what this one leaves unhandled: its parent while the tree is attached, otherwise null. A root
    // in a window answers itself.
    UI_Node* UI_GetParentEventRecipientNode() const;
    UI_Window* UI_GetWindow() const { return fWindow; }
    bool UI_IsAttached() const { return fWindow != nullptr; }
    // The first node with the id in this subtree, parents first; null if none.
    UI_Node* UI_FindNode(std::string_view id);

    // --- visibility and repainting ---

    void UI_Show(bool visible);
    bool UI_IsVisible() const { return fVisible; }
    bool UI_IsVisibleInWindow() const; // with all above it, in a window
    // Asks for the node, or a part of it in its own coordinates, to be painted again.
    void UI_Invalidate() { UI_InvalidateRect(UI_GetLocalRect()); }
    void UI_InvalidateRect(const Rect& rect);

    // --- drawing (called by the window, in the node's coordinates) ---

    // Draws the node itself, under its children. Stays inside the local rectangle.
    virtual void UI_Draw(limner::Limner* limner);
    // Draws over the children (focus rings).
    virtual void UI_DrawOver(limner::Limner* limner);
    // Draws the whole subtree.
    void UI_DrawTree(limner::Limner* limner);
    // Whether children are cut off at this node's edges. No by default.
    virtual bool UI_ClipsChildren() const { return false; }
    // The supplier that this node's subtree measures and draws with: the parent's, at the top the window's; null if
    // none is known.
    virtual const limner::SupplierInterface* UI_GetDrawSupplier() const;
    const Theme& GetTheme() const override;

    // --- events; true means handled ---

    // The pointer. An event goes to the node under it (or the one that took the press) with `node` null; what that one
    // leaves unhandled goes up with `node` telling where it began. Position is in the receiver's coordinates.
    virtual bool UI_DoMouseEvent(UI_Node* node, const MouseEvent& event);
    virtual bool UI_DoKeyEvent(const KeyEvent& event);
    virtual bool UI_DoTextEvent(const TextEvent& event);
    virtual bool UI_DoTimerNotify(long timerID);
    virtual void UI_FocusChanged(bool hasFocus);
    // The node under a point of its own coordinates: the frontmost visible child that is hit, or itself; null if none.
    virtual UI_Node* UI_HitTest(Point point);
    virtual Cursor UI_GetCursor(Point /*point*/) const { return Cursor::kArrow; }
    // Whether the keyboard focus can come here now (visible, enabled, wants it).
    virtual bool UI_CanTakeFocus() const;
    // Brings a part of the node into sight: whatever it stands in may scroll. Parents are asked from the inside out.
    virtual void UI_Reveal(const Rect& rect);
    bool UI_HasFocus() const;
    // Takes the keyboard focus, if this node can have it.
    void UI_TakeFocus();

    // --- notifications ---

    virtual void UI_NodeChanged(NodeChange change);
    // The size is another now. `rect` is the new local rectangle.
    virtual void UI_SizeChanged(const RectT<float>& rect);

    // --- timers (UI_NodeManager) ---

    // Calls UI_DoTimerNotify(timerID) every period from now on, until removed or the node dies. Installing an id again
    // replaces it. A late timer fires once. Periods below 1 ms count as 1 ms.
    void UI_InstallTimer(float periodSeconds, long timerID);
    // `notify`: kept for callers that tell whether they are still in the tree; it changes nothing.
    void UI_RemoveTimer(long timerID, bool notify);

    // --- what it says about itself ---

    void UI_SetTooltip(std::u16string_view text) {
        fTooltip.SetText(text);
        UI_AccessibleInfoChanged();
    }
    virtual const krocore::string16& UI_GetTooltip() const { return fTooltip.Text(); }
    virtual AccessibleInfo UI_GetAccessibleInfo() const;
    // Parts that are no nodes, from left to right or from top to bottom: points of a curve, tabs, items. They come
    // after the node's children. `part` is below the count.
    virtual int UI_GetAccessiblePartCount() const { return 0; }
    virtual AccessiblePart UI_GetAccessiblePart(int part) const;
    // Does one of the actions that the info of the node or the part names, as the mouse or the keyboard would, with the
    // whole gesture and its messages, after which the node may be gone. True if it has been done; false, with nothing
    // changed or sent, if it can't be. To be called through UI_Window::DoAccessibleAction, which checks and tells who
    // groups steps for undo.
    virtual bool UI_DoAccessibleAction(const AccessibleRequest& request);
    // What the node says about itself may be another now. Asking for a repaint implies it.
    void UI_AccessibleInfoChanged();
    // The properties of the node's class and its bases, most derived first through `base`.
    virtual const PropertyTable& UI_GetPropertyTable() const;
    static const PropertyTable& PropertiesOfNode();

    // For property rows.
    void SetTooltipReference(std::string_view reference) { fTooltip.SetReference(reference); }
    const krocore::string8& TooltipReference() const { return fTooltip.Reference(); }

protected:
    ~UI_Node() override;

    UI_Node* ContainerNode() override { return this; }
    // The node's own visibility is another now; before the subtree hears of it.
    virtual void UI_VisibilityChanged() {}

private:
    friend class UI_Container;
    friend class UI_Window;

    void AttachTo(UI_Window* window); // the whole subtree
    void DetachTree();
    void FinishDetaching();
    void Broadcast(NodeChange change);
    void BroadcastToVisible(NodeChange change);
    template <class Visit>
    void ForEachChild(const Visit& visit);

    UI_Node* fParent = nullptr;
    UI_Window* fWindow = nullptr;
    Rect fFrame;
    LocalizedText fTooltip;
    bool fVisible = true;
    bool fHasTimers = false;
    bool fIsDetaching = false;
};

} // namespace kroui::ui
