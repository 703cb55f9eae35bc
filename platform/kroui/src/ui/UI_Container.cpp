#include "kroui/ui/UI_Container.h"

#include "kroui/ui/UI_Node.h"

#include <algorithm>

namespace kroui::ui {

namespace {

bool IsAncestorOrSelf(const UI_Node& candidate, const UI_Node* node) {
    for (; node; node = node->UI_GetParent())
        if (node == &candidate) return true;
    return false;
}

} // namespace

UI_Container::~UI_Container() {
    for (const auto& child : fChildren)
        child->fParent = nullptr;
}

void UI_Container::ChildPushBack(boost::intrusive_ptr<UI_Node> child) {
    ChildInsert(fChildren.size(), std::move(child));
}

void UI_Container::ChildInsert(std::size_t index, boost::intrusive_ptr<UI_Node> child) {
    UI_Node* const self = ContainerNode();
    if (!child || IsAncestorOrSelf(*child, self)) return;
    const MessageScope scope;
    if (UI_Node* const parent = child->UI_GetParent()) parent->ChildRemove(child.get());
    child->FinishDetaching();
    // Listeners of the change may have given it another parent, or put this one into it.
    if (child->UI_GetParent() || IsAncestorOrSelf(*child, self)) return;
    index = std::min(index, fChildren.size());
    UI_Node& added = *child;
    fChildren.insert(fChildren.begin() + static_cast<std::ptrdiff_t>(index), std::move(child));
    added.fParent = self;
    if (UI_Window* const window = self->UI_GetWindow(); window && !self->fIsDetaching) added.AttachTo(window);
    added.UI_Invalidate();
    ChildrenChanged();
}

void UI_Container::ChildRemove(UI_Node* child) {
    const auto find = [&] {
        return std::find_if(fChildren.begin(), fChildren.end(), [&](const auto& c) { return c.get() == child; });
    };
    if (!child || find() == fChildren.end()) return;
    const MessageScope scope;
    const boost::intrusive_ptr<UI_Node> removed(child);
    removed->UI_Invalidate();
    if (removed->UI_IsAttached()) removed->DetachTree();
    // Listeners of the change may have rearranged the children, taken this one out themselves, or put it back.
    const auto at = find();
    const bool isBack = removed->UI_IsAttached() && !removed->fIsDetaching;
    if (at == fChildren.end() || isBack) return;
    fChildren.erase(at);
    removed->fParent = nullptr;
    ChildrenChanged();
}

void UI_Container::ChildRemoveAll() {
    const std::vector<boost::intrusive_ptr<UI_Node>> children = fChildren;
    for (auto child = children.rbegin(); child != children.rend(); ++child)
        ChildRemove(child->get());
}

} // namespace kroui::ui
