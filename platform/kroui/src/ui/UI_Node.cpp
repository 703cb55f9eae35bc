#include "kroui/ui/UI_Node.h"

#include "kroui/ui/UI_NodeManager.h"
#include "kroui/ui/UI_Window.h"

#include <cmath>

namespace kroui::ui {

UI_Node::UI_Node() = default;

UI_Node::~UI_Node() {
    if (fHasTimers) UI_NodeManager::Get().RemoveTimersOf(*this);
}

void UI_Node::UI_SetFrame(const Rect& frame) {
    if (frame == fFrame) return;
    UI_Invalidate();
    const bool isResized = frame.width != fFrame.width || frame.height != fFrame.height;
    fFrame = frame;
    UI_Invalidate();
    if (!isResized) return;
    const MessageScope scope;
    UI_SizeChanged(UI_GetLocalRect());
}

Point UI_Node::UI_LocalToWindow(Point point) const {
    for (const UI_Node* node = this; node; node = node->fParent) {
        point.x += node->fFrame.left;
        point.y += node->fFrame.top;
    }
    return point;
}

Point UI_Node::UI_WindowToLocal(Point point) const {
    const Point origin = UI_LocalToWindow({});
    return {point.x - origin.x, point.y - origin.y};
}

UI_Node* UI_Node::UI_GetParentEventRecipientNode() const {
    if (!fWindow) return nullptr;
    return fParent ? fParent : const_cast<UI_Node*>(this);
}

UI_Node* UI_Node::UI_FindNode(std::string_view id) {
    if (std::string_view(UI_GetID()) == id) return this;
    for (const auto& child : Children())
        if (UI_Node* const found = child->UI_FindNode(id)) return found;
    return nullptr;
}

void UI_Node::UI_Show(bool visible) {
    if (visible == fVisible) return;
    const MessageScope scope;
    if (!visible) {
        UI_Invalidate();
        if (fWindow) fWindow->Forget(*this);
    }
    fVisible = visible;
    if (visible) UI_Invalidate();
    if (fWindow) fWindow->AccessibleNodeShown(*this);
    UI_VisibilityChanged();
    BroadcastToVisible(visible ? kShown : kHidden);
}

bool UI_Node::UI_IsVisibleInWindow() const {
    if (!fWindow) return false;
    for (const UI_Node* node = this; node; node = node->fParent)
        if (!node->fVisible) return false;
    return true;
}

void UI_Node::UI_InvalidateRect(const Rect& rect) {
    if (!fWindow) return;
    fWindow->AccessibleInfoChanged(*this);
    if (rect.IsEmpty() || !UI_IsVisibleInWindow()) return;
    Rect area = rect;
    for (const UI_Node* node = this; node; node = node->fParent) {
        if (node->UI_ClipsChildren()) area = Intersection(area, node->UI_GetLocalRect());
        area = area.Offset(node->fFrame.left, node->fFrame.top);
    }
    fWindow->Invalidate(area);
}

void UI_Node::UI_Reveal(const Rect& rect) {
    if (fParent) fParent->UI_Reveal(rect.Offset(fFrame.left, fFrame.top));
}

void UI_Node::UI_Draw(limner::Limner* /*limner*/) {
}

void UI_Node::UI_DrawOver(limner::Limner* /*limner*/) {
}

void UI_Node::UI_DrawTree(limner::Limner* limner) {
    if (!fVisible) return;
    limner->Save();
    limner->Translate(fFrame.left, fFrame.top);
    const bool clips = UI_ClipsChildren();
    if (clips) limner->ClipRect(UI_GetLocalRect());
    const Rect visible = limner->ClipBounds();
    const bool isSeen = visible.Intersects(UI_GetLocalRect());
    if (isSeen) UI_Draw(limner);
    for (const auto& child : Children())
        if (visible.Intersects(child->fFrame) || (!clips && child->ChildCount() > 0)) child->UI_DrawTree(limner);
    if (isSeen) UI_DrawOver(limner);
    limner->Restore();
}

const limner::SupplierInterface* UI_Node::UI_GetDrawSupplier() const {
    if (fParent) return fParent->UI_GetDrawSupplier();
    return fWindow ? &fWindow->Supplier() : nullptr;
}

const Theme& UI_Node::GetTheme() const {
    for (const UI_Node* node = this; node; node = node->fParent)
        if (const Theme* const own = node->OwnTheme()) return *own;
    return fWindow ? fWindow->GetTheme() : Theme::Dark();
}

bool UI_Node::UI_DoMouseEvent(UI_Node* /*node*/, const MouseEvent& /*event*/) {
    return false;
}

bool UI_Node::UI_DoKeyEvent(const KeyEvent& /*event*/) {
    return false;
}

bool UI_Node::UI_DoTextEvent(const TextEvent& /*event*/) {
    return false;
}

bool UI_Node::UI_DoTimerNotify(long /*timerID*/) {
    return false;
}

void UI_Node::UI_FocusChanged(bool /*hasFocus*/) {
}

UI_Node* UI_Node::UI_HitTest(Point point) {
    if (!fVisible) return nullptr;
    const bool isInside = UI_GetLocalRect().Contains(point);
    if (!isInside && UI_ClipsChildren()) return nullptr;
    const auto children = Children();
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        const Rect& frame = (*child)->fFrame;
        if (UI_Node* const hit = (*child)->UI_HitTest({point.x - frame.left, point.y - frame.top})) return hit;
    }
    return isInside ? this : nullptr;
}

