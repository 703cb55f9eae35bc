#include "qoc/components/TransferCurve.h"

#include <algorithm>
#include <cmath>

namespace qoc::components {

TransferCurve::TransferCurve(std::span<const Point> points, const Shape& shape) noexcept
    : fCount(points.size()), fShape(shape) {
    // By insertion, which keeps the order of equal ones and needs no room.
    for (std::size_t i = 0; i < fCount; ++i) {
        std::size_t place = i;
        for (; place > 0 && fNodes[place - 1].input > points[i].input; --place)
            fNodes[place] = fNodes[place - 1];
        fNodes[place] = {points[i].input, points[i].output - points[i].input};
    }
    fShape.isSmooth ? ComputeTangents() : ComputeSegments();
}

double TransferCurve::GainAt(double level) const noexcept {
    if (fShape.isSmooth) return SmoothGainAt(level);
    if (fShape.knee > 0) return (AreaUpTo(level + fShape.knee / 2) - AreaUpTo(level - fShape.knee / 2)) / fShape.knee;
    if (level <= fNodes[0].input) return fNodes[0].gain;
    const Node& node = fNodes[NodeBelow(level)];
    return node.gain + (level - node.input) * node.slope;
}

// The last one that is not above the level; the level is not below the first one.
std::size_t TransferCurve::NodeBelow(double level) const noexcept {
    std::size_t node = fCount - 1;
    while (node > 0 && fNodes[node].input > level)
        --node;
    return node;
}

double TransferCurve::SmoothGainAt(double level) const noexcept {
    if (level <= fNodes[0].input) return fNodes[0].gain;
    const std::size_t index = NodeBelow(level);
    const Node& from = fNodes[index];
    if (index + 1 == fCount) return from.gain;
    // The cubic Hermite form of the level that goes out, less the level that comes in.
    const Node& to = fNodes[index + 1];
    const double width = to.input - from.input;
    const double t = (level - from.input) / width;
    const double rest = 1 - t;
    const double output = (1 + 2 * t) * rest * rest * (from.gain + from.input) + t * rest * rest * width * from.slope +
                          t * t * (3 - 2 * t) * (to.gain + to.input) - t * t * rest * width * to.slope;
    return output - level;
}

double TransferCurve::AreaUpTo(double level) const noexcept {
    if (level <= fNodes[0].input) return (level - fNodes[0].input) * fNodes[0].gain;
    const Node& node = fNodes[NodeBelow(level)];
    const double length = level - node.input;
    return node.area + length * (node.gain + length * node.slope / 2);
}

// Of the level that goes out, from the node to the next; 0 for a step.
double TransferCurve::Secant(std::size_t node) const noexcept {
    const double width = fNodes[node + 1].input - fNodes[node].input;
    return width > 0 ? 1 + (fNodes[node + 1].gain - fNodes[node].gain) / width : 0;
}

void TransferCurve::ComputeSegments() noexcept {
    for (std::size_t i = 0; i + 1 < fCount; ++i) {
        const double width = fNodes[i + 1].input - fNodes[i].input;
        fNodes[i].slope = width > 0 ? (fNodes[i + 1].gain - fNodes[i].gain) / width : 0;
        fNodes[i + 1].area = fNodes[i].area + width * (fNodes[i].gain + fNodes[i + 1].gain) / 2;
    }
}

void TransferCurve::ComputeTangents() noexcept {
    if (fCount < 2) return;
    fNodes[0].slope = Secant(0);
    fNodes[fCount - 1].slope = Secant(fCount - 2);
    for (std::size_t i = 1; i + 1 < fCount; ++i) {
        const double before = Secant(i - 1);
        const double after = Secant(i);
        fNodes[i].slope = before * after > 0 ? (before + after) / 2 : 0;
    }
    for (std::size_t i = 0; i + 1 < fCount; ++i) {
        const double secant = Secant(i);
        if (secant == 0) {
            fNodes[i].slope = fNodes[i + 1].slope = 0;
            continue;
        }
        // Into the circle of radius 3 in which the cubic is monotone.
        const double length = std::hypot(fNodes[i].slope, fNodes[i + 1].slope) / std::abs(secant);
        if (length <= 3) continue;
        fNodes[i].slope *= 3 / length;
        fNodes[i + 1].slope *= 3 / length;
    }
}

} // namespace qoc::components
