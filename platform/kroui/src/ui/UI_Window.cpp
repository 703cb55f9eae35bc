#include "kroui/ui/UI_Window.h"

#include "AccessibilityTracker.h"
#include "SurfacePainter.h"
#include "TooltipController.h"
#include "WindowOverlays.h"
#include "kroui/ui/UI_NodeManager.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kroui::ui {

namespace {

constexpr float kSmallestScale = 0.5F;
constexpr float kLargestScale = 4;

// What shows without being operated: containers, texts, pictures.
bool IsGround(const UI_Node& node) {
    const Role role = node.UI_GetAccessibleInfo().role;
    return role == Role::kNone || role == Role::kGroup || role == Role::kText || role == Role::kImage;
}

} // namespace

class UI_Window::TipPlace : public TooltipController::Place {
public:
    explicit TipPlace(UI_Window& window) : fWindow(window) {}

    const limner::SupplierInterface& Supplier() const override { return fWindow.Supplier(); }
    Rect Room() const override { return fWindow.OverlayRoom(); }
    float ScaleFactor() const override { return fWindow.ScaleFactor(); }
    bool IsBusy() const override { return fWindow.CaptureNode() || fWindow.HasModalOverlay(); }
    void ShowTip(UI_Node& tip, const Rect& frame) override { fWindow.ShowOverlay(&tip, frame, false); }
    void HideTip(UI_Node& tip) override { fWindow.HideOverlay(&tip); }

private:
    UI_Window& fWindow;
};

UI_Window::UI_Window(const limner::SupplierInterface& supplier, WindowBackend& backend)
    : fSupplier(supplier), fBackend(backend), fSurface(backend.GetSurface()), fTheme(&Theme::Dark()),
      fOverlays(std::make_unique<WindowOverlays>()), fTipPlace(std::make_unique<TipPlace>(*this)),
      fTooltips(std::make_unique<TooltipController>(*fTipPlace)) {
}

UI_Window::~UI_Window() {
    SetAccessibilityObserver(nullptr);
    fTooltips.reset();
    while (!fOverlays->All().empty())
        HideOverlay(fOverlays->All().back().node.get());
    SetContent(nullptr);
}

void UI_Window::SetContent(boost::intrusive_ptr<UI_Node> content) {
    if (fContent == content) return;
    const MessageScope scope;
    // Who hears of it may put something else in its place, which has to go as well.
    do {
        if (const boost::intrusive_ptr<UI_Node> old = std::exchange(fContent, nullptr)) old->DetachTree();
        if (content) content->FinishDetaching();
    } while (fContent);
    fContent = std::move(content);
    if (fContent) fContent->AttachTo(this);
    InvalidateAll();
}

void UI_Window::SetSize(Size size) {
    if (size == fSize) return;
    fSize = size;
    UpdateSurface();
}

void UI_Window::SetHostScale(float scale) {
    fHostScale = scale;
    UpdateSurface();
}

void UI_Window::SetZoom(float zoom) {
    fZoom = zoom;
    UpdateSurface();
}

float UI_Window::ScaleFactor() const {
    const float factor = fHostScale * fZoom;
    return std::isfinite(factor) ? std::clamp(factor, kSmallestScale, kLargestScale) : 1.0F;
}

void UI_Window::UpdateSurface() {
    const bool isRescaled = fSurface.Scale() != ScaleFactor();
    fSurface.SetSize(fSize, ScaleFactor());
    if (isRescaled) fOverlays->SetScale(ScaleFactor());
    if (isRescaled && fContent) fContent->Broadcast(UI_Node::kScaleChanged);
    InvalidateAll();
}

void UI_Window::SetTheme(const Theme& theme) {
    if (fTheme == &theme) return;
    fTheme = &theme;
    if (fContent) fContent->Broadcast(UI_Node::kThemeChanged);
    InvalidateAll();
}

void UI_Window::Invalidate(const Rect& rect) {
    const bool isRequested = NeedsPaint();
    fDamage.Add(Intersection(rect, {0, 0, fSize.width, fSize.height}));
    fOverlays->Invalidate(rect);
    if (!isRequested && NeedsPaint()) fBackend.RequestPaint();
}

