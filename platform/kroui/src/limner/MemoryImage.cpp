#include "MemoryImage.h"

#include <algorithm>
#include <cmath>

namespace kroui::limner {

int PixelsFor(float units, float scale) {
    // A length times a scale that is a whole number but for rounding does not take another pixel.
    constexpr double kSlack = 1e-3;
    const double pixels = static_cast<double>(units) * scale;
    if (!(units > 0 && scale > 0 && pixels > 0)) return 0;
    return static_cast<int>(std::clamp(std::ceil(pixels - kSlack), 1.0, kMostPixelsASide + 1.0));
}

PixelBuffer MakePixelBuffer(int width, int height, std::uint32_t pixel) {
    const auto count = static_cast<std::size_t>(width) * height;
    // Zeros are set many at a time, which other values are not.
    using Pixels = std::vector<std::uint32_t>;
    return {width, height, pixel == 0 ? Pixels(count) : Pixels(count, pixel)};
}

SurfaceHandle SurfaceOn(PixelBuffer& buffer) {
    return SurfaceHandle(cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(buffer.pixels.data()),
                                                             CAIRO_FORMAT_ARGB32, buffer.width, buffer.height,
                                                             buffer.Stride()));
}

} // namespace kroui::limner
