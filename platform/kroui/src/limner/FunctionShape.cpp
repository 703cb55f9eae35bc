#include "FunctionShape.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace kroui::limner {

namespace {

constexpr double kMostRadius = 64;
constexpr float kNone = std::numeric_limits<float>::infinity();
constexpr float kFull = 255;
constexpr float kRounding = 0.5F;
constexpr int kBlock = 16; // columns that are drawn together: pixels of a cache line

int OddNear(double number) {
    return 2 * static_cast<int>(std::lround(std::max(number - 1, 0.0) / 2)) + 1;
}

// The parts of which an odd number comes nearest to the line's width: a steep line is then as wide as it should be.
int PartsFor(double width) {
    constexpr std::array<int, 3> kCounts = {4, 5, 6};
    const auto error = [width](int count) { return std::abs(width * count - OddNear(width * count)) / count; };
    return *std::min_element(kCounts.begin(), kCounts.end(), [&](int a, int b) { return error(a) < error(b); });
}

std::uint8_t CoverageOf(float share, bool smooth) {
    if (!smooth) return share >= 0.5F ? 255 : 0;
    return static_cast<std::uint8_t>(std::min(share, 1.0F) * kFull + kRounding);
}

} // namespace

FunctionShape::FunctionShape(const PixelRect& clip, double radius)
    : fClip(clip), fRadius(std::min(radius, kMostRadius)), fMargin(static_cast<int>(std::ceil(fRadius))),
      fOrigin(clip.left - fMargin), fParts(PartsFor(2 * fRadius)),
      fLine(NoHeights(static_cast<std::size_t>(fParts) * static_cast<std::size_t>(clip.Width() + 2 * fMargin))) {
}

FunctionShape::Heights FunctionShape::NoHeights(std::size_t count) {
    return {std::vector<float>(count, kNone), std::vector<float>(count, -kNone)};
}

void FunctionShape::AddPiece(double fromX, double fromY, double toX, double toY) {
    const double from = (fromX - fOrigin) * fParts;
    const double to = (toX - fOrigin) * fParts;
    const auto last = static_cast<int>(fLine.top.size()) - 1;
    if (!(from <= to) || to < 0 || from > last + 1) return;
    const auto firstPart = static_cast<int>(std::max(0.0, from));
    // A piece that ends where a part begins is no part of it, except one that has no length.
    const int lastPart = std::min(last, std::max(firstPart, static_cast<int>(std::ceil(to)) - 1));
    const double slope = to > from ? (toY - fromY) / (to - from) : 0;
    const auto add = [this](int part, double y) {
        float& top = fLine.top[static_cast<std::size_t>(part)];
        float& bottom = fLine.bottom[static_cast<std::size_t>(part)];
        top = std::min(top, static_cast<float>(y));
        bottom = std::max(bottom, static_cast<float>(y));
    };
    double y = from >= firstPart ? fromY : fromY + slope * (firstPart - from);
    for (int part = firstPart; part <= lastPart; ++part) {
        add(part, y);
        y = part + 1 >= to ? toY : fromY + slope * (part + 1 - from);
        add(part, y);
    }
}

// The line widened by a disc: at every place the outermost of what the heights nearby reach there.
FunctionShape::Heights FunctionShape::Widened() const {
    Heights widened = NoHeights(fLine.top.size());
    const auto count = static_cast<int>(fLine.top.size());
    const int reach = OddNear(2 * fRadius * fParts) / 2;
    for (int shift = -reach; shift <= reach; ++shift) {
        // To the far end of the part, where the line on a slope reaches farthest.
        const double distance = shift == 0 ? 0 : (std::abs(shift) + 0.5) / fParts;
        const auto rise = static_cast<float>(std::sqrt(std::max(0.0, fRadius * fRadius - distance * distance)));
        const int begin = std::max(0, -shift);
        const int end = std::min(count, count - shift);
        const float* const top = fLine.top.data() + shift;
        const float* const bottom = fLine.bottom.data() + shift;
        for (int i = begin; i < end; ++i) {
            widened.top[i] = std::min(widened.top[i], top[i] - rise);
            widened.bottom[i] = std::max(widened.bottom[i], bottom[i] + rise);
        }
    }
    return widened;
}

void FunctionShape::Stroke(PixelCanvas canvas, std::uint32_t pixel, bool smooth) {
    const Heights widened = Widened();
    for (int column = fClip.left; column < fClip.right; column += kBlock)
        StrokeBlock(canvas, widened, column, std::min(column + kBlock, fClip.right), pixel, smooth);
}

// Column by column into coverage that is blended together.
void FunctionShape::StrokeBlock(PixelCanvas canvas, const Heights& widened, int begin, int end, std::uint32_t pixel,
                                bool smooth) {
    const Rows all = RowsOfColumns(widened, begin, end);
    const auto width = static_cast<std::size_t>(end - begin);
    fCoverage.assign(width * all.Count(), 0);
    for (int column = begin; column < end; ++column) {
        const Rows rows = RowsOfColumns(widened, column, column + 1);
        CoverColumn(widened, column, rows);
        auto cell = static_cast<std::size_t>(rows.begin - all.begin) * width + static_cast<std::size_t>(column - begin);
        for (std::size_t row = 0; row < rows.Count(); ++row, cell += width)
            fCoverage[cell] = CoverageOf(fColumn[row], smooth);
    }
    canvas.BlendRect({begin, all.begin, end, all.end}, fCoverage, fClip, pixel);
}