void UI_Window::InvalidateAll() {
    fOverlays->InvalidateAll();
    Invalidate({0, 0, fSize.width, fSize.height});
}

bool UI_Window::NeedsPaint() const {
    return !fDamage.IsEmpty() || fOverlays->NeedPaint();
}

long UI_Window::Paint() {
    UI_NodeManager::Get().TellIfLoopIsMissing();
    // What is invalidated while painting waits for the next pass.
    const DamageRegion damage = std::exchange(fDamage, DamageRegion());
    const std::vector<Rect> painted =
        PaintDamage(fSurface, damage, fTheme->GetColor(kColorWindow), [this](limner::Limner& limner) {
            if (fContent) fContent->UI_DrawTree(&limner);
            fOverlays->Draw(limner);
        });
    if (!painted.empty()) fBackend.Present(painted);
    return AreaOf(painted) + fOverlays->Paint(fTheme->GetColor(kColorMenu));
}

UI_Node* UI_Window::HitTest(Point position) const {
    if (UI_Node* const hit = fOverlays->HitTest(position)) return hit;
    return fContent ? HitTestRoot(*fContent, position) : nullptr;
}

bool UI_Window::Deliver(UI_Node* target, MouseEvent event, Point windowPosition) {
    boost::intrusive_ptr<UI_Node> receiver(target);
    const boost::intrusive_ptr<UI_Node> origin(target);
    bool isOnGround = event.IsAction(MouseEvent::Action::kPressed);
    while (receiver) {
        event.position = receiver->UI_WindowToLocal(windowPosition);
        const bool wantsGround = (receiver->UI_GetStateFlags() & UI_Node::kStateTellBackgroundPresses) != 0;
        const bool isAimedAt = receiver == origin || (isOnGround && wantsGround);
        isOnGround = isOnGround && IsGround(*receiver);
        if (receiver->UI_DoMouseEvent(isAimedAt ? nullptr : origin.get(), event)) {
            if (event.IsAction(MouseEvent::Action::kPressed) && receiver->UI_IsAttached()) {
                fCapture = receiver;
                fCaptureButton = event.button;
            }
            return true;
        }
        receiver = receiver->UI_GetParent();
    }
    return false;
}

bool UI_Window::MouseMoved(Point position, std::uint8_t modifiers) {
    UI_NodeManager::Get().TellIfLoopIsMissing();
    const MessageScope scope;
    MouseEvent event;
    event.modifiers = modifiers;
    if (fCapture) {
        event.action = MouseEvent::Action::kDragged;
        event.button = fCaptureButton;
        const bool isMenuOver = HasModalOverlay() && !IsInSubtree(fCapture.get(), *TopOverlay());
        return Deliver(isMenuOver ? HitTest(position) : fCapture.get(), event, position);
    }
    UI_Node* const target = HitTest(position);
    SetHover(target, position, modifiers);
    UpdateCursor(position);
    event.action = MouseEvent::Action::kMoved;
    return Deliver(target, event, position);
}

// One thing the user does, with all that is told of it. It ends with the scope unless a press is still held then; the
// scope of its release ends it.
class UI_Window::InputScope {
public:
    explicit InputScope(UI_Window& window) : fWindow(window) { Tell(true); }
    ~InputScope() {
        if (!fWindow.fCapture) Tell(false);
    }
    InputScope(const InputScope&) = delete;
    InputScope& operator=(const InputScope&) = delete;

private:
    void Tell(bool begins) {
        if (fWindow.fInputIsOpen == begins) return;
        fWindow.fInputIsOpen = begins;
        if (fWindow.fInputObserver) fWindow.fInputObserver(begins);
    }

    const MessageScope fMessage;
    UI_Window& fWindow;
};

