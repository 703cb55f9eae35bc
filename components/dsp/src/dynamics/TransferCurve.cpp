#include "qoc/dsp/dynamics/TransferCurve.h"

#include <algorithm>
#include <array>

namespace qoc::dsp {

using krocore::PointCurve;

namespace {

// From levels that go out to gains: less the line of gain 0, which takes 1 from all slopes.
void ToGains(std::span<PointCurve::Node> nodes) noexcept {
    for (PointCurve::Node& node : nodes) {
        node.value -= node.place;
        node.arriving -= 1;
        node.leaving -= 1;
    }
}

// Hermite's form, by powers of the distance from the first node.
CubicPieces::Piece CubicBetween(const PointCurve::Node& from, const PointCurve::Node& to) noexcept {
    const double width = to.place - from.place;
    if (width <= 0) return {from.place, {from.value}}; // holds nowhere
    const double secant = (to.value - from.value) / width;
    return {from.place,
            {from.value, from.leaving, (3 * secant - 2 * from.leaving - to.arriving) / width,
             (from.leaving + to.arriving - 2 * secant) / (width * width)}};
}

} // namespace

TransferCurve::TransferCurve(std::span<const Point> points, const Shape& shape) noexcept
    : fKnee(shape.isSmooth ? 0 : shape.knee) {
    std::array<PointCurve::Node, kMostPoints> room;
    const auto nodes = std::span(room).first(points.size());
    std::ranges::transform(points, nodes.begin(), [](const Point& point) {
        return PointCurve::Node{.place = point.input, .value = point.output};
    });
    shape.isSmooth ? PointCurve::JoinSmoothly(nodes, kAxisLength) : PointCurve::JoinStraight(nodes);
    fLastInput = nodes.back().place;
    ToGains(nodes);
    HasKnee() ? MakeAreas(nodes) : MakeGains(nodes);
}

void TransferCurve::MakeGains(std::span<const PointCurve::Node> gains) noexcept {
    fGain.Begin({gains.front().place, {gains.front().value}});
    for (std::size_t i = 1; i < gains.size(); ++i)
        fGain.Add(CubicBetween(gains[i - 1], gains[i]));
    fGain.Add({gains.back().place, {gains.back().value}});
}

// Of straight pieces, from the first node on.
void TransferCurve::MakeAreas(std::span<const PointCurve::Node> gains) noexcept {
    fGain.Begin({gains.front().place, {0, gains.front().value}});
    double area = 0;
    for (std::size_t i = 1; i < gains.size(); ++i) {
        const PointCurve::Node& from = gains[i - 1];
        fGain.Add({from.place, {area, from.value, from.leaving / 2}});
        area += (gains[i].place - from.place) * (from.value + gains[i].value) / 2;
    }
    fGain.Add({gains.back().place, {area, gains.back().value}});
}

} // namespace qoc::dsp