// Those that the widened line touches in the columns; begin and end are the clip's the other way round if there are
// none.
FunctionShape::Rows FunctionShape::RowsOfColumns(const Heights& widened, int begin, int end) const {
    const auto part = [this](int column) {
        return static_cast<std::ptrdiff_t>(column - fClip.left + fMargin) * fParts;
    };
    const float top = *std::min_element(widened.top.begin() + part(begin), widened.top.begin() + part(end));
    const float bottom = *std::max_element(widened.bottom.begin() + part(begin), widened.bottom.begin() + part(end));
    const auto clipTop = static_cast<float>(fClip.top);
    const auto clipBottom = static_cast<float>(fClip.bottom);
    return {static_cast<int>(std::floor(std::clamp(top, clipTop, clipBottom))),
            static_cast<int>(std::ceil(std::clamp(bottom, clipTop, clipBottom)))};
}

void FunctionShape::CoverColumn(const Heights& widened, int column, const Rows& rows) {
    const std::size_t first =
        static_cast<std::size_t>(column - fClip.left + fMargin) * static_cast<std::size_t>(fParts);
    const std::size_t end = first + static_cast<std::size_t>(fParts);
    const auto origin = static_cast<float>(rows.begin);
    fColumn.assign(rows.Count(), 0);
    for (std::size_t part = first; part < end; ++part) {
        const float from = std::max(widened.top[part] - origin, 0.0F);
        const float to = std::min(widened.bottom[part], static_cast<float>(fClip.bottom)) - origin;
        if (from < to) AddToColumn(from, to);
    }
}

// What one part covers from a height to another, both within the column.
void FunctionShape::AddToColumn(float from, float to) {
    const auto parts = static_cast<float>(fParts);
    const auto first = static_cast<std::size_t>(from);
    const auto last = static_cast<std::size_t>(to);
    fColumn[first] += (std::min(to, static_cast<float>(first) + 1) - from) / parts;
    const float whole = 1 / parts;
    for (std::size_t row = first + 1; row < last; ++row)
        fColumn[row] += whole;
    const float rest = to - static_cast<float>(last);
    if (last > first && rest > 0) fColumn[last] += rest / parts;
}

FunctionShape::Columns FunctionShape::ColumnsTo(float base) const {
    const auto count = static_cast<std::size_t>(fClip.Width());
    Columns columns{std::vector<float>(count, kNone), std::vector<float>(count, -kNone), std::vector<float>(count, 0)};
    for (std::size_t column = 0; column < count; ++column) {
        float sum = 0;
        int parts = 0;
        const std::size_t first = (column + static_cast<std::size_t>(fMargin)) * static_cast<std::size_t>(fParts);
        const std::size_t end = first + static_cast<std::size_t>(fParts);
        for (std::size_t part = first; part < end; ++part) {
            if (fLine.top[part] > fLine.bottom[part]) continue;
            sum += (fLine.top[part] + fLine.bottom[part]) / 2;
            ++parts;
        }
        if (parts == 0) continue;
        const float middle = sum / static_cast<float>(parts);
        columns.top[column] = std::min(middle, base);
        columns.bottom[column] = std::max(middle, base);
        columns.weight[column] = kFull * static_cast<float>(parts) / static_cast<float>(fParts);
    }
    return columns;
}

void FunctionShape::Fill(PixelCanvas canvas, double base, std::uint32_t pixel) const {
    const Columns columns = ColumnsTo(static_cast<float>(base));
    for (int column = 0; column < fClip.Width(); column += kBlock)
        FillBlock(canvas, columns, column, std::min(column + kBlock, fClip.Width()), pixel);
}

// The rows that the block's columns fill all together are one rectangle; only those above and below are computed pixel
// by pixel.
void FunctionShape::FillBlock(PixelCanvas canvas, const Columns& columns, int begin, int end,
                              std::uint32_t pixel) const {
    const auto row = [this](float y) {
        return static_cast<int>(std::clamp(y, static_cast<float>(fClip.top), static_cast<float>(fClip.bottom)));
    };
    const auto [leastTop, mostTop] = std::minmax_element(columns.top.begin() + begin, columns.top.begin() + end);
    const auto [leastBottom, mostBottom] =
        std::minmax_element(columns.bottom.begin() + begin, columns.bottom.begin() + end);
    const auto isFull = [](float weight) { return weight == kFull; };
    const bool canFill = std::all_of(columns.weight.begin() + begin, columns.weight.begin() + end, isFull);
    const int endRow = row(std::ceil(*mostBottom));
    const int fullFrom = canFill ? row(std::ceil(*mostTop)) : endRow;
    const int fullTo = canFill ? row(std::floor(*leastBottom)) : endRow;
    std::vector<std::uint8_t> coverage(static_cast<std::size_t>(end - begin));
    for (int y = row(std::floor(*leastTop)); y < endRow; ++y) {
        if (y == fullFrom && fullFrom < fullTo) {
            canvas.Fill({fClip.left + begin, fullFrom, fClip.left + end, fullTo}, fClip, pixel);
            y = fullTo - 1;
            continue;
        }
        const auto rowTop = static_cast<float>(y);
        for (int i = begin; i < end; ++i) {
            const auto column = static_cast<std::size_t>(i);
            const float share = std::min(columns.bottom[column], rowTop + 1) - std::max(columns.top[column], rowTop);
            coverage[column - static_cast<std::size_t>(begin)] =
                static_cast<std::uint8_t>(std::max(share, 0.0F) * columns.weight[column]);
        }
        canvas.BlendRect({fClip.left + begin, y, fClip.left + end, y + 1}, coverage, fClip, pixel);
    }
}

} // namespace kroui::limner
