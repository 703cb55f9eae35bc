#include "controls/curves/ResponseCurve.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace uit::controls {

using kroui::Point;

namespace {

// What a column of pixels needs of the points that fall into it: the first and the last, which join it to its
// neighbours, and the highest and the lowest, in the order in which they came.
class Column {
public:
    explicit Column(std::vector<Point>& line) : fLine(line) {}

    void Add(int column, const Point& point) {
        if (fCount > 0 && column != fColumn) Finish();
        fColumn = column;
        if (fCount == 0) fFirst = fTop = fBottom = {point, 0};
        fLast = {point, fCount};
        if (point.y < fTop.point.y) fTop = fLast;
        if (point.y > fBottom.point.y) fBottom = fLast;
        ++fCount;
    }
    void Finish() {
        if (fCount == 0) return;
        const bool topIsEarlier = fTop.order < fBottom.order;
        int done = -1;
        for (const Entry& entry : {fFirst, topIsEarlier ? fTop : fBottom, topIsEarlier ? fBottom : fTop, fLast}) {
            if (entry.order <= done) continue;
            fLine.push_back(entry.point);
            done = entry.order;
        }
        fCount = 0;
    }

private:
    struct Entry {
        Point point;
        int order = 0;
    };

    std::vector<Point>& fLine;
    Entry fFirst, fTop, fBottom, fLast;
    int fColumn = 0;
    int fCount = 0;
};

} // namespace

bool ResponseCurve::SetValues(const std::vector<double>& values) {
    const auto isSame = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    if (std::equal(values.begin(), values.end(), fValues.begin(), fValues.end(), isSame)) return false;
    fValues = values;
    fIsValid = false;
    return true;
}

const std::vector<Point>& ResponseCurve::Line(const boost::function<double(double)>& toAxis,
                                              const kroui::utility::RulerBase& axis, const kroui::Rect& content,
                                              float scale, unsigned version) {
    if (!fIsValid || scale != fScale || version != fVersion) {
        Thin(toAxis, axis, content, scale);
        fScale = scale;
        fVersion = version;
        fIsValid = true;
    }
    return fLine;
}

void ResponseCurve::Thin(const boost::function<double(double)>& toAxis, const kroui::utility::RulerBase& axis,
                         const kroui::Rect& content, float scale) {
    constexpr float kNone = std::numeric_limits<float>::quiet_NaN();
    fLine.clear();
    if (fValues.size() < 2) return;
    std::vector<double> values = fValues;
    if (toAxis) std::ranges::transform(values, values.begin(), [&](double value) { return toAxis(value); });
    std::vector<float> heights(values.size());
    axis.GetPixels(values, heights);
    const double distance = content.width / static_cast<double>(values.size() - 1);
    Column column(fLine);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double offset = distance * static_cast<double>(i);
        if (std::isfinite(values[i]) && std::isfinite(heights[i])) {
            column.Add(static_cast<int>(offset * scale), {content.left + static_cast<float>(offset), heights[i]});
        } else {
            column.Finish();
            if (!fLine.empty()) fLine.push_back({kNone, kNone});
        }
    }
    column.Finish();
}

} // namespace uit::controls
