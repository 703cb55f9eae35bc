#pragma once

#include "kroui/ui/UI_Window.h"

#include <string>

namespace workbench {

// The nodes of a window that can be seen, a line each, children indented under their parents, as fields separated by
// tabs: id, role, name, value, left, top, width, height (window coordinates, view units), "enabled" or "disabled".
// For drivers of tests.
std::string DescribeTree(const kroui::ui::UI_Window& window);

} // namespace workbench