bool UI_Window::MousePressed(Point position, int button, int clickCount, std::uint8_t modifiers) {
    if (fCapture) return true; // a second button in a drag
    const InputScope input(*this);
    fTooltips->Dismiss();
    UI_Node* const target = HitTest(position);
    SetHover(target, position, modifiers);
    MouseEvent event;
    event.action = MouseEvent::Action::kPressed;
    event.button = button;
    event.clickCount = CountClicks(target, clickCount);
    event.modifiers = modifiers;
    const bool isHandled = Deliver(target, event, position);
    if (!isHandled && !HasModalOverlay()) SetFocus(nullptr);
    return isHandled;
}

// A window system counts quick presses near each other, also when they meet different controls.
int UI_Window::CountClicks(const UI_Node* target, int clickCount) {
    fClicks = clickCount > 1 && target == fLastPressed ? fClicks + 1 : 1;
    fLastPressed = target;
    return fClicks;
}

bool UI_Window::MouseReleased(Point position, int button, std::uint8_t modifiers) {
    if (!fCapture || button != fCaptureButton) return false;
    const InputScope input(*this);
    const boost::intrusive_ptr<UI_Node> captured = std::move(fCapture);
    fCapture.reset();
    MouseEvent event;
    event.action = MouseEvent::Action::kReleased;
    event.button = button;
    event.modifiers = modifiers;
    const bool isMenuOver = HasModalOverlay() && !IsInSubtree(captured.get(), *TopOverlay());
    const bool isHandled = Deliver(isMenuOver ? HitTest(position) : captured.get(), event, position);
    SetHover(HitTest(position), position, modifiers);
    UpdateCursor(position);
    return isHandled;
}

bool UI_Window::MouseWheel(Point position, float notchesX, float notchesY, std::uint8_t modifiers) {
    fTooltips->Dismiss();
    const InputScope input(*this);
    MouseEvent event;
    event.action = MouseEvent::Action::kWheel;
    event.wheelX = notchesX;
    event.wheelY = notchesY;
    event.modifiers = modifiers;
    return Deliver(WheelTarget(position), event, position);
}

// In a drag the wheel is for what is dragged, wherever the pointer has come to.
UI_Node* UI_Window::WheelTarget(Point position) const {
    return fCapture && !HasModalOverlay() ? fCapture.get() : HitTest(position);
}

void UI_Window::MouseLeft() {
    if (!fCapture) SetHover(nullptr, {-1, -1}, kNoModifier);
}

bool UI_Window::KeyPressed(const KeyEvent& event) {
    fTooltips->Dismiss();
    const InputScope input(*this);
    if (DeliverKey(event)) return true;
    if (event.key == Key::kTab && !event.Has(kCommand) && !event.Has(kAlt) && MoveFocus(!event.Has(kShift)))
        return true;
    return fUnhandledKey && fUnhandledKey(event);
}

bool UI_Window::DeliverKey(const KeyEvent& event) {
    if (HasModalOverlay()) {
        const boost::intrusive_ptr<UI_Node> overlay(TopOverlay());
        overlay->UI_DoKeyEvent(event);
        return true;
    }
    if (const boost::intrusive_ptr<UI_Node> captured = fCapture; captured && captured->UI_DoKeyEvent(event))
        return true;
    for (boost::intrusive_ptr<UI_Node> node = fFocus; node; node = node->UI_GetParent())
        if (node->UI_DoKeyEvent(event)) return true;
    return false;
}

bool UI_Window::TextTyped(std::u16string_view text) {
    fTooltips->Dismiss();
    const InputScope input(*this);
    const TextEvent event{text};
    if (HasModalOverlay()) {
        const boost::intrusive_ptr<UI_Node> overlay(TopOverlay());
        return overlay->UI_DoTextEvent(event);
    }
    for (boost::intrusive_ptr<UI_Node> node = fFocus; node; node = node->UI_GetParent())
        if (node->UI_DoTextEvent(event)) return true;
    return false;
}

bool UI_Window::FilesDropped(std::span<const std::filesystem::path> files, Point position) {
    const MessageScope scope;
    for (boost::intrusive_ptr<UI_Node> node = HitTest(position); node; node = node->UI_GetParent())
        if (node->UI_CanAcceptFiles(files) && node->UI_DropFiles(files, node->UI_WindowToLocal(position))) return true;
    return false;
}

