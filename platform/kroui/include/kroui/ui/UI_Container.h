#pragma once

#include "kroui/ui/Theme.h"

#include <boost/intrusive_ptr.hpp>

#include <cstddef>
#include <span>
#include <vector>

namespace kroui::ui {

class UI_Node;

// The children of a node, back to front: a later child is drawn over, and hit before, an earlier one. A container holds
// a reference to each child; a child knows its parent by a plain pointer.
class UI_Container : public ThemeOwner {
public:
    UI_Container() = default;
    UI_Container(const UI_Container&) = delete;
    UI_Container& operator=(const UI_Container&) = delete;

    // Adds a child in front of the others; a child that has another parent leaves it first. Null, the container itself
    // and a node that contains it are refused without effect.
    void ChildPushBack(boost::intrusive_ptr<UI_Node> child);
    void ChildInsert(std::size_t index, boost::intrusive_ptr<UI_Node> child);
    // Takes a child out; no effect if it is none of this container's.
    void ChildRemove(UI_Node* child);
    void ChildRemoveAll();

    std::size_t ChildCount() const { return fChildren.size(); }
    UI_Node* Child(std::size_t index) const { return index < fChildren.size() ? fChildren[index].get() : nullptr; }
    std::span<const boost::intrusive_ptr<UI_Node>> Children() const { return fChildren; }

protected:
    ~UI_Container();

    virtual UI_Node* ContainerNode() = 0;
    // A child has come or gone.
    virtual void ChildrenChanged() {}

private:
    std::vector<boost::intrusive_ptr<UI_Node>> fChildren;
};

} // namespace kroui::ui
