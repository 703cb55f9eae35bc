#include "kroui/controls/UI_Divider.h"

#include "ControlDrawing.h"
#include "kroui/ui/AdapterRegistry.h"

namespace kroui::controls {

namespace {

const ui::AdapterRegistrar<UI_Divider> sRegistrar("kroui::controls::UI_Divider");

} // namespace

void UI_Divider::UI_Draw(limner::Limner* context) {
    const drawing::PixelGrid grid(*this, *context);
    const Rect area = grid.Snap(UI_GetLocalRect());
    const float line = grid.Line();
    const bool isHorizontal = area.width >= area.height;
    const Rect rect = isHorizontal ? Rect{area.left, grid.Y(area.top + (area.height - line) / 2), area.width, line}
                                   : Rect{grid.X(area.left + (area.width - line) / 2), area.top, line, area.height};
    context->FillRect(rect, GetColor(ui::kColorLine));
}

const ui::PropertyTable& UI_Divider::UI_GetPropertyTable() const {
    return PropertiesOfDivider();
}

const ui::PropertyTable& UI_Divider::PropertiesOfDivider() {
    static const ui::PropertyTable sTable{"kroui::controls::UI_Divider", {}, &PropertiesOfControlView()};
    return sTable;
}

} // namespace kroui::controls
