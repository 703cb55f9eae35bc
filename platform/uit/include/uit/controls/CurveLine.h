#pragma once

#include "kroui/Geometry.h"

#include <span>
#include <vector>

namespace uit::controls {

// The line that joins the points of a curve, in pixels, as something to be stroked with Limner::StrokeFunction.
struct CurveLine {
    // Through points whose x need not ascend, from `left` to `right`: level before the first point and behind the last.
    // Straight pieces.
    static std::vector<kroui::Point> Straight(std::span<const kroui::Point> points, float left, float right);
    // A monotone cubic, which passes no point's height between two points: Fritsch and Carlson, "Monotone Piecewise
    // Cubic Interpolation", SIAM Journal on Numerical Analysis 17 (1980). A place every `step` pixels.
    static std::vector<kroui::Point> Spline(std::span<const kroui::Point> points, float left, float right, float step);

    // The height of a line at x; that of its end beyond it. NaN for an empty line.
    static float HeightAt(std::span<const kroui::Point> line, float x);
};

} // namespace uit::controls
