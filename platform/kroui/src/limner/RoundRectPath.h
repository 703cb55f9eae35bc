#pragma once

#include "PixelCanvas.h"

#include <cairo.h>

namespace kroui::limner {

// Adds a closed sub-path with rounded corners to a context's path. The radius is kept to half of the smaller side.
void AddRoundRectPath(cairo_t* context, const DeviceBox& box, double radius);

// Adds the outline of a line of `lineWidth` inside the box's edge, to be filled by the even-odd rule. A line that
// leaves no inside gives the whole box.
void AddRoundFramePath(cairo_t* context, const DeviceBox& box, double radius, double lineWidth);

} // namespace kroui::limner
