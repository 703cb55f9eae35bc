#include "SurfacePainter.h"

namespace kroui::ui {

namespace {

Rect Scaled(const Rect& r, float factor) {
    return {r.left * factor, r.top * factor, r.width * factor, r.height * factor};
}

} // namespace

std::vector<Rect> PaintDamage(limner::Surface& surface, const DamageRegion& damage, const limner::Color& ground,
                              const boost::function<void(limner::Limner&)>& draw) {
    const float scale = surface.Scale();
    const Rect whole{0, 0, static_cast<float>(surface.PixelWidth()), static_cast<float>(surface.PixelHeight())};
    std::vector<Rect> painted;
    for (const Rect& rect : damage.Rects()) {
        const Rect pixels = Intersection(RoundedOut(Scaled(rect, scale)), whole);
        if (pixels.IsEmpty()) continue;
        const Rect part = Scaled(pixels, 1 / scale);
        surface.Draw(part, [&](limner::Limner& limner) {
            limner.FillRect(part, ground);
            draw(limner);
        });
        painted.push_back(pixels);
    }
    return painted;
}

long AreaOf(std::span<const Rect> parts) {
    long pixels = 0;
    for (const Rect& part : parts)
        pixels += static_cast<long>(part.width) * static_cast<long>(part.height);
    return pixels;
}

} // namespace kroui::ui
