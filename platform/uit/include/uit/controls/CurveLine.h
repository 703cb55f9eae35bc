#pragma once

#include "kroui/Geometry.h"

#include <span>
#include <vector>

namespace uit::controls {

// The line that joins the points of a curve, in pixels, as something to be stroked with Limner::StrokeFunction: that of
// krocore::PointCurve, which effects hear.
struct CurveLine {
    // Through points whose x need not ascend, from `left` to `right`: level before the first point and behind the last.
    // Points that hold NaN or infinity are left out.
    // Straight pieces.
    static std::vector<kroui::Point> Straight(std::span<const kroui::Point> points, float left, float right);
    // The monotone cubic, a place every `step` pixels. `axisLength`: pixels of the whole axis, whatever of it is shown.
    static std::vector<kroui::Point> Spline(std::span<const kroui::Point> points, float left, float right, float step,
                                            double axisLength);

    // The height of a line at x; that of its end beyond it. NaN for an empty line.
    static float HeightAt(std::span<const kroui::Point> line, float x);
};

} // namespace uit::controls
