#pragma once

#include "krocore/PointCurve.h"
#include "qoc/dsp/math/CubicPieces.h"

#include <cstddef>
#include <span>

namespace qoc::dsp {

// The static curve of a dynamics effect: the level that goes out for a level that comes in, both in decibels, through
// up to six points. Straight from point to point, with every corner rounded over the knee's width: the mean of the
// curve over that width, which for one corner is the quadratic knee of D. Giannoulis, M. Massberg and J. D. Reiss,
// "Digital Dynamic Range Compressor Design" (JAES 60, 2012). Or, when smooth, the monotone cubic of krocore::PointCurve
// without a knee. The gain stays the same beyond the first and the last point. A value; real time safe.
class TransferCurve {
public:
    static constexpr std::size_t kMostPoints = 6;
    static constexpr double kAxisLength = 100; // decibels of the graph in which the curve is drawn

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
    double GainAt(double level) const noexcept { return HasKnee() ? fGain.Rise(level, fKnee) : fGain.At(level); }
    // Those at many levels, in their stead.
    void GainsAt(std::span<double> levels) const noexcept { HasKnee() ? fGain.Rise(levels, fKnee) : fGain.At(levels); }
    // Of the last point.
    double LastInput() const noexcept { return fLastInput; }

private:
    static_assert(kMostPoints < CubicPieces::kMost);

    bool HasKnee() const noexcept { return fKnee > 0; }
    void MakeGains(std::span<const krocore::PointCurve::Node> gains) noexcept;
    void MakeAreas(std::span<const krocore::PointCurve::Node> gains) noexcept;

    CubicPieces fGain; // over the level that comes in; with a knee the area below it, whose rise is the mean
    double fKnee = 0;
    double fLastInput = 0;
};

} // namespace qoc::dsp
