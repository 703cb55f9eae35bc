#include "kroui/controls/UI_Divider.h"

#include "controls/base/ControlDrawing.h"
#include "kroui/ui/AdapterRegistry.h"

namespace kroui::controls {

namespace {

const ui::AdapterRegistrar<UI_Divider> sRegistrar("kroui::controls::UI_Divider");

// Of the natural size: the line with the room around it.
constexpr float kThickness = 9;
constexpr float kLength = 24;

} // namespace

void UI_Divider::SetOrientation(Orientation orientation) {
    if (drawing::Assign(fOrientation, orientation)) UI_Invalidate();
}

Size UI_Divider::UI_GetNaturalSize() const {
    return IsHorizontal(UI_GetLocalRect()) ? Size{kLength, kThickness} : Size{kThickness, kLength};
}

bool UI_Divider::IsHorizontal(const Rect& area) const {
    if (fOrientation != Orientation::kByShape) return fOrientation == Orientation::kHorizontal;
    return area.width >= area.height;
}

void UI_Divider::UI_Draw(limner::Limner* context) {
    const ui::PixelGrid grid(*this, *context);
    const Rect area = grid.Snap(UI_GetLocalRect());
    const float line = grid.Line();
    const Rect rect = IsHorizontal(area)
                          ? Rect{area.left, grid.Y(area.top + (area.height - line) / 2), area.width, line}
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
