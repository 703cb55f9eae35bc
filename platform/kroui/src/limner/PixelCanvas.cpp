#include "PixelCanvas.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kroui::limner {

namespace {

constexpr std::uint32_t kOpaque = 255;

// The length of [position, position + 1) that lies inside [from, to).
double OverlapOfPixel(int position, double from, double to) {
    return std::clamp(std::min(position + 1.0, to) - std::max<double>(position, from), 0.0, 1.0);
}

std::uint32_t ScaledByShare(std::uint32_t pixel, double share) {
    return ScaledPixel(pixel, static_cast<std::uint32_t>(std::lround(share * kOpaque)));
}

int ClampedPixel(double position) {
    return static_cast<int>(std::clamp<double>(position, -kFarthestPixel, kFarthestPixel));
}

std::uint32_t Component(float value) {
    return value > 0 ? static_cast<std::uint32_t>(std::lround(std::min(value, 1.0F) * kOpaque)) : 0;
}

// A stretch of positions: each has a cell of the mask, or all have the same one.
struct Band {
    int begin;
    int end;
    int firstCell;
    bool isRepeated;
};
using Bands = std::array<Band, 3>;

// One axis of a stretched mask: positions before `head` and from `tail` on have a mask cell of their own, the mask's
// middle cell stands for all between.
struct Stretch {
    int head;
    int tail;
    int added;

    Stretch(int maskSize, int targetSize) : head(maskSize), tail(maskSize), added(targetSize - maskSize) {
        if (added <= 0) return;
        head = maskSize / 2;
        tail = head + 1 + added;
    }
    // What is seen of it from `begin` to `end` when it starts at `origin`.
    Bands BandsOf(int origin, int begin, int end) const {
        const int middle = origin + head;
        const int rest = std::max(begin, origin + tail);
        return {Band{begin, std::min(end, middle), begin - origin, false},
                Band{std::max(begin, middle), std::min(end, origin + tail), head, true},
                Band{rest, end, rest - origin - added, false}};
    }
};

} // namespace

PixelRect Intersection(const PixelRect& a, const PixelRect& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

PixelRect TouchedPixels(const DeviceBox& box) {
    // Coordinates come from single-precision numbers: an edge this near to a pixel's is meant to be on it.
    constexpr double kSlack = 1.0 / 512;
    return {ClampedPixel(std::floor(box.left + kSlack)), ClampedPixel(std::floor(box.top + kSlack)),
            ClampedPixel(std::ceil(box.right - kSlack)), ClampedPixel(std::ceil(box.bottom - kSlack))};
}

std::uint32_t PixelFor(const Color& color) {
    const float alpha = color.alpha > 0 ? std::min(color.alpha, 1.0F) : 0;
    const auto premultiplied = [alpha](float value) { return Component(std::min(value, 1.0F) * alpha); };
    return Component(alpha) << 24 | premultiplied(color.red) << 16 | premultiplied(color.green) << 8 |
           premultiplied(color.blue);
}

void PixelCanvas::Fill(const PixelRect& rect, const PixelRect& clip, std::uint32_t pixel) {
    FillRows(RowsOf(Intersection(rect, clip)), pixel);
}

void PixelCanvas::FillExact(const DeviceBox& box, const PixelRect& clip, std::uint32_t pixel) {
    const PixelRect visible = Intersection(TouchedPixels(box), clip);
    if (visible.IsEmpty()) return;
    const double leftShare = OverlapOfPixel(visible.left, box.left, box.right);
    const double rightShare = OverlapOfPixel(visible.right - 1, box.left, box.right);
    const int last = visible.right - 1;
    for (int y = visible.top; y < visible.bottom; ++y) {
        const double share = OverlapOfPixel(y, box.top, box.bottom);
        FillRows(RowsOf({visible.left, y, visible.left + 1, y + 1}), ScaledByShare(pixel, share * leftShare));
        FillRows(RowsOf({visible.left + 1, y, last, y + 1}), ScaledByShare(pixel, share));
        if (visible.Width() > 1) FillRows(RowsOf({last, y, last + 1, y + 1}), ScaledByShare(pixel, share * rightShare));
    }
}

void PixelCanvas::Blend(const Mask& mask, int x, int y, const PixelRect& clip, std::uint32_t pixel) {
    const int left = x + mask.left;
    const int top = y + mask.top;
    BlendPart(Intersection({left, top, left + mask.width, top + mask.height}, clip), mask, left, top, pixel);
}

void PixelCanvas::BlendRect(const PixelRect& rect, std::span<const std::uint8_t> coverage, const PixelRect& clip,
                            std::uint32_t pixel) {
    const PixelRect visible = Intersection(rect, clip);
    if (visible.IsEmpty()) return;
    const std::ptrdiff_t stride = rect.Width();
    const std::ptrdiff_t first = (visible.top - rect.top) * stride + (visible.left - rect.left);
    BlendRows(RowsOf(visible), {coverage.data() + first, stride}, pixel);
}

// Rows whose cells are the mask's own are blended together, and so are all those for which its middle row stands.
void PixelCanvas::BlendStretched(const Mask& mask, const PixelRect& rect, const PixelRect& clip, std::uint32_t pixel) {
    const PixelRect visible = Intersection(rect, clip);
    const Stretch across(mask.width, rect.Width());
    const Stretch down(mask.height, rect.Height());
    const Bands columns = across.BandsOf(rect.left, visible.left, visible.right);
    const Bands rows = down.BandsOf(rect.top, visible.top, visible.bottom);
    for (const Band& row : rows) {
        if (row.begin >= row.end) continue;
        const std::uint8_t* const cells = mask.Row(row.firstCell);
        const std::ptrdiff_t stride = row.isRepeated ? 0 : mask.width;
        for (const Band& column : columns) {
            const PixelRect part = {column.begin, row.begin, column.end, row.end};
            if (column.isRepeated)
                FillByRow(part, cells + column.firstCell, stride, pixel);
            else if (!part.IsEmpty())
                BlendRows(RowsOf(part), {cells + column.firstCell, stride}, pixel);
        }
    }
}

void PixelCanvas::Paint(std::span<const std::uint32_t> pixels, const PixelRect& rect, const PixelRect& clip) {
    const PixelRect visible = Intersection(rect, clip);
    if (visible.IsEmpty()) return;
    const std::ptrdiff_t stride = rect.Width();
    PaintRows(RowsOf(visible), pixels.data() + (visible.top - rect.top) * stride + (visible.left - rect.left), stride);
}

// Every row has one coverage.
void PixelCanvas::FillByRow(const PixelRect& part, const std::uint8_t* coverage, std::ptrdiff_t stride,
                            std::uint32_t pixel) {
    if (part.IsEmpty()) return;
    if (stride == 0) return FillRows(RowsOf(part), ScaledPixel(pixel, *coverage));
    for (int y = part.top; y < part.bottom; ++y, coverage += stride)
        FillRows(RowsOf({part.left, y, part.right, y + 1}), ScaledPixel(pixel, *coverage));
}

// `part` of a mask whose corner is at `left` and `top`.
void PixelCanvas::BlendPart(const PixelRect& part, const Mask& mask, int left, int top, std::uint32_t pixel) {
    if (part.IsEmpty()) return;
    BlendRows(RowsOf(part), {mask.Row(part.top - top) + (part.left - left), mask.width}, pixel);
}

PixelRows PixelCanvas::RowsOf(const PixelRect& part) {
    if (part.IsEmpty()) return {};
    return {Row(part.top) + part.left, fBuffer.width, part.Width(), part.Height()};
}

} // namespace kroui::limner