bool UI_Node::UI_CanTakeFocus() const {
    return (UI_GetStateFlags() & kStateWantsKeyboardFocus) != 0 && UI_IsVisibleInWindow();
}

bool UI_Node::UI_HasFocus() const {
    return fWindow && fWindow->FocusNode() == this;
}

void UI_Node::UI_TakeFocus() {
    if (fWindow) fWindow->SetFocus(this);
}

void UI_Node::UI_NodeChanged(NodeChange /*change*/) {
}

void UI_Node::UI_SizeChanged(const RectT<float>& /*rect*/) {
}

void UI_Node::UI_InstallTimer(float periodSeconds, long timerID) {
    fHasTimers = true;
    UI_NodeManager::Get().InstallTimer(*this, periodSeconds, timerID);
}

void UI_Node::UI_RemoveTimer(long timerID, bool /*notify*/) {
    UI_NodeManager::Get().RemoveTimer(*this, timerID);
}

AccessibleInfo UI_Node::UI_GetAccessibleInfo() const {
    AccessibleInfo info;
    info.role = ChildCount() > 0 ? Role::kGroup : Role::kNone;
    return info;
}

AccessiblePart UI_Node::UI_GetAccessiblePart(int /*part*/) const {
    return {};
}

bool UI_Node::UI_DoAccessibleAction(const AccessibleRequest& /*request*/) {
    return false;
}

void UI_Node::UI_AccessibleInfoChanged() {
    if (fWindow) fWindow->AccessibleInfoChanged(*this);
}

const PropertyTable& UI_Node::UI_GetPropertyTable() const {
    return PropertiesOfNode();
}

const PropertyTable& UI_Node::PropertiesOfNode() {
    static constexpr PropertyRow kRows[] = {
        MakeProperty<PropertyType::kRect, &UI_Node::UI_GetFrame, &UI_Node::UI_SetFrame>("bounds"),
        {"id", PropertyType::kBytes, [](const UI_Node& node) -> PropertyValue { return node.UI_GetID(); },
         [](UI_Node& node, const PropertyValue& value) { node.UI_SetID(std::get<krocore::string8>(value)); }},
        MakeProperty<PropertyType::kUnicode, &UI_Node::TooltipReference, &UI_Node::SetTooltipReference>("tooltip"),
        MakeProperty<PropertyType::kBool, &UI_Node::UI_IsVisible, &UI_Node::UI_Show>("visible"),
    };
    static constexpr PropertyTable kTable{"kroui::ui::UI_Node", kRows};
    return kTable;
}

// Those that are children at the beginning and still are when their turn comes, whatever the visits do to the tree.
template <class Visit>
void UI_Node::ForEachChild(const Visit& visit) {
    const std::vector<boost::intrusive_ptr<UI_Node>> children(Children().begin(), Children().end());
    for (const auto& child : children)
        if (child->fParent == this) visit(*child);
}

// Of a node that is in no window. Who hears of it may take the node out again, or put it elsewhere, where it is
// attached anew with all below it.
void UI_Node::AttachTo(UI_Window* window) {
    const MessageScope scope;
    fWindow = window;
    window->AccessibleNodeShown(*this);
    UI_NodeChanged(kAttached);
    ForEachChild([&](UI_Node& child) {
        child.FinishDetaching();
        const bool isWanted = child.fParent == this && fWindow == window && !fIsDetaching;
        if (isWanted && !child.fWindow) child.AttachTo(window);
    });
}

void UI_Node::DetachTree() {
    if (!fWindow || fIsDetaching) return;
    const MessageScope scope;
    fIsDetaching = true;
    UI_NodeChanged(kDetaching);
    FinishDetaching();
}

// What is left to do after the node itself has been told. Who puts it elsewhere while it is being told does that first.
void UI_Node::FinishDetaching() {
    if (!fIsDetaching) return;
    ForEachChild([this](UI_Node& child) {
        if (fIsDetaching) child.DetachTree();
    });
    if (!fIsDetaching) return;
    fWindow->Forget(*this);
    if (!fIsDetaching) return;
    fWindow->AccessibleNodeGone(*this);
    if (!fIsDetaching) return;
    fWindow = nullptr;
    fIsDetaching = false;
}

void UI_Node::Broadcast(NodeChange change) {
    const MessageScope scope;
    UI_NodeChanged(change);
    ForEachChild([change](UI_Node& child) { child.Broadcast(change); });
}

// To what is, or was, in sight as far as this subtree goes.
void UI_Node::BroadcastToVisible(NodeChange change) {
    UI_NodeChanged(change);
    ForEachChild([change](UI_Node& child) {
        if (child.fVisible) child.BroadcastToVisible(change);
    });
}

} // namespace kroui::ui
