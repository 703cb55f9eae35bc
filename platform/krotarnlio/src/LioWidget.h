#pragma once

#include "ContainerAdapter.h"

#include "orrin/layout.h"

#include <memory>
#include <utility>
#include <vector>

namespace krotarnlio {

// A widget of a layout that has been made: its adapter, its place, its children. Owned by its parent, the top one by
// the root.
struct LioWidget {
    std::unique_ptr<uit::lio::WidgetAdapter> adapter;
    ContainerAdapter* container = nullptr; // the adapter, if it is one
    LayoutAttributes layout;
    std::vector<std::pair<int, orrin::name_t>> cells; // that the user sets with it, with their attributes' rows
    // In the layout's boxes: the whole widget, its control, and where the children are.
    orrin::layout_t::index_t box = orrin::layout_t::kNone;
    orrin::layout_t::index_t controlBox = orrin::layout_t::kNone; // the whole box unless the control stands beside
    orrin::layout_t::index_t contentBox = orrin::layout_t::kNone;
    std::vector<std::unique_ptr<LioWidget>> children;

    bool HoldsChildNodes() const { return container && container->ControlPlacement() == Placement::kOverlay; }
};

} // namespace krotarnlio
