#pragma once

#include "krocore/FrequencyAxis.h"
#include "krocore/PointCurve.h"

#include <cstddef>
#include <vector>

namespace qoc::dsp {

// A curve over frequency through a number of points, as a graph with this axis draws it: a krocore::PointCurve whose
// places are hertz or, on a logarithmic axis, their logarithms. A value.
class FrequencyCurve {
public:
    struct Point {
        double hertz; // above 0 on a logarithmic axis
        double value;
    };

    // Points may come in any order; of those at the same place the later one is heard above it. Without any point the
    // curve is `fallback` everywhere. The axis is the whole one, whatever of it is shown.
    FrequencyCurve(std::vector<Point> points, const krocore::FrequencyAxis& axis, bool spline, double fallback);

    double At(double hertz) const noexcept;
    // The values at `count` frequencies evenly spaced from 0 to `end` hertz.
    std::vector<double> Sample(std::size_t count, double end) const;
    // Sorted.
    const std::vector<Point>& Points() const noexcept { return fPoints; }

private:
    double Place(double hertz) const noexcept;

    std::vector<Point> fPoints;
    bool fIsLogarithmic;
    std::vector<krocore::PointCurve::Node> fNodes; // of the points, in their order
};

} // namespace qoc::dsp
