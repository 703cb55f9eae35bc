#include "uit/controls/UI_PictureToggleButton.h"

#include "kroui/ui/PixelGrid.h"
#include "kroui/ui/UI_Window.h"

#include <algorithm>

namespace uit::controls {

using kroui::Point;
using kroui::Rect;
using kroui::Size;

namespace {

constexpr float kMargin = 2;
constexpr float kAccentUnderPicture = 0.3F;

} // namespace

UI_PictureToggleButton::UI_PictureToggleButton() {
    SetSpringLoaded(false);
}

void UI_PictureToggleButton::SetImageSupplier(const kroui::controls::ImageSupplier& supplier) {
    fOn.SetSupplier(supplier);
    fOff.SetSupplier(supplier);
    UI_Invalidate();
}

void UI_PictureToggleButton::SetImageNames(std::string_view on, std::string_view off) {
    const bool isOtherOn = fOn.SetName(on);
    const bool isOtherOff = fOff.SetName(off);
    if (isOtherOn || isOtherOff) UI_Invalidate();
}

void UI_PictureToggleButton::SetPictureSize(Size size) {
    if (size == fSize) return;
    fSize = size;
    UI_Invalidate();
}

Size UI_PictureToggleButton::PictureSize(float scale) const {
    const Size own = fOn.PictureSize(IsEnabled(), scale);
    return {fSize.width > 0 ? fSize.width : own.width, fSize.height > 0 ? fSize.height : own.height};
}

Size UI_PictureToggleButton::UI_GetNaturalSize() const {
    const Size picture = PictureSize(UI_GetWindow() ? UI_GetWindow()->ScaleFactor() : 1.0F);
    return {picture.width + 2 * kMargin, picture.height + 2 * kMargin};
}

void UI_PictureToggleButton::UI_Draw(kroui::limner::Limner* context) {
    const bool hasOff = fOff.PictureSize(IsEnabled(), context->ScaleFactor()).width > 0;
    Face face = FaceOfState();
    face.accent = hasOff ? 0 : face.accent * kAccentUnderPicture;
    if (face.hot || face.focused || face.accent > 0) DrawFace(*context, face);
    const Rect room = ContentRect().Inset(kMargin, kMargin);
    const Size wanted = PictureSize(context->ScaleFactor());
    const Size size{std::min(wanted.width, room.width), std::min(wanted.height, room.height)};
    const Point middle = room.Centre();
    const kroui::ui::PixelGrid grid(*this, *context);
    const Rect place = grid.Snap({middle.x - size.width / 2, middle.y - size.height / 2, size.width, size.height});
    (IsChecked() || !hasOff ? fOn : fOff).Draw(*context, place, IsEnabled());
}

void UI_PictureToggleButton::UI_NodeChanged(NodeChange change) {
    UI_Button::UI_NodeChanged(change);
    if (change != kAttached && change != kThemeChanged) return;
    fOn.Forget();
    fOff.Forget();
}

} // namespace uit::controls
