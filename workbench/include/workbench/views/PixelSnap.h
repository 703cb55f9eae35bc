#pragma once

#include "kroui/ui/UI_Node.h"

namespace workbench {

// The rectangle of a node's own coordinates with its edges on whole pixels of the window.
kroui::Rect Snapped(const kroui::ui::UI_Node& node, const kroui::limner::Limner& limner, const kroui::Rect& rect);

// A line one pixel high, or more at larger scales, along the top or bottom of the node, in the colour of outlines.
void DrawTopLine(const kroui::ui::UI_Node& node, kroui::limner::Limner& limner);
void DrawBottomLine(const kroui::ui::UI_Node& node, kroui::limner::Limner& limner);

} // namespace workbench
