#include "kroui/Geometry.h"

namespace kroui {

namespace {

Rect FromEdges(float left, float top, float right, float bottom) {
    return {left, top, right - left, bottom - top};
}

} // namespace

Rect Intersection(const Rect& a, const Rect& b) {
    const Rect shared = FromEdges(std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.Right(), b.Right()),
                                  std::min(a.Bottom(), b.Bottom()));
    return shared.IsEmpty() ? Rect{} : shared;
}

Rect Union(const Rect& a, const Rect& b) {
    if (a.IsEmpty()) return b.IsEmpty() ? Rect{} : b;
    if (b.IsEmpty()) return a;
    return FromEdges(std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.Right(), b.Right()),
                     std::max(a.Bottom(), b.Bottom()));
}

Rect RoundedOut(const Rect& r) {
    return FromEdges(std::floor(r.left), std::floor(r.top), std::ceil(r.Right()), std::ceil(r.Bottom()));
}

} // namespace kroui
