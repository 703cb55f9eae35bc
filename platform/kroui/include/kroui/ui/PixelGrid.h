#pragma once

#include "kroui/limner/Limner.h"
#include "kroui/ui/UI_Node.h"

#include <cmath>

namespace kroui::ui {

// The pixels of the window under a node: brings edges in the node's coordinates to whole pixels wherever it stands.
class PixelGrid {
public:
    PixelGrid(const UI_Node& node, const limner::Limner& context)
        : fOrigin(node.UI_LocalToWindow({})), fScale(context.ScaleFactor()) {}

    float X(float x) const { return std::round((fOrigin.x + x) * fScale) / fScale - fOrigin.x; }
    float Y(float y) const { return std::round((fOrigin.y + y) * fScale) / fScale - fOrigin.y; }
    Rect Snap(const Rect& rect) const;
    // A square of about `side` with its middle near `centre`.
    Rect Square(Point centre, float side) const;
    // The line width nearest to `width` that is whole pixels, at least one; 0 stays 0.
    float Line(float width = 1) const;

private:
    Point fOrigin;
    float fScale;
};

} // namespace kroui::ui
