#pragma once

#include "kroui/Geometry.h"

#include <span>
#include <vector>

namespace kroui::ui {

// What has to be painted again: a short list of rectangles that do not overlap. Rectangles that are close are painted
// as one where that costs little more than both.
class DamageRegion {
public:
    static constexpr std::size_t kMostRects = 16;

    void Add(const Rect& rect);
    void Clear() { fRects.clear(); }
    bool IsEmpty() const { return fRects.empty(); }
    std::span<const Rect> Rects() const { return fRects; }

private:
    void MergeClosestPair();

    std::vector<Rect> fRects;
};

} // namespace kroui::ui
