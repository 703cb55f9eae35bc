#pragma once

#include "kroui/ui/UI_Node.h"

namespace workbench {

// A line one pixel high, or more at larger scales, along the top or bottom of the node, in the colour of outlines.
void DrawTopLine(const kroui::ui::UI_Node& node, kroui::limner::Limner& limner);
void DrawBottomLine(const kroui::ui::UI_Node& node, kroui::limner::Limner& limner);

} // namespace workbench