void UI_Window::Deactivated() {
    const MessageScope scope;
    ReleaseCapture();
    SetHover(nullptr, {-1, -1}, kNoModifier);
    MouseEvent event;
    event.action = MouseEvent::Action::kCaptureLost;
    std::vector<boost::intrusive_ptr<UI_Node>> modal;
    for (const WindowOverlays::Overlay& overlay : fOverlays->All())
        if (overlay.modal) modal.push_back(overlay.node);
    for (const boost::intrusive_ptr<UI_Node>& node : modal)
        node->UI_DoMouseEvent(nullptr, event);
}

bool UI_Window::SetFocus(UI_Node* node) {
    if (node == fFocus) return true;
    if (node && !node->UI_CanTakeFocus()) return false;
    const MessageScope scope;
    const boost::intrusive_ptr<UI_Node> wanted(node);
    if (const boost::intrusive_ptr<UI_Node> old = std::move(fFocus)) {
        fFocus.reset();
        old->UI_FocusChanged(false);
    }
    if (fAccessibility) fAccessibility->FocusMoved();
    // Losing the focus may have hidden or disabled the node, or given the focus to another.
    if (!wanted || fFocus || !wanted->UI_CanTakeFocus()) return wanted == nullptr;
    fFocus = wanted;
    wanted->UI_FocusChanged(true);
    return true;
}

std::vector<UI_Node*> UI_Window::Roots() const {
    std::vector<UI_Node*> roots;
    if (fContent) roots.push_back(fContent.get());
    for (const WindowOverlays::Overlay& overlay : fOverlays->All())
        roots.push_back(overlay.node.get());
    return roots;
}

bool UI_Window::DoAccessibleAction(UI_Node& node, const AccessibleRequest& request) {
    UI_NodeManager::Get().TellIfLoopIsMissing();
    const bool isInWindow = node.UI_GetWindow() == this && node.UI_IsVisibleInWindow();
    if (!isInWindow || fOverlays->AreBefore(node) || request.part >= node.UI_GetAccessiblePartCount()) return false;
    const bool isWhole = request.part < 0;
    const AccessibleInfo info = isWhole ? node.UI_GetAccessibleInfo() : node.UI_GetAccessiblePart(request.part).info;
    if (!info.enabled || !info.actions.Has(request.action)) return false;
    const InputScope input(*this);
    fTooltips->Dismiss();
    return node.UI_DoAccessibleAction(request);
}

void UI_Window::SetAccessibilityObserver(AccessibilityObserver* observer) {
    if (!fAccessibility && observer)
        fAccessibility =
            std::make_unique<AccessibilityTracker>([this] { return FocusNode(); }, [this] { return Roots(); });
    if (fAccessibility) fAccessibility->SetObserver(observer);
}

void UI_Window::AccessibleInfoChanged(UI_Node& node) {
    if (fAccessibility) fAccessibility->Changed(node);
}

void UI_Window::AccessibleNodeShown(UI_Node& node) {
    if (fAccessibility) fAccessibility->Shown(node);
}

void UI_Window::AccessibleNodeGone(UI_Node& node) {
    if (fAccessibility) fAccessibility->Gone(node);
}

void UI_Window::CollectFocusable(UI_Node& node, std::vector<UI_Node*>& nodes) const {
    if (!node.UI_IsVisible()) return;
    if (node.UI_CanTakeFocus()) nodes.push_back(&node);
    for (const auto& child : node.Children())
        CollectFocusable(*child, nodes);
}

bool UI_Window::MoveFocus(bool forward) {
    const MessageScope scope;
    std::vector<UI_Node*> nodes;
    if (fContent) CollectFocusable(*fContent, nodes);
    if (nodes.empty()) return false;
    const auto current = std::find(nodes.begin(), nodes.end(), fFocus.get());
    std::size_t next = forward ? 0 : nodes.size() - 1;
    if (current != nodes.end()) {
        const std::size_t index = static_cast<std::size_t>(current - nodes.begin());
        next = (index + (forward ? 1 : nodes.size() - 1)) % nodes.size();
    }
    if (!SetFocus(nodes[next])) return false;
    if (fFocus) fFocus->UI_Reveal(fFocus->UI_GetLocalRect());
    return true;
}

