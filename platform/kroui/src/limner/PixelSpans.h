#pragma once

#include <cstdint>

namespace kroui::limner {

// The innermost loops of drawing: one colour, premultiplied 0xAARRGGBB, over pixels that lie side by side. An opaque
// pixel stays opaque whatever is drawn over it.

// How many pixels are blended in one step; a span is fastest when its length is a multiple.
inline constexpr int kPixelsAtOnce = 4;

// A colour of which only `coverage` / 255 is there.
std::uint32_t ScaledPixel(std::uint32_t pixel, std::uint32_t coverage);

// A count of 0 or less draws nothing.
void FillSpan(std::uint32_t* target, int count, std::uint32_t pixel);
void BlendSpan(std::uint32_t* target, const std::uint8_t* coverage, int count, std::uint32_t pixel);

} // namespace kroui::limner
