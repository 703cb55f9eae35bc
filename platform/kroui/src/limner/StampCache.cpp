#include "StampCache.h"

#include "CairoHandle.h"
#include "MaskSurface.h"
#include "RoundRectPath.h"

#include <algorithm>
#include <cmath>

namespace kroui::limner {

namespace {

constexpr std::size_t kMostStamps = 512;
constexpr int kPixelParts = 16;
constexpr double kLargestCorner = 64;

// A distance in sixteenths of a pixel, or none if it is not a whole number of them.
std::optional<int> InParts(double distance) {
    constexpr double kTolerance = 1.0 / 64;
    const double parts = std::round(distance * kPixelParts);
    if (std::abs(distance * kPixelParts - parts) > kTolerance) return std::nullopt;
    return static_cast<int>(parts);
}

double FromParts(int parts) {
    return static_cast<double>(parts) / kPixelParts;
}

} // namespace

std::optional<StampCache::Stamp> StampCache::Find(const DeviceBox& box, double radius, double lineWidth) {
    const PixelRect rect = TouchedPixels(box);
    const auto left = InParts(box.left - rect.left);
    const auto top = InParts(box.top - rect.top);
    const auto right = InParts(rect.right - box.right);
    const auto bottom = InParts(rect.bottom - box.bottom);
    const double corner = std::max(radius, lineWidth);
    if (!left || !top || !right || !bottom || rect.IsEmpty() || corner > kLargestCorner) return std::nullopt;

    // One pixel more than the corner needs, for edges between pixels, and one in the middle to repeat.
    const int wholeCorners = 2 * (static_cast<int>(std::ceil(corner)) + 1) + 1;
    const Key key{
        std::min(rect.Width(), wholeCorners), std::min(rect.Height(), wholeCorners), *left, *top, *right, *bottom,
        static_cast<float>(radius),           static_cast<float>(lineWidth)};
    auto found = fMasks.find(key);
    if (found == fMasks.end()) {
        if (fMasks.size() >= kMostStamps) fMasks.clear();
        found = fMasks.emplace(key, Render(key)).first;
    }
    return Stamp{found->second, rect};
}

Mask StampCache::Render(const Key& key) {
    const DeviceBox box{FromParts(key.left), FromParts(key.top), key.width - FromParts(key.right),
                        key.height - FromParts(key.bottom)};
    return RenderMask({0, 0, key.width, key.height}, [&](cairo_t* context) {
        cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
        if (key.lineWidth > 0) {
            AddRoundFramePath(context, box, key.radius, key.lineWidth);
        } else {
            AddRoundRectPath(context, box, key.radius);
        }
        cairo_fill(context);
    });
}

std::size_t StampCache::KeyHash::operator()(const Key& key) const noexcept {
    std::size_t hash = std::hash<float>()(key.radius);
    const auto add = [&hash](std::size_t value) { hash = (hash ^ value) * 0x9E3779B97F4A7C15ULL; };
    add(std::hash<float>()(key.lineWidth));
    add(static_cast<std::size_t>(key.width) << 32 | static_cast<std::uint32_t>(key.height));
    for (const int part : {key.left, key.top, key.right, key.bottom})
        add(static_cast<std::size_t>(part));
    return hash ^ hash >> 32;
}

} // namespace kroui::limner
