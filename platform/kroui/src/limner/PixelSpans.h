#pragma once

#include <cstddef>
#include <cstdint>

namespace kroui::limner {

// The innermost loops of drawing: premultiplied colours 0xAARRGGBB over pixels. An opaque pixel stays opaque
// whatever is drawn over it. Done with the best vectors that the processor has; the pixels are the same on all.

// A picture's rows blend fastest when their length is a multiple of this.
inline constexpr int kPixelsAtOnce = 4;

// A part of a picture: rows below each other, `stride` pixels from one to the next. None when width or height is 0 or
// less.
struct PixelRows {
    std::uint32_t* first = nullptr;
    std::ptrdiff_t stride = 0;
    int width = 0;
    int height = 0;
};

// Coverage 0...255 of such a part, `stride` bytes from row to row; 0 when all rows have the first one's.
struct CoverageRows {
    const std::uint8_t* first = nullptr;
    std::ptrdiff_t stride = 0;
};

// A colour of which only `coverage` / 255 is there.
std::uint32_t ScaledPixel(std::uint32_t pixel, std::uint32_t coverage);

// One pixel of what the others do.
void PaintPixel(std::uint32_t& target, std::uint32_t pixel);
void BlendPixel(std::uint32_t& target, std::uint32_t coverage, std::uint32_t pixel);
void FillRows(const PixelRows& rows, std::uint32_t pixel);
void BlendRows(const PixelRows& rows, const CoverageRows& coverage, std::uint32_t pixel);
// Pixels of their own over as many rows, `stride` from row to row.
void PaintRows(const PixelRows& rows, const std::uint32_t* pixels, std::ptrdiff_t stride);

} // namespace kroui::limner
