#include "workbench/views/PixelSnap.h"

#include <algorithm>
#include <cmath>

namespace workbench {

namespace {

float LineWidth(const kroui::limner::Limner& limner) {
    return std::max(1.0F, std::floor(limner.ScaleFactor())) / limner.ScaleFactor();
}

} // namespace

kroui::Rect Snapped(const kroui::ui::UI_Node& node, const kroui::limner::Limner& limner, const kroui::Rect& rect) {
    const kroui::Point origin = node.UI_LocalToWindow({});
    const float scale = limner.ScaleFactor();
    const auto snap = [scale](float place, float from) { return std::round((from + place) * scale) / scale - from; };
    const float left = snap(rect.left, origin.x);
    const float top = snap(rect.top, origin.y);
    return {left, top, snap(rect.Right(), origin.x) - left, snap(rect.Bottom(), origin.y) - top};
}

void DrawTopLine(const kroui::ui::UI_Node& node, kroui::limner::Limner& limner) {
    const kroui::Rect rect = Snapped(node, limner, node.UI_GetLocalRect());
    limner.FillRect({rect.left, rect.top, rect.width, LineWidth(limner)}, node.GetColor(kroui::ui::kColorLine));
}

void DrawBottomLine(const kroui::ui::UI_Node& node, kroui::limner::Limner& limner) {
    const kroui::Rect rect = Snapped(node, limner, node.UI_GetLocalRect());
    const float width = LineWidth(limner);
    limner.FillRect({rect.left, rect.Bottom() - width, rect.width, width}, node.GetColor(kroui::ui::kColorLine));
}

} // namespace workbench