void UI_Window::ReleaseCapture() {
    if (!fCapture) return;
    const InputScope input(*this);
    const boost::intrusive_ptr<UI_Node> captured = std::move(fCapture);
    fCapture.reset();
    MouseEvent event;
    event.action = MouseEvent::Action::kCaptureLost;
    event.button = fCaptureButton;
    captured->UI_DoMouseEvent(nullptr, event);
}

std::unique_ptr<OverlaySurface> UI_Window::SurfaceOutside(const Rect& place, bool modal) {
    const bool isInside =
        place.left >= 0 && place.top >= 0 && place.Right() <= fSize.width && place.Bottom() <= fSize.height;
    std::unique_ptr<OverlaySurface> surface = isInside ? nullptr : fBackend.MakeOverlaySurface(place, modal);
    if (surface) surface->GetSurface().SetSize({place.width, place.height}, ScaleFactor());
    return surface;
}

void UI_Window::ShowOverlay(boost::intrusive_ptr<UI_Node> node, const Rect& frame, bool modal, float shadow) {
    if (!node || node->UI_GetParent()) return;
    const MessageScope scope;
    node->FinishDetaching();
    HideOverlay(node.get());
    if (node->UI_IsAttached()) return; // shown again by who heard of that
    node->UI_SetFrame(frame);
    UI_Node& shown = *node;
    const Rect place = frame.Inset(shadow, shadow);
    fOverlays->Add({std::move(node), modal, SurfaceOutside(place, modal), place, {}});
    if (modal) fTooltips->Dismiss();
    shown.AttachTo(this);
    shown.UI_Invalidate();
}

void UI_Window::HideOverlay(UI_Node* node) {
    const MessageScope scope;
    const boost::intrusive_ptr<UI_Node> hidden = fOverlays->Remove(node);
    if (!hidden) return;
    hidden->UI_Invalidate();
    hidden->DetachTree();
}

bool UI_Window::HasModalOverlay() const {
    return fOverlays->TopModal() != nullptr;
}

UI_Node* UI_Window::TopOverlay() const {
    return fOverlays->TopModal();
}

void UI_Window::ShowTip(UI_Node& node) {
    fTooltips->ShowUnder(node);
}

void UI_Window::Forget(UI_Node& node) {
    if (fTooltips && IsInSubtree(fTooltips->ShownNode(), node)) fTooltips->Hide();
    if (IsInSubtree(fHover.get(), node)) SetHover(nullptr, {-1, -1}, kNoModifier);
    if (IsInSubtree(fCapture.get(), node)) ReleaseCapture();
    if (IsInSubtree(fFocus.get(), node)) SetFocus(nullptr);
}

void UI_Window::SetHover(UI_Node* node, Point position, std::uint8_t modifiers) {
    const MessageScope scope;
    if (fTooltips) fTooltips->HoverChanged(node, position);
    if (fHover == node) return;
    const boost::intrusive_ptr<UI_Node> entered(node);
    const boost::intrusive_ptr<UI_Node> left = std::exchange(fHover, entered);
    MouseEvent event;
    event.modifiers = modifiers;
    if (left) {
        event.action = MouseEvent::Action::kLeft;
        event.position = left->UI_WindowToLocal(position);
        left->UI_DoMouseEvent(nullptr, event);
    }
    if (entered && fHover == entered) {
        event.action = MouseEvent::Action::kEntered;
        event.position = entered->UI_WindowToLocal(position);
        entered->UI_DoMouseEvent(nullptr, event);
    }
}

void UI_Window::UpdateCursor(Point position) {
    fBackend.SetCursor(fHover ? fHover->UI_GetCursor(fHover->UI_WindowToLocal(position)) : Cursor::kArrow);
}

} // namespace kroui::ui
