#include "kroui/limner/PixelSurface.h"

#include "CairoLimner.h"
#include "MemoryImage.h"
#include "SupplierCaches.h"

#include <algorithm>
#include <cmath>

namespace kroui::limner {

namespace {

constexpr std::uint32_t kOpaqueBlack = 0xFF000000;
constexpr float kSmallestScale = 0.25F;
constexpr float kLargestScale = 16;

float UsableScale(float scale) {
    return scale > 0 ? std::clamp(scale, kSmallestScale, kLargestScale) : 1;
}

} // namespace

struct PixelSurface::Buffer {
    DrawingCaches& caches;
    PixelBuffer pixels;
    float scale = 1;
};

PixelSurface::PixelSurface(const CairoSupplier& supplier)
    : fBuffer(std::make_unique<Buffer>(Buffer{*supplier.fCaches, {}})) {
}

PixelSurface::~PixelSurface() = default;

void PixelSurface::SetSize(Size size, float scale) {
    const float usableScale = UsableScale(scale);
    int width = std::min(PixelsFor(size.width, usableScale), kMostPixelsASide);
    int height = std::min(PixelsFor(size.height, usableScale), kMostPixelsASide);
    if (width == 0 || height == 0) width = height = 0;
    if (width > 0) height = static_cast<int>(std::min<std::int64_t>(height, kMostPixels / width));
    Buffer& buffer = *fBuffer;
    if (width == buffer.pixels.width && height == buffer.pixels.height && usableScale == buffer.scale) return;
    buffer.pixels = MakePixelBuffer(width, height, kOpaqueBlack);
    buffer.scale = usableScale;
}

int PixelSurface::PixelWidth() const {
    return fBuffer->pixels.width;
}

int PixelSurface::PixelHeight() const {
    return fBuffer->pixels.height;
}

int PixelSurface::Stride() const {
    return fBuffer->pixels.Stride();
}

float PixelSurface::Scale() const {
    return fBuffer->scale;
}

const std::uint32_t* PixelSurface::Pixels() const {
    return fBuffer->pixels.pixels.data();
}

void PixelSurface::Draw(const Rect& part, const boost::function<void(Limner&)>& draw) {
    CairoLimner limner(fBuffer->pixels, fBuffer->caches, fBuffer->scale, fBuffer->pixels.Bounds());
    limner.ClipRect(part);
    if (!limner.ClipBounds().IsEmpty()) draw(limner);
}

ImagePtr PixelSurface::Snapshot() const {
    return new MemoryImage(fBuffer->pixels, fBuffer->scale);
}

} // namespace kroui::limner
