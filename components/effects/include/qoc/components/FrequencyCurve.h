#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qoc::components {

// A curve over frequency through a number of points, as a graph with this axis draws it: straight from point to point,
// or as a monotone cubic (Fritsch and Carlson, "Monotone piecewise cubic interpolation", 1980), which never swings past
// a point. Level before the first and after the last point. A value.
class FrequencyCurve {
public:
    enum class Axis : std::uint8_t { kLinear, kLogarithmic };
    struct Point {
        double hertz; // above 0 on a logarithmic axis
        double value;
    };

    // Points may come in any order; of those at the same place the later one is heard above it. Without any point the
    // curve is `fallback` everywhere.
    FrequencyCurve(std::vector<Point> points, Axis axis, bool spline, double fallback);

    double At(double hertz) const noexcept;
    // The values at `count` frequencies evenly spaced from 0 to `end` hertz.
    std::vector<double> Sample(std::size_t count, double end) const;
    // Sorted.
    const std::vector<Point>& Points() const noexcept { return fPoints; }

private:
    double Place(double hertz) const noexcept;
    double Interpolate(std::size_t segment, double place) const noexcept;
    void ComputeSlopes();

    std::vector<Point> fPoints;
    Axis fAxis;
    std::vector<double> fPlaces; // of the points on the axis
    std::vector<double> fSlopes; // at the points; empty for straight segments
};

} // namespace qoc::components
