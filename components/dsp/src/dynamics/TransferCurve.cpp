#include "qoc/dsp/dynamics/TransferCurve.h"

#include <algorithm>

namespace qoc::dsp {

using krocore::PointCurve;

TransferCurve::TransferCurve(std::span<const Point> points, const Shape& shape) noexcept
    : fCount(points.size()), fShape(shape) {
    std::ranges::transform(points, fNodes.begin(), [](const Point& point) {
        return PointCurve::Node{.place = point.input, .value = point.output};
    });
    const auto nodes = std::span(fNodes).first(fCount);
    shape.isSmooth ? PointCurve::JoinSmoothly(nodes, kAxisLength) : PointCurve::JoinStraight(nodes);
    ComputeGains();
    ComputeAreas();
}

double TransferCurve::GainAt(double level) const noexcept {
    if (fShape.isSmooth || fShape.knee <= 0) return PointCurve::At(Nodes(), level);
    return (AreaUpTo(level + fShape.knee / 2) - AreaUpTo(level - fShape.knee / 2)) / fShape.knee;
}

// Of straight pieces.
double TransferCurve::AreaUpTo(double level) const noexcept {
    const auto next = std::ranges::upper_bound(Nodes(), level, {}, &PointCurve::Node::place);
    if (next == Nodes().begin()) return (level - fNodes[0].place) * fNodes[0].value;
    const auto index = static_cast<std::size_t>(next - Nodes().begin()) - 1;
    const PointCurve::Node& node = fNodes[index];
    const double length = level - node.place;
    const double slope = index + 1 < fCount ? node.leaving : 0;
    return fAreas[index] + length * (node.value + length * slope / 2);
}

// From levels that go out to gains: less the line of gain 0, which takes 1 from all slopes.
void TransferCurve::ComputeGains() noexcept {
    for (PointCurve::Node& node : std::span(fNodes).first(fCount)) {
        node.value -= node.place;
        node.arriving -= 1;
        node.leaving -= 1;
    }
}

void TransferCurve::ComputeAreas() noexcept {
    for (std::size_t i = 1; i < fCount; ++i) {
        const double width = fNodes[i].place - fNodes[i - 1].place;
        fAreas[i] = fAreas[i - 1] + width * (fNodes[i - 1].value + fNodes[i].value) / 2;
    }
}

} // namespace qoc::dsp
