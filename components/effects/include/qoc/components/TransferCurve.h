#pragma once

#include <array>
#include <span>

namespace qoc::components {

// The static curve of a dynamics effect: the level that goes out for a level that comes in, both in decibels, through
// up to six points. Straight from point to point, with every corner rounded over the knee's width: the mean of the
// curve over that width, which for one corner is the quadratic knee of D. Giannoulis, M. Massberg and J. D. Reiss,
// "Digital Dynamic Range Compressor Design" (JAES 60, 2012). Or, when smooth, a monotone cubic through the points
// (F. N. Fritsch and R. E. Carlson, "Monotone piecewise cubic interpolation", 1980) without a knee. The gain stays the
// same beyond the first and the last point. A value; real time safe.
class TransferCurve {
public:
    static constexpr std::size_t kMostPoints = 6;

    struct Point {
        double input = 0;
        double output = 0;
        friend bool operator==(const Point&, const Point&) = default;
    };
    struct Shape {
        double knee = 0; // decibels
        bool isSmooth = false;
        friend bool operator==(const Shape&, const Shape&) = default;
    };

    // 1:1.
    TransferCurve() = default;
    // The points come in any order; of those at the same input the later one holds above it. At least one, and not more
    // than the most.
    TransferCurve(std::span<const Point> points, const Shape& shape) noexcept;

    // Decibels that are added at an input level.
    double GainAt(double level) const noexcept;
    // Of the last point.
    double LastInput() const noexcept { return fNodes[fCount - 1].input; }

private:
    struct Node {
        double input = 0;
        double gain = 0;
        double slope = 0; // of the gain: to the next node, or of the smooth curve here
        double area = 0;  // below the gain, from the first node to here
    };

    std::size_t NodeBelow(double level) const noexcept;
    double SmoothGainAt(double level) const noexcept;
    double AreaUpTo(double level) const noexcept;
    double Secant(std::size_t node) const noexcept;
    void ComputeSegments() noexcept;
    void ComputeTangents() noexcept;

    std::array<Node, kMostPoints> fNodes;
    std::size_t fCount = 1;
    Shape fShape;
};

} // namespace qoc::components
