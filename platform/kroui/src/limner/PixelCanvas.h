#pragma once

#include "PixelSpans.h"
#include "kroui/limner/Types.h"

#include <cstdint>
#include <span>
#include <vector>

namespace kroui::limner {

// Whole device pixels; right and bottom are not part of it.
struct PixelRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool IsEmpty() const { return right <= left || bottom <= top; }
    friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

PixelRect Intersection(const PixelRect& a, const PixelRect& b);

// A box in device pixels whose edges may fall between them.
struct DeviceBox {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    double Width() const { return right - left; }
    double Height() const { return bottom - top; }
};

// The whole pixels that a box touches, kept to +-kFarthestPixel.
inline constexpr int kFarthestPixel = 1 << 20;
PixelRect TouchedPixels(const DeviceBox& box);

// Coverage 0...255 of a small shape, drawn at an offset from its origin.
struct Mask {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> coverage;

    const std::uint8_t* Row(int y) const { return coverage.data() + static_cast<std::size_t>(y) * width; }
};

// Pixels in memory, rows without a gap, premultiplied 0xAARRGGBB.
struct PixelBuffer {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    int Stride() const { return width * static_cast<int>(sizeof(std::uint32_t)); }
    PixelRect Bounds() const { return {0, 0, width, height}; }
};

// A colour as a premultiplied pixel; components outside 0...1 are brought inside.
std::uint32_t PixelFor(const Color& color);

// Draws one colour, or a picture, over the pixels of a buffer, which must outlive it. All operations blend "over" and
// stay inside the clip, which must lie inside the buffer.
class PixelCanvas {
public:
    explicit PixelCanvas(PixelBuffer& buffer) : fBuffer(buffer) {}

    void Fill(const PixelRect& rect, const PixelRect& clip, std::uint32_t pixel);
    // Edges between pixels give partial coverage.
    void FillExact(const DeviceBox& box, const PixelRect& clip, std::uint32_t pixel);
    void Blend(const Mask& mask, int x, int y, const PixelRect& clip, std::uint32_t pixel);
    // Coverage for every pixel of a rectangle, row by row.
    void BlendRect(const PixelRect& rect, std::span<const std::uint8_t> coverage, const PixelRect& clip,
                   std::uint32_t pixel);
    // Stretches a mask to the rectangle: where the rectangle is larger, the mask's middle column or row repeats.
    void BlendStretched(const Mask& mask, const PixelRect& rect, const PixelRect& clip, std::uint32_t pixel);

    // A picture that fills the rectangle, pixel for pixel.
    void Paint(std::span<const std::uint32_t> pixels, const PixelRect& rect, const PixelRect& clip);

private:
    void BlendPart(const PixelRect& part, const Mask& mask, int left, int top, std::uint32_t pixel);
    void FillByRow(const PixelRect& part, const std::uint8_t* coverage, std::ptrdiff_t stride, std::uint32_t pixel);
    PixelRows RowsOf(const PixelRect& part); // of one that lies inside the buffer
    std::uint32_t* Row(int y) { return fBuffer.pixels.data() + static_cast<std::size_t>(y) * fBuffer.width; }

    PixelBuffer& fBuffer;
};

} // namespace kroui::limner
