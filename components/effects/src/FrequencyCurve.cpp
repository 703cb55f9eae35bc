#include "qoc/components/FrequencyCurve.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::components {

FrequencyCurve::FrequencyCurve(std::vector<Point> points, Axis axis, bool spline, double fallback)
    : fPoints(std::move(points)), fAxis(axis) {
    if (fPoints.empty()) fPoints.push_back({1, fallback});
    std::ranges::stable_sort(fPoints, {}, &Point::hertz);
    std::ranges::transform(fPoints, std::back_inserter(fPlaces), [this](const Point& p) { return Place(p.hertz); });
    if (spline && fPoints.size() > 2) ComputeSlopes();
}

double FrequencyCurve::At(double hertz) const noexcept {
    if (hertz >= fPoints.back().hertz) return fPoints.back().value;
    if (hertz <= fPoints.front().hertz) return fPoints.front().value;
    const auto next = std::ranges::upper_bound(fPoints, hertz, {}, &Point::hertz);
    return Interpolate(static_cast<std::size_t>(next - fPoints.begin()) - 1, Place(hertz));
}

std::vector<double> FrequencyCurve::Sample(std::size_t count, double end) const {
    std::vector<double> values(count, fPoints.back().value);
    const double step = end / static_cast<double>(count - 1);
    std::size_t segment = 0; // begins at or before the frequency
    for (std::size_t i = 0; i < count; ++i) {
        const double hertz = step * static_cast<double>(i);
        if (hertz >= fPoints.back().hertz) break;
        while (hertz >= fPoints[segment + 1].hertz)
            ++segment;
        values[i] = hertz <= fPoints.front().hertz ? fPoints.front().value : Interpolate(segment, Place(hertz));
    }
    return values;
}

double FrequencyCurve::Place(double hertz) const noexcept {
    return fAxis == Axis::kLogarithmic ? std::log(hertz) : hertz;
}

double FrequencyCurve::Interpolate(std::size_t segment, double place) const noexcept {
    const double width = fPlaces[segment + 1] - fPlaces[segment];
    if (width <= 0) return fPoints[segment + 1].value;
    const double t = (place - fPlaces[segment]) / width;
    const double from = fPoints[segment].value;
    const double to = fPoints[segment + 1].value;
    if (fSlopes.empty()) return from + t * (to - from);
    // Cubic Hermite.
    const double rest = 1 - t;
    return from * (1 + 2 * t) * rest * rest + to * t * t * (3 - 2 * t) +
           width * t * rest * (fSlopes[segment] * rest - fSlopes[segment + 1] * t);
}

// The steps of Fritsch and Carlson: the mean of the neighbouring secants, 0 at a turn, and shortened to a circle of
// radius 3 around the secant.
void FrequencyCurve::ComputeSlopes() {
    const std::size_t last = fPoints.size() - 1;
    std::vector<double> secants(last);
    for (std::size_t i = 0; i < last; ++i) {
        const double width = fPlaces[i + 1] - fPlaces[i];
        secants[i] = width > 0 ? (fPoints[i + 1].value - fPoints[i].value) / width : 0;
    }
    fSlopes.assign(fPoints.size(), 0.0);
    fSlopes.front() = secants.front();
    fSlopes.back() = secants.back();
    for (std::size_t i = 1; i < last; ++i)
        fSlopes[i] = secants[i - 1] * secants[i] > 0 ? (secants[i - 1] + secants[i]) / 2 : 0;
    for (std::size_t i = 0; i < last; ++i) {
        if (secants[i] == 0) {
            fSlopes[i] = fSlopes[i + 1] = 0;
            continue;
        }
        const double length = std::hypot(fSlopes[i], fSlopes[i + 1]) / std::abs(secants[i]);
        if (length <= 3) continue;
        fSlopes[i] *= 3 / length;
        fSlopes[i + 1] *= 3 / length;
    }
}

} // namespace qoc::components
