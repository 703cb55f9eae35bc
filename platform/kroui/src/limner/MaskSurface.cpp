#include "MaskSurface.h"

#include "CairoHandle.h"

#include <algorithm>

namespace kroui::limner {

Mask RenderMask(const PixelRect& pixels, const boost::function<void(cairo_t*)>& draw) {
    Mask mask{pixels.left, pixels.top, pixels.Width(), pixels.Height(), {}};
    const SurfaceHandle surface(cairo_image_surface_create(CAIRO_FORMAT_A8, mask.width, mask.height));
    const ContextHandle context(cairo_create(surface.get()));
    cairo_set_tolerance(context.get(), kCurveTolerance);
    cairo_translate(context.get(), -mask.left, -mask.top);
    draw(context.get());
    cairo_surface_flush(surface.get());

    const unsigned char* data = cairo_image_surface_get_data(surface.get());
    const int stride = cairo_image_surface_get_stride(surface.get());
    mask.coverage.resize(static_cast<std::size_t>(mask.width) * mask.height);
    if (data == nullptr) return mask;
    for (int y = 0; y < mask.height; ++y) {
        std::copy_n(data + static_cast<std::ptrdiff_t>(y) * stride, mask.width,
                    mask.coverage.begin() + static_cast<std::ptrdiff_t>(y) * mask.width);
    }
    return mask;
}

} // namespace kroui::limner
