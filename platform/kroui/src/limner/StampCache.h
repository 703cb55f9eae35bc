#pragma once

#include "PixelCanvas.h"

#include <optional>
#include <unordered_map>

namespace kroui::limner {

// Masks of rounded boxes, filled or framed, each rendered once and stretched to any size of box from then on. Kept by
// the supplier; user-interface thread only.
class StampCache {
public:
    // A stamp and the whole pixels to stretch it to.
    struct Stamp {
        const Mask& mask;
        PixelRect rect;
    };

    // The stamp for a box; lineWidth 0 fills it. Valid until the next call. None for a box whose edges fall on
    // arbitrary places between pixels (stamps exist for sixteenths) or whose corners are very large.
    std::optional<Stamp> Find(const DeviceBox& box, double radius, double lineWidth);

private:
    // Size of the stamp, place of the box's edges inside it in sixteenths of a pixel, corner and line in pixels.
    struct Key {
        int width;
        int height;
        int left;
        int top;
        int right;
        int bottom;
        float radius;
        float lineWidth;
        friend bool operator==(const Key&, const Key&) = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const noexcept;
    };
    static Mask Render(const Key& key);

    std::unordered_map<Key, Mask, KeyHash> fMasks;
};

} // namespace kroui::limner
