#include "kroui/controls/UI_PictureButton.h"

#include "controls/base/ControlDrawing.h"
#include "kroui/controls/TextMeasure.h"
#include "kroui/ui/AdapterRegistry.h"
#include "kroui/ui/UI_Window.h"

#include <algorithm>
#include <utility>

namespace kroui::controls {

using drawing::Assign;
using ui::MakeProperty;
using ui::PropertyType;

namespace {

const ui::AdapterRegistrar<UI_PictureButton> sRegistrar("kroui::controls::UI_PictureButton");

// Room around the picture.
constexpr float kMargin = 2;

} // namespace

void UI_PictureButton::SetImageSupplier(ImageSupplier supplier) {
    fImage.SetSupplier(std::move(supplier));
    UI_Invalidate();
}

void UI_PictureButton::SetImageName(std::string_view name) {
    if (fImage.SetName(name)) UI_Invalidate();
}

void UI_PictureButton::SetDisplayBorderAlways(bool on) {
    if (Assign(fBorderAlways, on)) UI_Invalidate();
}

void UI_PictureButton::SetDisplayBorderNever(bool on) {
    if (Assign(fBorderNever, on)) UI_Invalidate();
}

bool UI_PictureButton::ShowsGround(const Face& face) const {
    if (face.focused) return true;
    return !fBorderNever && (fBorderAlways || face.hot || face.accent > 0);
}

Size UI_PictureButton::UI_GetNaturalSize() const {
    const Size picture = fImage.PictureSize(IsEnabled(), UI_GetWindow() ? UI_GetWindow()->ScaleFactor() : 1.0F);
    return {std::max(kRowHeight, picture.width + 2 * kMargin), std::max(kRowHeight, picture.height + 2 * kMargin)};
}

void UI_PictureButton::UI_Draw(limner::Limner* context) {
    Face face = FaceOfState();
    face.accent *= drawing::kAccentUnderPicture;
    if (ShowsGround(face)) DrawFace(*context, face);
    const Size size = fImage.PictureSize(IsEnabled(), context->ScaleFactor());
    const ui::PixelGrid grid(*this, *context);
    const Rect room = ContentRect().Inset(kMargin, kMargin);
    fImage.Draw(*context, grid.Snap(drawing::FitPicture(size, room)), IsEnabled());
}

void UI_PictureButton::UI_NodeChanged(NodeChange change) {
    UI_Button::UI_NodeChanged(change);
    if (change == kAttached || change == kThemeChanged) fImage.Forget();
}

const ui::PropertyTable& UI_PictureButton::UI_GetPropertyTable() const {
    return PropertiesOfPictureButton();
}

const ui::PropertyTable& UI_PictureButton::PropertiesOfPictureButton() {
    using T = UI_PictureButton;
    static constexpr ui::PropertyRow kRows[] = {
        MakeProperty<PropertyType::kBool, &T::DisplayBorderAlways, &T::SetDisplayBorderAlways>("displayBorderAlways"),
        MakeProperty<PropertyType::kBool, &T::DisplayBorderNever, &T::SetDisplayBorderNever>("displayBorderNever"),
        MakeProperty<PropertyType::kBytes, &T::ImageName, &T::SetImageName>("imageName"),
    };
    static const ui::PropertyTable sTable{"kroui::controls::UI_PictureButton", kRows, &PropertiesOfButton()};
    return sTable;
}

} // namespace kroui::controls
