#pragma once

#include "CairoHandle.h"
#include "PixelCanvas.h"
#include "kroui/limner/Image.h"

namespace kroui::limner {

// No picture or surface is larger than this, in pixels a side and in all.
inline constexpr int kMostPixelsASide = 16384;
inline constexpr std::int64_t kMostPixels = 1LL << 26;

// Pixels for a length in view units, rounded up: 0 for a length or scale that is no positive number, and one more than
// kMostPixelsASide for anything above that.
int PixelsFor(float units, float scale);

// A buffer of that size filled with one pixel.
PixelBuffer MakePixelBuffer(int width, int height, std::uint32_t pixel);

// A Cairo surface on the pixels of a buffer, which must outlive it.
SurfaceHandle SurfaceOn(PixelBuffer& buffer);

// A picture that owns its pixels.
class MemoryImage : public Image {
public:
    MemoryImage(PixelBuffer pixels, float scale) : fBuffer(std::move(pixels)), fScale(scale) {}

    int PixelWidth() const override { return fBuffer.width; }
    int PixelHeight() const override { return fBuffer.height; }
    int Stride() const override { return fBuffer.Stride(); }
    float Scale() const override { return fScale; }
    std::span<const std::uint32_t> Pixels() const override { return fBuffer.pixels; }

private:
    PixelBuffer fBuffer;
    float fScale;
};

} // namespace kroui::limner
