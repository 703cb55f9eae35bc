#include "kroui/ui/UI_SubView.h"

#include "kroui/ui/AdapterRegistry.h"

#include <utility>

namespace kroui::ui {

namespace {

const AdapterRegistrar<UI_SubView> sRegistrar("kroui::ui::UI_SubView");

// One axis of a child under constraints: where it goes when its parent's length changes by `growth`.
void ApplyToAxis(float& start, float& length, float growth, bool keepsNear, bool keepsFar) {
    if (keepsNear && keepsFar) {
        length = std::max(0.0F, length + growth);
    } else if (keepsFar) {
        start += growth;
    }
}

} // namespace

UI_SubView::UI_SubView() = default;

void UI_SubView::UI_SizeChanged(const RectT<float>& rect) {
    UI_Node::UI_SizeChanged(rect);
    const Size size{rect.width, rect.height};
    const Size before = std::exchange(fLaidOutSize, size);
    if (!fLayoutChildren || fIsLayingOut) return;
    if (!fAutoLayout) {
        ApplyConstraints(before, size);
    } else if (UI_IsAttached()) {
        RecalcAutoLayout();
    }
}

void UI_SubView::ApplyConstraints(Size from, Size to) {
    const float growthX = to.width - from.width;
    const float growthY = to.height - from.height;
    for (const auto& child : Children()) {
        const auto* const view = dynamic_cast<const UI_SubView*>(child.get());
        const std::uint32_t mask = view ? view->fConstraints : 0;
        if (mask == 0) continue;
        Rect frame = child->UI_GetFrame();
        if (mask & kConstrainHorizontalCentre) {
            frame.left += growthX / 2;
        } else {
            ApplyToAxis(frame.left, frame.width, growthX, mask & kConstrainLeft, mask & kConstrainRight);
        }
        ApplyToAxis(frame.top, frame.height, growthY, mask & kConstrainTop, mask & kConstrainBottom);
        child->UI_SetFrame(frame);
    }
}

void UI_SubView::RecalcAutoLayout() {
    if (!fAutoLayout || !fLayoutChildren || fIsLayingOut || ChildCount() == 0) return;
    fIsLayingOut = true;
    TakeMargins();
    float position = 0;
    for (std::size_t i = 0; i < ChildCount(); ++i)
        if (Child(i)->UI_IsVisible()) position = PlaceChild(*Child(i), position + fMargins[i]);

    Rect own = UI_GetFrame();
    (fAutoLayoutHorizontal ? own.width : own.height) = position + fTrailingMargin;
    const bool isResized = own != UI_GetFrame();
    UI_SetFrame(own);
    fIsLayingOut = false;
    if (isResized) RecalcParent();
}

void UI_SubView::TakeMargins() {
    if (fMargins.size() == ChildCount()) return;
    fMargins.clear();
    fTrailingMargin = 0;
    float previousEnd = 0;
    for (const auto& child : Children()) {
        const Rect& frame = child->UI_GetFrame();
        const float start = fAutoLayoutHorizontal ? frame.left : frame.top;
        fMargins.push_back(fAutoLayoutMaintainMargins ? std::max(0.0F, start - previousEnd) : 0);
        previousEnd = fAutoLayoutHorizontal ? frame.Right() : frame.Bottom();
    }
    const float length = fAutoLayoutHorizontal ? UI_GetFrame().width : UI_GetFrame().height;
    if (fAutoLayoutMaintainMargins) fTrailingMargin = std::max(0.0F, length - previousEnd);
}

float UI_SubView::PlaceChild(UI_Node& child, float position) const {
    Rect frame = child.UI_GetFrame();
    if (fAutoLayoutHorizontal) {
        frame.left = position;
        if (frame.width <= 0) frame.width = child.UI_GetNaturalSize().width;
        if (fAutoLayoutScaleChildren) frame.top = 0, frame.height = UI_GetFrame().height;
    } else {
        frame.top = position;
        if (frame.height <= 0) frame.height = child.UI_GetNaturalSize().height;
        if (fAutoLayoutScaleChildren) frame.left = 0, frame.width = UI_GetFrame().width;
    }
    child.UI_SetFrame(frame);
    // Being resized, the child may have taken another length.
    return fAutoLayoutHorizontal ? child.UI_GetFrame().Right() : child.UI_GetFrame().Bottom();
}

void UI_SubView::RecalcParent() {
    if (auto* const parent = dynamic_cast<UI_SubView*>(UI_GetParent())) parent->RecalcAutoLayout();
}

void UI_SubView::UI_NodeChanged(NodeChange change) {
    UI_Node::UI_NodeChanged(change);
    if (change == kAttached) RecalcAutoLayout();
}

void UI_SubView::UI_VisibilityChanged() {
    UI_Node::UI_VisibilityChanged();
    if (UI_IsAttached()) RecalcParent();
}

void UI_SubView::ChildrenChanged() {
    if (UI_IsAttached()) RecalcAutoLayout();
}

const PropertyTable& UI_SubView::UI_GetPropertyTable() const {
    return PropertiesOfSubView();
}

const PropertyTable& UI_SubView::PropertiesOfSubView() {
    static constexpr PropertyRow kRows[] = {
        MakeProperty<PropertyType::kBool, &UI_SubView::AutoLayout, &UI_SubView::SetAutoLayout>("AutoLayout"),
        MakeProperty<PropertyType::kBool, &UI_SubView::AutoLayoutHorizontal, &UI_SubView::SetAutoLayoutHorizontal>(
            "AutoLayout_Horizontal"),
        MakeProperty<PropertyType::kBool, &UI_SubView::AutoLayoutMaintainMargins,
                     &UI_SubView::SetAutoLayoutMaintainMargins>("AutoLayout_MaintainMargins"),
        MakeProperty<PropertyType::kBool, &UI_SubView::AutoLayoutScaleChildren,
                     &UI_SubView::SetAutoLayoutScaleChildren>("AutoLayout_ScaleChildren"),
        MakeProperty<PropertyType::kConstraints, &UI_SubView::Constraints, &UI_SubView::SetConstraints>("Constraints"),
        MakeProperty<PropertyType::kBool, &UI_SubView::LayoutChildren, &UI_SubView::SetLayoutChildren>(
            "LayoutChildren"),
    };
    static const PropertyTable sTable{"kroui::ui::UI_SubView", kRows, &PropertiesOfNode(), true};
    return sTable;
}

} // namespace kroui::ui
