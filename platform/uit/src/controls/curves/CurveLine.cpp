#include "uit/controls/CurveLine.h"

#include "krocore/PointCurve.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace uit::controls {

using krocore::PointCurve;
using kroui::Point;

namespace {

Point PointOf(const PointCurve::Node& node) {
    return {static_cast<float>(node.place), static_cast<float>(node.value)};
}

std::vector<Point> Ascending(std::span<const Point> points) {
    std::vector<Point> sorted;
    sorted.reserve(points.size() + 2);
    std::copy_if(points.begin(), points.end(), std::back_inserter(sorted),
                 [](const Point& p) { return std::isfinite(p.x) && std::isfinite(p.y); });
    std::stable_sort(sorted.begin(), sorted.end(), [](const Point& a, const Point& b) { return a.x < b.x; });
    return sorted;
}

// Appends the piece between two nodes behind the first one, as far as it lies between left and right.
void AddPiece(std::vector<Point>& line, const PointCurve::Node& from, const PointCurve::Node& to, double left,
              double right, double step) {
    const double begin = std::max(from.place, left - step);
    const double end = std::min(to.place, right + step);
    const int steps = begin < end ? static_cast<int>(std::ceil((end - begin) / step)) : 0;
    for (int k = begin > from.place ? 0 : 1; k < steps; ++k) {
        const double x = begin + k * step;
        line.push_back({static_cast<float>(x), static_cast<float>(PointCurve::Between(from, to, x))});
    }
    line.push_back(PointOf(to));
}

void AddLevelEnds(std::vector<Point>& line, float left, float right) {
    if (line.empty()) return;
    if (line.front().x > left) line.insert(line.begin(), {left, line.front().y});
    if (line.back().x < right) line.push_back({right, line.back().y});
}

} // namespace

std::vector<Point> CurveLine::Straight(std::span<const Point> points, float left, float right) {
    std::vector<Point> line = Ascending(points);
    AddLevelEnds(line, left, right);
    return line;
}

std::vector<Point> CurveLine::Spline(std::span<const Point> points, float left, float right, float step,
                                     double axisLength) {
    if (!(step > 0)) return Straight(points, left, right);
    std::vector<PointCurve::Node> nodes;
    for (const Point& point : Ascending(points))
        nodes.push_back({.place = point.x, .value = point.y});
    PointCurve::JoinSmoothly(nodes, axisLength);
    std::vector<Point> line;
    if (!nodes.empty()) line.push_back(PointOf(nodes.front()));
    for (std::size_t i = 1; i < nodes.size(); ++i)
        AddPiece(line, nodes[i - 1], nodes[i], left, right, step);
    AddLevelEnds(line, left, right);
    return line;
}

float CurveLine::HeightAt(std::span<const Point> line, float x) {
    if (line.empty()) return std::numeric_limits<float>::quiet_NaN();
    const auto behind = std::upper_bound(line.begin(), line.end(), x, [](float a, const Point& p) { return a < p.x; });
    if (behind == line.begin()) return line.front().y;
    if (behind == line.end()) return line.back().y;
    const Point& from = *(behind - 1);
    return from.y + (behind->y - from.y) * ((x - from.x) / (behind->x - from.x));
}

} // namespace uit::controls
