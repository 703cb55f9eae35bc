#include "workbench/views/EdgeLines.h"

#include "kroui/ui/PixelGrid.h"

namespace workbench {

void DrawTopLine(const kroui::ui::UI_Node& node, kroui::limner::Limner& limner) {
    const kroui::ui::PixelGrid grid(node, limner);
    const kroui::Rect rect = grid.Snap(node.UI_GetLocalRect());
    limner.FillRect({rect.left, rect.top, rect.width, grid.Line()}, node.GetColor(kroui::ui::kColorLine));
}

void DrawBottomLine(const kroui::ui::UI_Node& node, kroui::limner::Limner& limner) {
    const kroui::ui::PixelGrid grid(node, limner);
    const kroui::Rect rect = grid.Snap(node.UI_GetLocalRect());
    const float width = grid.Line();
    limner.FillRect({rect.left, rect.Bottom() - width, rect.width, width}, node.GetColor(kroui::ui::kColorLine));
}

} // namespace workbench
