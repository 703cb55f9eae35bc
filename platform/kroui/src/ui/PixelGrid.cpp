#include "kroui/ui/PixelGrid.h"

#include <algorithm>

namespace kroui::ui {

Rect PixelGrid::Snap(const Rect& rect) const {
    const float left = X(rect.left);
    const float top = Y(rect.top);
    return {left, top, X(rect.Right()) - left, Y(rect.Bottom()) - top};
}

Rect PixelGrid::Square(Point centre, float side) const {
    const float whole = std::round(side * fScale) / fScale;
    return {X(centre.x - whole / 2), Y(centre.y - whole / 2), whole, whole};
}

float PixelGrid::Line(float width) const {
    // A line is rather too thin than too thick: one pixel up to a scale of 1.75.
    constexpr float kRoundUpFrom = 0.25F;
    return width > 0 ? std::max(1.0F, std::floor(width * fScale + kRoundUpFrom)) / fScale : 0;
}

} // namespace kroui::ui
