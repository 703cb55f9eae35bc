#pragma once

#include <span>

namespace krocore {

// The curve through points that a user draws: the one construction for what is shown and for what is heard. Straight
// from point to point, or a monotone cubic, which passes no point's value between two points (F. N. Fritsch and R. E.
// Carlson, "Monotone Piecewise Cubic Interpolation", SIAM Journal on Numerical Analysis 17, 1980). Level before the
// first and behind the last point.
//
// Points closer than a jump are a step in the curve: a cubic ends before it and another begins behind it, with a
// straight piece between. How close that is counts in the whole axis, not in what is shown of it, so it is the same at
// every size and zoom. Places may be in any unit that is even along the axis (pixels, hertz of a linear axis,
// logarithms of a logarithmic one); scaling and shifting places or values scales and shifts the curve and nothing else.
//
// It works on the caller's array and allocates nothing: safe on the sound thread.
class PointCurve {
public:
    struct Node {
        double place = 0; // finite
        double value = 0; // finite
        // Value per place on this node's way in and out; they differ at corners and steps. Made by the joiners.
        double arriving = 0;
        double leaving = 0;
    };
    // A part of the whole axis: a quarter of a pixel where 500 show it. Wider than what a graph keeps between the
    // points of a user who pushes one against the other, so that this makes a step.
    static constexpr double kJump = 5e-4;

    // Both bring the nodes into the order of their places, those at the same place in the order in which they came
    // (quick for a few hundred that are nearly in order), and compute the slopes. `axisLength`: of the whole axis, in
    // units of the places.
    static void JoinStraight(std::span<Node> nodes) noexcept;
    static void JoinSmoothly(std::span<Node> nodes, double axisLength) noexcept;

    // The value at a place, for joined nodes, at least one. At a step in one place that behind it.
    static double At(std::span<const Node> nodes, double place) noexcept;
    // The same for two neighbours with from.place <= place <= to.place and some room between them.
    static double Between(const Node& from, const Node& to, double place) noexcept;
};

} // namespace krocore
