#pragma once

#include "kroui/limner/Limner.h"
#include "kroui/ui/UI_Node.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {

// Brings edges of a node to whole pixels of the surface that it is drawn on.
class PixelSnap {
public:
    PixelSnap(const kroui::ui::UI_Node& node, const kroui::limner::Limner& limner)
        : fOrigin(node.UI_LocalToWindow({})), fScale(limner.ScaleFactor()) {}

    float X(float x) const { return Snap(x + fOrigin.x) - fOrigin.x; }
    float Y(float y) const { return Snap(y + fOrigin.y) - fOrigin.y; }
    kroui::Rect Snapped(const kroui::Rect& rect) const {
        const auto left = X(rect.left);
        const auto top = Y(rect.top);
        return {left, top, X(rect.Right()) - left, Y(rect.Bottom()) - top};
    }
    // The line nearest to `width` that is whole pixels, at least one.
    float Line(float width = 1) const { return std::max(1.0F, std::round(width * fScale)) / fScale; }

private:
    float Snap(float position) const { return std::round(position * fScale) / fScale; }

    kroui::Point fOrigin;
    float fScale;
};

} // namespace uit::controls
