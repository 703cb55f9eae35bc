#include "PixelCanvas.h"

#include "PixelSpans.h"

#include <algorithm>
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
    int CellAt(int position) const { return position < head ? position : std::max(head, position - added); }
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
    const PixelRect visible = Intersection(rect, clip);
    if (visible.IsEmpty()) return;
    for (int y = visible.top; y < visible.bottom; ++y)
        FillSpan(Row(y) + visible.left, visible.Width(), pixel);
}

void PixelCanvas::FillExact(const DeviceBox& box, const PixelRect& clip, std::uint32_t pixel) {
    const PixelRect visible = Intersection(TouchedPixels(box), clip);
    if (visible.IsEmpty()) return;
    const double leftShare = OverlapOfPixel(visible.left, box.left, box.right);
    const double rightShare = OverlapOfPixel(visible.right - 1, box.left, box.right);
    for (int y = visible.top; y < visible.bottom; ++y) {
        const double share = OverlapOfPixel(y, box.top, box.bottom);
        std::uint32_t* row = Row(y);
        FillSpan(row + visible.left, 1, ScaledByShare(pixel, share * leftShare));
        FillSpan(row + visible.left + 1, visible.Width() - 2, ScaledByShare(pixel, share));
        if (visible.Width() > 1) FillSpan(row + visible.right - 1, 1, ScaledByShare(pixel, share * rightShare));
    }
}

void PixelCanvas::Blend(const Mask& mask, int x, int y, const PixelRect& clip, std::uint32_t pixel) {
    const int left = x + mask.left;
    const int top = y + mask.top;
    const PixelRect visible = Intersection({left, top, left + mask.width, top + mask.height}, clip);
    if (visible.IsEmpty()) return;
    for (int row = visible.top; row < visible.bottom; ++row) {
        BlendSpan(Row(row) + visible.left, mask.Row(row - top) + (visible.left - left), visible.Width(), pixel);
    }
}

void PixelCanvas::BlendColumn(int x, int top, std::span<const std::uint8_t> coverage, const PixelRect& clip,
                              std::uint32_t pixel) {
    const int bottom = top + static_cast<int>(coverage.size());
    const PixelRect visible = Intersection({x, top, x + 1, bottom}, clip);
    if (visible.IsEmpty()) return;
    for (int y = visible.top; y < visible.bottom; ++y)
        BlendSpan(Row(y) + x, &coverage[static_cast<std::size_t>(y - top)], 1, pixel);
}

void PixelCanvas::BlendRow(int left, int y, std::span<const std::uint8_t> coverage, const PixelRect& clip,
                           std::uint32_t pixel) {
    const int right = left + static_cast<int>(coverage.size());
    const PixelRect visible = Intersection({left, y, right, y + 1}, clip);
    if (visible.IsEmpty()) return;
    BlendSpan(Row(y) + visible.left, &coverage[static_cast<std::size_t>(visible.left - left)], visible.Width(), pixel);
}

void PixelCanvas::BlendStretched(const Mask& mask, const PixelRect& rect, const PixelRect& clip, std::uint32_t pixel) {
    const PixelRect visible = Intersection(rect, clip);
    if (visible.IsEmpty()) return;
    const Stretch across(mask.width, rect.Width());
    const Stretch down(mask.height, rect.Height());
    const int middleBegin = rect.left + across.head;
    const int tailBegin = rect.left + across.tail;
    const int tailShift = rect.Width() - mask.width;
    for (int y = visible.top; y < visible.bottom; ++y) {
        const std::uint8_t* coverage = mask.Row(down.CellAt(y - rect.top));
        std::uint32_t* row = Row(y);
        const auto blendCells = [&](int from, int to, int firstCell) {
            if (from < to) BlendSpan(row + from, coverage + (from - firstCell), to - from, pixel);
        };
        blendCells(visible.left, std::min(visible.right, middleBegin), rect.left);
        if (across.head < across.tail && coverage[across.head] != 0) {
            const int from = std::max(visible.left, middleBegin);
            FillSpan(row + from, std::min(visible.right, tailBegin) - from, ScaledPixel(pixel, coverage[across.head]));
        }
        blendCells(std::max(visible.left, tailBegin), visible.right, rect.left + tailShift);
    }
}

} // namespace kroui::limner
