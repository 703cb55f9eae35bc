#pragma once

#include "PixelCanvas.h"

#include <boost/function.hpp>
#include <cairo.h>

namespace kroui::limner {

// The coverage of what `draw` draws, for the given pixels. The context's origin is the mask's.
Mask RenderMask(const PixelRect& pixels, const boost::function<void(cairo_t*)>& draw);

} // namespace kroui::limner
