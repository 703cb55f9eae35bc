#pragma once

#include "kroui/limner/Limner.h"

#include <boost/function.hpp>

namespace kroui::limner {

// What a window is drawn on, part by part. Owned by the window's back-end, which knows what it consists of (pixels, a
// browser's canvas, a system's own surface) and shows it. User-interface thread.
class Surface {
public:
    virtual ~Surface() = default;

    // Gives the surface a size in view units and a scale in pixels a unit, both held to what it can do; what was on it
    // is lost when either differs.
    virtual void SetSize(Size size, float scale) = 0;
    virtual int PixelWidth() const = 0;
    virtual int PixelHeight() const = 0;
    virtual float Scale() const = 0;

    // Calls `draw` with a context clipped to `part` (view units, rounded outward to whole pixels by the caller).
    virtual void Draw(const Rect& part, const boost::function<void(Limner&)>& draw) = 0;

protected:
    Surface() = default;
    Surface(const Surface&) = default;
    Surface& operator=(const Surface&) = default;
};

} // namespace kroui::limner
