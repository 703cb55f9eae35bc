#pragma once

#include "LayoutAttributes.h"

namespace krotarnlio {

// A widget with children.
class ContainerAdapter : public uit::lio::WidgetAdapter {
public:
    // How the children stand unless the script says otherwise.
    virtual Placement DefaultPlacement() const { return Placement::kColumn; }
    // What the widget itself takes at its edges: a frame, a header. The children's margins come inside.
    virtual Margins Insets() const { return {}; }
    virtual Margins DefaultMargins() const { return {}; }
    // Whether the children take part in the layout now; otherwise they are hidden.
    virtual bool ShowsChildren() const { return true; }
    // Whether hidden children keep their room (pages of tabs, so that choosing one moves nothing).
    virtual bool KeepsRoom() const { return false; }
    // How the container's own control, if it has one, stands to the children: around them (overlay), above them
    // (column) or before them (row). Only a control around them holds the children's nodes.
    virtual Placement ControlPlacement() const { return Placement::kOverlay; }

    // A widget inside it has been made; they come in their order.
    virtual void ChildMade(uit::lio::WidgetAdapter& /*child*/) {}

    bool StretchesAcross() const override { return true; }
    // Most containers are no controls and take nothing for themselves.
    boost::intrusive_ptr<kroui::ui::UI_Node> GetNode() override { return {}; }
    uit::lio::WidgetExtent Measure(std::optional<float> /*width*/) override { return {}; }
};

} // namespace krotarnlio
