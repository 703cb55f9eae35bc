#pragma once

#include "kroui/ui/AccessibilityObserver.h"
#include "kroui/ui/DamageRegion.h"
#include "kroui/ui/UI_Node.h"
#include "kroui/ui/WindowBackend.h"

#include <boost/function.hpp>

#include <memory>
#include <vector>

namespace kroui::ui {

class AccessibilityTracker;
class TooltipController;
class WindowOverlays;

// The place where a tree is attached: paints what is damaged, routes events, holds focus, pointer capture, overlays
// (menus, tips) and scale. The system is behind WindowBackend. Coordinates are view units of the content unless a name
// says pixels. User-interface thread only.
class UI_Window {
public:
    // Supplier and back-end live longer than the window.
    UI_Window(const limner::SupplierInterface& supplier, WindowBackend& backend);
    ~UI_Window();
    UI_Window(const UI_Window&) = delete;
    UI_Window& operator=(const UI_Window&) = delete;

    // --- content, size, look ---

    // Attaches a tree; the one before it is detached. Null empties the window. The content keeps its own size.
    void SetContent(boost::intrusive_ptr<UI_Node> content);
    UI_Node* Content() const { return fContent.get(); }
    void SetSize(Size size);
    Size GetSize() const { return fSize; }
    // The host's factor and the user's zoom multiply; the product is held within 0.5...4.
    void SetHostScale(float scale);
    void SetZoom(float zoom);
    float ScaleFactor() const;
    void SetTheme(const Theme& theme);
    const Theme& GetTheme() const { return *fTheme; }
    const limner::SupplierInterface& Supplier() const { return fSupplier; }
    WindowBackend& Backend() const { return fBackend; }

    // --- painting ---

    void Invalidate(const Rect& rect);
    void InvalidateAll();
    bool NeedsPaint() const;
    // Paints what is damaged and hands it to the back-end. Returns the number of pixels painted.
    long Paint();

    // --- events from the back-end, window coordinates; true if a node handled it ---

    bool MouseMoved(Point position, std::uint8_t modifiers);
    bool MousePressed(Point position, int button, int clickCount, std::uint8_t modifiers);
    bool MouseReleased(Point position, int button, std::uint8_t modifiers);
    bool MouseWheel(Point position, float notchesX, float notchesY, std::uint8_t modifiers);
    void MouseLeft();
    bool KeyPressed(const KeyEvent& event);
    bool TextTyped(std::u16string_view text);
    bool FilesDropped(std::span<const std::filesystem::path> files, Point position);
    // The system took the keyboard or the pointer away: the capturing node and every modal overlay get kCaptureLost, on
    // which drags end and menus close.
    void Deactivated();

    // --- focus and capture ---

    UI_Node* FocusNode() const { return fFocus.get(); }
    // Null takes the focus from everybody. A node that can't take it is refused.
    bool SetFocus(UI_Node* node);
    // On to the next node that can take the focus, in tree order, around the end.
    bool MoveFocus(bool forward);
    // The node that took the press that is still held.
    UI_Node* CaptureNode() const { return fCapture.get(); }
    void ReleaseCapture();

    // --- overlays: nodes over the content ---

    // Shows a node over everything at `frame` (window coordinates). While a modal one is the topmost, it gets every
    // pointer event that hits none of its nodes (position outside its rectangle, so that a menu can close) and all
    // keys; moves with a button down reach it as kDragged, the release as kReleased, also when the press went
    // elsewhere. Where it leaves the window it is shown beyond its edges, if the back-end can do that, without its
    // shadow: so much of the frame all around may be left out.
    void ShowOverlay(boost::intrusive_ptr<UI_Node> node, const Rect& frame, bool modal, float shadow = 0);
    void HideOverlay(UI_Node* node);
    bool HasModalOverlay() const;
    UI_Node* TopOverlay() const;
    // Where overlays may stand, in window coordinates: the window, or the screen around it.
    Rect OverlayRoom() const { return fBackend.OverlayRoom(fSize); }
    // Shows a node's tool tip under it at once, for what the user is to read now. It goes at the next thing they do.
    void ShowTip(UI_Node& node);

    // --- for those who cannot see it ---

    // The trees that can be reached: the content and the overlays over it, back to front.
    std::vector<UI_Node*> Roots() const;
    // Does what somebody without a pointer asks of a node in this window, or of a part of it, as one thing the user
    // does (SetInputObserver). False, with nothing done, if the node is hidden, disabled or behind a menu or dialog, or
    // does not offer the action.
    bool DoAccessibleAction(UI_Node& node, const AccessibleRequest& request);
    // Null for none. It lives until it is taken away or the window goes.
    void SetAccessibilityObserver(AccessibilityObserver* observer);

    // Is told before (true) and after (false) each thing the user does: a press until its release, a key, typed text, a
    // wheel notch. What happens in between belongs together, for undo. Calls don't nest.
    void SetInputObserver(boost::function<void(bool begins)> observer) { fInputObserver = std::move(observer); }
    // Keys that nothing handled, for the program's own shortcuts.
    void SetUnhandledKeyHandler(boost::function<bool(const KeyEvent&)> handler) { fUnhandledKey = std::move(handler); }

    // A node of an attached tree is going away.
    void Forget(UI_Node& node);
    // A node of an attached tree may have something else to say (null observer: nothing happens).
    void AccessibleInfoChanged(UI_Node& node);
    // A node has been attached, shown or hidden, or is detached.
    void AccessibleNodeShown(UI_Node& node);
    void AccessibleNodeGone(UI_Node& node);

private:
    class InputScope;
    class TipPlace;

    std::unique_ptr<OverlaySurface> SurfaceOutside(const Rect& place, bool modal);
    UI_Node* HitTest(Point position) const;
    bool Deliver(UI_Node* target, MouseEvent event, Point windowPosition);
    UI_Node* WheelTarget(Point position) const;
    bool DeliverKey(const KeyEvent& event);
    void SetHover(UI_Node* node, Point position, std::uint8_t modifiers);
    void UpdateSurface();
    void UpdateCursor(Point position);
    int CountClicks(const UI_Node* target, int clickCount);
    void CollectFocusable(UI_Node& node, std::vector<UI_Node*>& nodes) const;

    const limner::SupplierInterface& fSupplier;
    WindowBackend& fBackend;
    limner::Surface& fSurface;
    const Theme* fTheme;
    boost::intrusive_ptr<UI_Node> fContent;
    std::unique_ptr<WindowOverlays> fOverlays;
    boost::intrusive_ptr<UI_Node> fFocus;
    boost::intrusive_ptr<UI_Node> fCapture;
    boost::intrusive_ptr<UI_Node> fHover;
    boost::function<bool(const KeyEvent&)> fUnhandledKey;
    boost::function<void(bool)> fInputObserver;
    bool fInputIsOpen = false; // the observer has been told of a beginning
    std::unique_ptr<TipPlace> fTipPlace;
    std::unique_ptr<TooltipController> fTooltips;
    std::unique_ptr<AccessibilityTracker> fAccessibility; // none before the first observer
    DamageRegion fDamage;
    Size fSize;
    float fHostScale = 1;
    float fZoom = 1;
    int fCaptureButton = 0;
    const UI_Node* fLastPressed = nullptr; // to be compared, never followed
    int fClicks = 0;                       // on it, one soon after the other
};

} // namespace kroui::ui
