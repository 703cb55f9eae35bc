#include "qoc/dsp/filters/FrequencyCurve.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::dsp {

using krocore::PointCurve;

FrequencyCurve::FrequencyCurve(std::vector<Point> points, const krocore::FrequencyAxis& axis, bool spline,
                               double fallback)
    : fPoints(std::move(points)), fIsLogarithmic(axis.logarithmic) {
    if (fPoints.empty()) fPoints.push_back({axis.end, fallback});
    std::ranges::stable_sort(fPoints, {}, &Point::hertz);
    std::ranges::transform(fPoints, std::back_inserter(fNodes), [this](const Point& point) {
        return PointCurve::Node{.place = Place(point.hertz), .value = point.value};
    });
    if (spline)
        PointCurve::JoinSmoothly(fNodes, Place(axis.end) - Place(axis.start));
    else
        PointCurve::JoinStraight(fNodes);
}

double FrequencyCurve::At(double hertz) const noexcept {
    return hertz >= fPoints.front().hertz ? PointCurve::At(fNodes, Place(hertz)) : fPoints.front().value;
}

std::vector<double> FrequencyCurve::Sample(std::size_t count, double end) const {
    std::vector<double> values(count, fPoints.front().value);
    const double step = end / static_cast<double>(count - 1);
    std::size_t next = 0; // the first point above the frequency
    for (std::size_t i = 0; i < count; ++i) {
        const double hertz = step * static_cast<double>(i);
        while (next < fPoints.size() && fPoints[next].hertz <= hertz)
            ++next;
        if (next == fPoints.size())
            values[i] = fPoints.back().value;
        else if (next > 0)
            values[i] = PointCurve::Between(fNodes[next - 1], fNodes[next], Place(hertz));
    }
    return values;
}

double FrequencyCurve::Place(double hertz) const noexcept {
    return fIsLogarithmic ? std::log(hertz) : hertz;
}

} // namespace qoc::dsp
