#include "uit/lio/PictureSupplier.h"

#include <algorithm>
#include <string>

namespace uit::lio {

using kroui::limner::ImagePtr;

namespace {

std::string DarkVariant(std::string_view name) {
    const std::size_t end = std::min(name.rfind('.'), name.size());
    return std::string(name.substr(0, end)) + "_D" + std::string(name.substr(end));
}

} // namespace

kroui::controls::ImageSupplier MakePictureSupplier(const WidgetContext& context, const kroui::ui::UI_Node& control) {
    return [image = context.image, &control](const krocore::string8& name, bool enabled, float scale) {
        if (!image || !enabled) return ImagePtr();
        ImagePtr picture;
        if (&control.GetTheme() == &kroui::ui::Theme::Dark()) picture = image(DarkVariant(name), scale);
        return picture ? picture : image(name, scale);
    };
}

} // namespace uit::lio
