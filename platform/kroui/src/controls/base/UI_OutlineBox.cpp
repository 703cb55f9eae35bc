#include "kroui/controls/UI_OutlineBox.h"

#include "controls/base/ControlDrawing.h"
#include "kroui/ui/AdapterRegistry.h"

namespace kroui::controls {

using ui::MakeProperty;
using ui::PropertyType;

namespace {

const ui::AdapterRegistrar<UI_OutlineBox> sRegistrar("kroui::controls::UI_OutlineBox");

constexpr float kLargestRadius = 100;

} // namespace

void UI_OutlineBox::SetCornerRadius(float radius) {
    if (drawing::Assign(fCornerRadius, drawing::Bounded(radius, 0, kLargestRadius))) UI_Invalidate();
}

void UI_OutlineBox::UI_Draw(limner::Limner* context) {
    const ui::PixelGrid grid(*this, *context);
    context->FrameRoundRect(grid.Snap(UI_GetLocalRect()), fCornerRadius, GetColor(ui::kColorLine), grid.Line());
}

ui::AccessibleInfo UI_OutlineBox::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info = UI_ControlView::UI_GetAccessibleInfo();
    info.role = ui::Role::kGroup;
    return info;
}

const ui::PropertyTable& UI_OutlineBox::UI_GetPropertyTable() const {
    return PropertiesOfOutlineBox();
}

const ui::PropertyTable& UI_OutlineBox::PropertiesOfOutlineBox() {
    static constexpr ui::PropertyRow kRows[] = {
        MakeProperty<PropertyType::kFloat, &UI_OutlineBox::CornerRadius, &UI_OutlineBox::SetCornerRadius>(
            "cornerRadius"),
    };
    static const ui::PropertyTable sTable{"kroui::controls::UI_OutlineBox", kRows, &PropertiesOfControlView(), true};
    return sTable;
}

} // namespace kroui::controls
