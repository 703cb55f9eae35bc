#pragma once

#include "kroui/ui/UI_Node.h"

#include <cstdint>
#include <vector>

namespace kroui::ui {

// Which edges of a view keep their distance to the parent's when the parent is resized.
enum ConstraintMask : std::uint32_t {
    kConstrainLeft = 1,
    kConstrainRight = 2,
    kConstrainTop = 4,
    kConstrainBottom = 8,
    kConstrainHorizontalCentre = 16,
};

// A node that arranges its children. Two ways, both only while LayoutChildren is on:
//  - by each child's constraints, when the view is resized: an edge that is kept moves with the parent's edge, opposite
//    kept edges stretch the child, a kept centre keeps its distance to the parent's centre; with none the child stays
//    where it is, counted from left and top;
//  - AutoLayout: visible children one below the other (AutoLayout_Horizontal: beside each other) in child order; a
//    hidden child takes no room, one without a length gets its natural one. AutoLayout_MaintainMargins keeps the gaps
//    before, between and behind the children that the archive gave them (otherwise they touch);
//    AutoLayout_ScaleChildren stretches them across the view. Along the axis the view takes the length of its content.
//    This happens while the view is attached: when it becomes so, and when children or sizes change.
class UI_SubView : public UI_Node {
public:
    UI_SubView();

    void SetAutoLayout(bool on) { fAutoLayout = on; }
    bool AutoLayout() const { return fAutoLayout; }
    void SetAutoLayoutHorizontal(bool on) { fAutoLayoutHorizontal = on; }
    bool AutoLayoutHorizontal() const { return fAutoLayoutHorizontal; }
    void SetAutoLayoutMaintainMargins(bool on) { fAutoLayoutMaintainMargins = on; }
    bool AutoLayoutMaintainMargins() const { return fAutoLayoutMaintainMargins; }
    void SetAutoLayoutScaleChildren(bool on) { fAutoLayoutScaleChildren = on; }
    bool AutoLayoutScaleChildren() const { return fAutoLayoutScaleChildren; }
    void SetLayoutChildren(bool on) { fLayoutChildren = on; }
    bool LayoutChildren() const { return fLayoutChildren; }
    void SetConstraints(std::uint32_t mask) { fConstraints = mask; }
    std::uint32_t Constraints() const { return fConstraints; }

    // Arranges the children of an AutoLayout view now. Nothing for other views.
    void RecalcAutoLayout();

    void UI_NodeChanged(NodeChange change) override;
    void UI_SizeChanged(const RectT<float>& rect) override;
    const PropertyTable& UI_GetPropertyTable() const override;
    static const PropertyTable& PropertiesOfSubView();

protected:
    ~UI_SubView() override = default;

    void ChildrenChanged() override;
    void UI_VisibilityChanged() override;

private:
    void ApplyConstraints(Size from, Size to);
    void TakeMargins();
    float PlaceChild(UI_Node& child, float position) const;
    void RecalcParent();

    Size fLaidOutSize;
    std::vector<float> fMargins; // gap before each child along the axis, as the archive had them
    float fTrailingMargin = 0;
    std::uint32_t fConstraints = 0;
    bool fAutoLayout = false;
    bool fAutoLayoutHorizontal = false;
    bool fAutoLayoutMaintainMargins = false;
    bool fAutoLayoutScaleChildren = false;
    bool fLayoutChildren = true;
    bool fIsLayingOut = false;
};

} // namespace kroui::ui
