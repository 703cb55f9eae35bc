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

struct PixelSurface::Surface {
    DrawingCaches& caches;
    PixelBuffer buffer;
    float scale = 1;
};

PixelSurface::PixelSurface(const CairoSupplier& supplier)
    : fSurface(std::make_unique<Surface>(Surface{*supplier.fCaches, {}})) {
}

PixelSurface::~PixelSurface() = default;

void PixelSurface::SetSize(Size size, float scale) {
    const float usableScale = UsableScale(scale);
    int width = std::min(PixelsFor(size.width, usableScale), kMostPixelsASide);
    int height = std::min(PixelsFor(size.height, usableScale), kMostPixelsASide);
    if (width == 0 || height == 0) width = height = 0;
    if (width > 0) height = static_cast<int>(std::min<std::int64_t>(height, kMostPixels / width));
    Surface& surface = *fSurface;
    if (width == surface.buffer.width && height == surface.buffer.height && usableScale == surface.scale) return;
    surface.buffer = MakePixelBuffer(width, height, kOpaqueBlack);
    surface.scale = usableScale;
}

int PixelSurface::PixelWidth() const {
    return fSurface->buffer.width;
}

int PixelSurface::PixelHeight() const {
    return fSurface->buffer.height;
}

int PixelSurface::Stride() const {
    return fSurface->buffer.Stride();
}

float PixelSurface::Scale() const {
    return fSurface->scale;
}

const std::uint32_t* PixelSurface::Pixels() const {
    return fSurface->buffer.pixels.data();
}

void PixelSurface::Draw(const Rect& part, const boost::function<void(Limner&)>& draw) {
    CairoLimner limner(fSurface->buffer, fSurface->caches, fSurface->scale, fSurface->buffer.Bounds());
    limner.ClipRect(part);
    if (!limner.ClipBounds().IsEmpty()) draw(limner);
}

ImagePtr PixelSurface::Snapshot() const {
    return new MemoryImage(fSurface->buffer, fSurface->scale);
}

} // namespace kroui::limner
