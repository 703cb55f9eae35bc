#include "kroui/controls/UI_DisclosureTriangleButton.h"

#include "controls/base/ControlDrawing.h"
#include "kroui/ui/AdapterRegistry.h"

namespace kroui::controls {

namespace {

const ui::AdapterRegistrar<UI_DisclosureTriangleButton> sRegistrar("kroui::controls::UI_DisclosureTriangleButton");

constexpr float kTriangleRoom = 10; // the square that the triangle turns in
constexpr float kStartIndent = 4;

} // namespace

UI_DisclosureTriangleButton::UI_DisclosureTriangleButton() {
    SetTextIndent(kStartIndent);
}

Size UI_DisclosureTriangleButton::PictureSize(float /*scale*/) const {
    return {kTriangleRoom, kTriangleRoom};
}

void UI_DisclosureTriangleButton::DrawPicture(limner::Limner& context, const Rect& rect) const {
    const bool isHot = IsEnabled() && (IsHovered() || IsPressed());
    const int role = !IsEnabled() ? ui::kColorDisabledText : isHot ? ui::kColorAccent : ui::kColorDimText;
    const auto point = [&](float x, float y) {
        // Open, the triangle is turned a quarter: its x goes down.
        const Point turned = DownState() ? Point{1 - y, x} : Point{x, y};
        return Point{rect.left + turned.x * rect.width, rect.top + turned.y * rect.height};
    };
    const Point corners[] = {point(0.25F, 0.1F), point(0.85F, 0.5F), point(0.25F, 0.9F)};
    context.NewPath();
    context.MoveTo(corners[0].x, corners[0].y);
    context.LineTo(corners[1].x, corners[1].y);
    context.LineTo(corners[2].x, corners[2].y);
    context.ClosePath();
    context.Fill({GetColor(role)});
}

void UI_DisclosureTriangleButton::UI_Draw(limner::Limner* context) {
    DrawContent(*context, GetColor(IsEnabled() ? ui::kColorText : ui::kColorDisabledText));
    if (!ShowsFocus()) return;
    const ui::PixelGrid grid(*this, *context);
    context->FrameRoundRect(grid.Snap(UI_GetLocalRect()), CornerRadius(), GetColor(ui::kColorAccent),
                            grid.Line(StrokeSize2()));
}

ui::AccessibleInfo UI_DisclosureTriangleButton::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info = UI_PictureTextButton::UI_GetAccessibleInfo();
    info.checked.reset();
    info.expanded = IsChecked();
    using Action = ui::AccessibleAction;
    if (IsEnabled()) info.actions.Add(ui::AccessibleActions(IsChecked() ? Action::kCollapse : Action::kExpand));
    return info;
}

// The two are the press that is offered in one state only.
bool UI_DisclosureTriangleButton::UI_DoAccessibleAction(const ui::AccessibleRequest& request) {
    ui::AccessibleRequest press = request;
    const bool isTurning = request.action == ui::AccessibleAction::kExpand
                               ? !IsChecked()
                               : request.action == ui::AccessibleAction::kCollapse && IsChecked();
    if (isTurning) press.action = ui::AccessibleAction::kPress;
    return UI_PictureTextButton::UI_DoAccessibleAction(press);
}

const ui::PropertyTable& UI_DisclosureTriangleButton::UI_GetPropertyTable() const {
    return PropertiesOfDisclosureTriangleButton();
}

const ui::PropertyTable& UI_DisclosureTriangleButton::PropertiesOfDisclosureTriangleButton() {
    static const ui::PropertyTable sTable{
        "kroui::controls::UI_DisclosureTriangleButton", {}, &PropertiesOfPictureTextButton()};
    return sTable;
}

} // namespace kroui::controls
