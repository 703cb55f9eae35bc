#include "kroui/ui/DamageRegion.h"

#include <limits>

namespace kroui::ui {

namespace {

// What painting two rectangles as one costs more than painting each: area, with an overlap counted once.
float MergeCost(const Rect& a, const Rect& b) {
    const auto area = [](const Rect& r) { return r.width * r.height; };
    return area(Union(a, b)) - area(a) - area(b) + area(Intersection(a, b));
}

// Starting one more paint pass costs about as much as this many pixels.
constexpr float kPassCost = 400;

} // namespace

void DamageRegion::Add(const Rect& rect) {
    if (rect.IsEmpty()) return;
    Rect added = rect;
    // A merged rectangle may reach others in turn.
    for (bool merged = true; merged;) {
        merged = false;
        for (auto r = fRects.begin(); r != fRects.end(); ++r) {
            if (!r->Intersects(added) && MergeCost(*r, added) > kPassCost) continue;
            added = Union(*r, added);
            fRects.erase(r);
            merged = true;
            break;
        }
    }
    fRects.push_back(added);
    if (fRects.size() > kMostRects) MergeClosestPair();
}

void DamageRegion::MergeClosestPair() {
    float best = std::numeric_limits<float>::max();
    std::size_t bestA = 0;
    std::size_t bestB = 1;
    for (std::size_t a = 0; a < fRects.size(); ++a) {
        for (std::size_t b = a + 1; b < fRects.size(); ++b) {
            const float cost = MergeCost(fRects[a], fRects[b]);
            if (cost >= best) continue;
            best = cost;
            bestA = a;
            bestB = b;
        }
    }
    const Rect merged = Union(fRects[bestA], fRects[bestB]);
    fRects.erase(fRects.begin() + static_cast<std::ptrdiff_t>(bestB));
    fRects.erase(fRects.begin() + static_cast<std::ptrdiff_t>(bestA));
    Add(merged);
}

} // namespace kroui::ui
