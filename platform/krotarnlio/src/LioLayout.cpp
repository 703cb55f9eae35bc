#include "LioLayout.h"

#include <cmath>

namespace krotarnlio {

using kroui::Point;
using kroui::Rect;
using orrin::alignment_t;
using orrin::layout_attributes_t;
using orrin::layout_t;
using orrin::placement_t;
using uit::lio::WidgetExtent;

namespace {

constexpr int kDefaultSpacing = 8; // units between neighbours

alignment_t ToBox(Alignment alignment, alignment_t otherwise) {
    switch (alignment) {
    case Alignment::kStart: return alignment_t::start;
    case Alignment::kEnd: return alignment_t::end;
    case Alignment::kCentre: return alignment_t::center;
    case Alignment::kProportional: return alignment_t::proportional;
    case Alignment::kFill: return alignment_t::fill;
    case Alignment::kDefault: break;
    }
    return otherwise;
}

placement_t ToBox(Placement placement) {
    switch (placement) {
    case Placement::kRow: return placement_t::row;
    case Placement::kColumn: return placement_t::column;
    case Placement::kOverlay: return placement_t::overlay;
    case Placement::kLeaf: break;
    }
    return placement_t::leaf;
}

int Whole(float length) {
    return static_cast<int>(std::ceil(length));
}

Placement PlacementOf(const LioWidget& container) {
    return container.layout.placement.value_or(container.container->DefaultPlacement());
}

// What a widget says of its own place among its neighbours.
layout_attributes_t PlaceOf(const LioWidget& widget, const LioWidget* parent) {
    const LayoutAttributes& said = widget.layout;
    const bool stretches = parent && widget.adapter->StretchesAcross();
    const bool inWidth =
        stretches && parent->layout.childHorizontal == Alignment::kDefault && PlacementOf(*parent) != Placement::kRow;
    const bool inHeight =
        stretches && parent->layout.childVertical == Alignment::kDefault && PlacementOf(*parent) != Placement::kColumn;
    layout_attributes_t attributes;
    attributes.horizontal = ToBox(said.horizontal, inWidth ? alignment_t::fill : alignment_t::inherit);
    attributes.vertical = ToBox(said.vertical, inHeight ? alignment_t::fill : alignment_t::inherit);
    attributes.indent = Whole(said.indent);
    return attributes;
}

// What a container says of its children.
void AddContent(layout_attributes_t& attributes, const LioWidget& widget) {
    const LayoutAttributes& said = widget.layout;
    const ContainerAdapter& container = *widget.container;
    attributes.placement = ToBox(PlacementOf(widget));
    attributes.childHorizontal = ToBox(said.childHorizontal, alignment_t::start);
    attributes.childVertical = ToBox(said.childVertical, alignment_t::start);
    attributes.spacing = said.spacing ? Whole(*said.spacing) : kDefaultSpacing;
    attributes.masksLabel = (said.guideMask & LayoutAttributes::kColonGuide) != 0;
    attributes.masksBaseline = (said.guideMask & LayoutAttributes::kBaselineGuide) != 0;
    const Margins inner = said.margins.value_or(container.DefaultMargins());
    const Margins edge = container.Insets();
    attributes.margins = {Whole(inner.left + edge.left), Whole(inner.top + edge.top), Whole(inner.right + edge.right),
                          Whole(inner.bottom + edge.bottom)};
}

Rect ToRect(const orrin::layout_rect_t& frame) {
    return {static_cast<float>(frame.left), static_cast<float>(frame.top), static_cast<float>(frame.width),
            static_cast<float>(frame.height)};
}

} // namespace

LioLayout::LioLayout(LioWidget& top) : fTop(top) {
    AddBoxes(fTop, nullptr);
    fBoxes.set_height_for_width([this](layout_t::index_t leaf, int width) { return HeightForWidth(leaf, width); });
}

kroui::Size LioLayout::Place() {
    Update(fTop, true, true);
    fBoxes.place();
    PlaceNodes(fTop, {});
    const orrin::layout_rect_t whole = fBoxes.frame(fTop.box);
    return {static_cast<float>(whole.width), static_cast<float>(whole.height)};
}

kroui::Rect LioLayout::FrameOf(const LioWidget& widget) const {
    return ToRect(fBoxes.frame(widget.controlBox));
}

void LioLayout::AddBoxes(LioWidget& widget, const LioWidget* parent) {
    const layout_attributes_t place = PlaceOf(widget, parent);
    const layout_t::index_t around = parent ? parent->contentBox : layout_t::kNone;
    if (widget.container) {
        AddContainer(widget, place, around);
    } else {
        widget.box = widget.controlBox = fBoxes.add(around, place);
        fOwners.push_back(&widget);
    }
    for (const auto& child : widget.children)
        AddBoxes(*child, &widget);
}

// A container without a control is one box. With one it is a box around two: the control's and that of the children.
void LioLayout::AddContainer(LioWidget& widget, layout_attributes_t place, layout_t::index_t parent) {
    if (!widget.adapter->GetNode()) {
        AddContent(place, widget);
        widget.box = widget.controlBox = widget.contentBox = fBoxes.add(parent, place);
        fOwners.push_back(&widget);
        return;
    }
    layout_attributes_t content;
    AddContent(content, widget);
    place.placement = ToBox(widget.container->ControlPlacement());
    place.spacing = kDefaultSpacing;
    place.masksLabel = content.masksLabel;
    // Frames and pages beside each other begin at the same height, whatever the first text in them is.
    place.masksBaseline = content.masksBaseline || widget.HoldsChildNodes();
    // Across both take all the room; along, if one stands before the other, what is left over is the children's.
    const bool isRow = place.placement == placement_t::row;
    const bool isColumn = place.placement == placement_t::column;
    place.childHorizontal = isRow ? alignment_t::start : alignment_t::fill;
    place.childVertical = isColumn ? alignment_t::start : alignment_t::fill;
    content.horizontal = content.vertical = alignment_t::fill;
    widget.box = fBoxes.add(parent, place);
    const layout_t::index_t control = fBoxes.add(widget.box, {});
    widget.contentBox = fBoxes.add(widget.box, content);
    widget.controlBox = widget.HoldsChildNodes() ? widget.box : control;
    fOwners.insert(fOwners.end(), 3, &widget);
}

// `isShown`: as far as the nodes around the widget let it be seen. `isPresent`: whether it takes room.
void LioLayout::Update(const LioWidget& widget, bool isShown, bool isPresent) {
    const bool showsChildren = !widget.container || widget.container->ShowsChildren();
    const auto node = widget.adapter->GetNode();
    // A node around children that are not shown would only be in the way of what is behind it.
    const bool isAround = node && widget.HoldsChildNodes();
    const bool showsNode = isShown && (!isAround || showsChildren);
    if (node && node->UI_IsVisible() != showsNode) node->UI_Show(showsNode);
    if (node && isPresent) SetExtents(widget, widget.container ? widget.box + 1 : widget.box);
    if (!widget.container) return;
    const bool hasRoom = showsChildren || widget.container->KeepsRoom();
    fBoxes.set_present(widget.contentBox, hasRoom);
    for (const auto& child : widget.children)
        Update(*child, isAround || (isShown && showsChildren), isPresent && hasRoom);
}

void LioLayout::SetExtents(const LioWidget& widget, layout_t::index_t leaf) {
    WidgetExtent extent = widget.adapter->Measure({});
    // Its texts are not in line with those of the children on top of it.
    if (widget.HoldsChildNodes()) extent = {extent.size, {}, {}};
    const auto guide = [](const std::optional<float>& place) {
        return place ? static_cast<int>(std::lround(*place)) : orrin::layout_extents_t::kNoGuide;
    };
    fBoxes.set_extents(
        leaf, {Whole(extent.size.width), Whole(extent.size.height),
               (widget.layout.guideMask & LayoutAttributes::kColonGuide) != 0 ? orrin::layout_extents_t::kNoGuide
                                                                              : guide(extent.colon),
               (widget.layout.guideMask & LayoutAttributes::kBaselineGuide) != 0 ? orrin::layout_extents_t::kNoGuide
                                                                                 : guide(extent.baseline)});
}

// `origin`: the left top corner of the node that holds this widget's, in the coordinates of the whole.
void LioLayout::PlaceNodes(const LioWidget& widget, Point origin) const {
    if (!fBoxes.is_present(widget.controlBox)) return;
    const Rect frame = ToRect(fBoxes.frame(widget.controlBox));
    if (widget.adapter->GetNode()) {
        widget.adapter->Place(frame.Offset(-origin.x, -origin.y));
        if (widget.HoldsChildNodes()) origin = {frame.left, frame.top};
    }
    for (const auto& child : widget.children)
        PlaceNodes(*child, origin);
}

int LioLayout::HeightForWidth(layout_t::index_t leaf, int width) const {
    const LioWidget& widget = *fOwners[leaf];
    const bool isAsMeasured = width == fBoxes.needed_width(leaf);
    if (isAsMeasured || widget.container) return -1;
    return Whole(widget.adapter->Measure(static_cast<float>(width)).size.height);
}

} // namespace krotarnlio
