#pragma once

#include <algorithm>
#include <cmath>

namespace kroui {

template <class T>
struct PointT {
    T x{};
    T y{};
    friend bool operator==(const PointT&, const PointT&) = default;
};

template <class T>
struct SizeT {
    T width{};
    T height{};
    friend bool operator==(const SizeT&, const SizeT&) = default;
};

// A rectangle in view units (one unit = one pixel at scale 1); y grows downwards. Contains its left and top edge, not
// its right and bottom edge. A width or height of 0 or less is empty.
template <class T>
struct RectT {
    T left{};
    T top{};
    T width{};
    T height{};

    T Right() const { return left + width; }
    T Bottom() const { return top + height; }
    PointT<T> Centre() const { return {left + width / 2, top + height / 2}; }
    bool IsEmpty() const { return !(width > 0 && height > 0); }
    bool Contains(PointT<T> p) const { return p.x >= left && p.x < Right() && p.y >= top && p.y < Bottom(); }
    bool Intersects(const RectT& o) const {
        return left < o.Right() && o.left < Right() && top < o.Bottom() && o.top < Bottom();
    }
    RectT Offset(T dx, T dy) const { return {left + dx, top + dy, width, height}; }
    RectT Inset(T dx, T dy) const { return {left + dx, top + dy, width - 2 * dx, height - 2 * dy}; }
    friend bool operator==(const RectT&, const RectT&) = default;
};

using Point = PointT<float>;
using Size = SizeT<float>;
using Rect = RectT<float>;

// The part that two rectangles share (empty, all zero, if none).
Rect Intersection(const Rect& a, const Rect& b);
// The smallest rectangle around both; an empty one counts for nothing.
Rect Union(const Rect& a, const Rect& b);
// Left and top floored, right and bottom ceiled.
Rect RoundedOut(const Rect& r);

} // namespace kroui
