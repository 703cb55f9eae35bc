#include "uit/CacheSurface.h"

#include <cmath>

namespace uit {

using kroui::Rect;

namespace {

// The rectangle moved to the next whole pixels of the surface, so that a picture lands on them unscaled. A clip always
// lies on whole pixels, which tells how user space lies on them.
Rect OnPixels(const Rect& rect, const kroui::limner::Limner& context) {
    const Rect clip = context.ClipBounds();
    const double scale = context.ScaleFactor();
    const auto snapped = [scale](double position, double origin) {
        return static_cast<float>(origin + std::round((position - origin) * scale) / scale);
    };
    return {snapped(rect.left, clip.left), snapped(rect.top, clip.top), rect.width, rect.height};
}

} // namespace

void CacheSurface::Draw(kroui::limner::Limner& context, const Rect& rect,
                        const kroui::limner::SupplierInterface* supplier, const kroui::ui::Theme& theme,
                        const boost::function<void(kroui::limner::Limner&)>& draw) {
    if (rect.IsEmpty() || !context.ClipBounds().Intersects(rect)) return;
    const kroui::Size size{rect.width, rect.height};
    const float scale = context.ScaleFactor();
    if (!fImage || size != fSize || scale != fScale || &theme != fTheme) {
        fImage = supplier ? supplier->DrawImage(size, scale, draw) : nullptr;
        fSize = size;
        fScale = scale;
        fTheme = &theme;
    }
    if (fImage) {
        const kroui::Size drawn = fImage->ViewSize();
        const Rect place = OnPixels(rect, context);
        context.DrawImage(*fImage, {place.left, place.top, drawn.width, drawn.height}, 1);
        return;
    }
    context.Save();
    context.ClipRect(rect);
    context.Translate(rect.left, rect.top);
    draw(context);
    context.Restore();
}

} // namespace uit
