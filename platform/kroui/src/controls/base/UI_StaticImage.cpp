#include "kroui/controls/UI_StaticImage.h"

#include "controls/base/ControlDrawing.h"
#include "kroui/ui/AdapterRegistry.h"

#include <utility>

namespace kroui::controls {

using ui::MakeProperty;
using ui::PropertyType;

namespace {

const ui::AdapterRegistrar<UI_StaticImage> sRegistrar("kroui::controls::UI_StaticImage");

} // namespace

void UI_StaticImage::SetImageSupplier(ImageSupplier supplier) {
    fImage.SetSupplier(std::move(supplier));
    UI_Invalidate();
}

void UI_StaticImage::SetImageName(std::string_view name) {
    if (fImage.SetName(name)) UI_Invalidate();
}

void UI_StaticImage::UI_Draw(limner::Limner* context) {
    const Size size = fImage.PictureSize(IsEnabled(), context->ScaleFactor());
    const ui::PixelGrid grid(*this, *context);
    fImage.Draw(*context, grid.Snap(drawing::FitPicture(size, UI_GetLocalRect())), IsEnabled());
}

void UI_StaticImage::UI_NodeChanged(NodeChange change) {
    UI_ControlView::UI_NodeChanged(change);
    if (change == kThemeChanged) fImage.Forget();
}

ui::AccessibleInfo UI_StaticImage::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info = UI_ControlView::UI_GetAccessibleInfo();
    info.role = ui::Role::kImage;
    return info;
}

const ui::PropertyTable& UI_StaticImage::UI_GetPropertyTable() const {
    return PropertiesOfStaticImage();
}

const ui::PropertyTable& UI_StaticImage::PropertiesOfStaticImage() {
    static constexpr ui::PropertyRow kRows[] = {
        MakeProperty<PropertyType::kBytes, &UI_StaticImage::ImageName, &UI_StaticImage::SetImageName>("imageName"),
    };
    static const ui::PropertyTable sTable{"kroui::controls::UI_StaticImage", kRows, &PropertiesOfControlView()};
    return sTable;
}

} // namespace kroui::controls
