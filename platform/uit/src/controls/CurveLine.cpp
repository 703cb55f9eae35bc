#include "uit/controls/CurveLine.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace uit::controls {

using kroui::Point;

namespace {

std::vector<Point> Ascending(std::span<const Point> points) {
    std::vector<Point> sorted;
    sorted.reserve(points.size() + 2);
    std::copy_if(points.begin(), points.end(), std::back_inserter(sorted),
                 [](const Point& p) { return std::isfinite(p.x) && std::isfinite(p.y); });
    std::stable_sort(sorted.begin(), sorted.end(), [](const Point& a, const Point& b) { return a.x < b.x; });
    return sorted;
}

// Points with room between them; a jump, two points above each other, parts one run from the next.
bool IsJump(const Point& from, const Point& to) {
    constexpr float kLeastWidth = 1e-3F;
    return to.x - from.x < kLeastWidth;
}

// The slopes of the cubic at the points of a run.
std::vector<double> Slopes(std::span<const Point> run) {
    const std::size_t count = run.size();
    std::vector<double> secants(count, 0);
    for (std::size_t i = 0; i + 1 < count; ++i)
        secants[i] = (run[i + 1].y - run[i].y) / static_cast<double>(run[i + 1].x - run[i].x);
    std::vector<double> slopes(count, secants[0]);
    for (std::size_t i = 1; i + 1 < count; ++i) {
        const bool isExtremum = secants[i - 1] * secants[i] <= 0;
        slopes[i] = isExtremum ? 0 : (secants[i - 1] + secants[i]) / 2;
    }
    if (count > 1) slopes[count - 1] = secants[count - 2];
    for (std::size_t i = 0; i + 1 < count; ++i) {
        if (secants[i] == 0) {
            slopes[i] = slopes[i + 1] = 0;
            continue;
        }
        const double from = slopes[i] / secants[i];
        const double to = slopes[i + 1] / secants[i];
        const double length = std::hypot(from, to);
        constexpr double kMonotoneRadius = 3;
        if (length <= kMonotoneRadius) continue;
        slopes[i] = kMonotoneRadius * from / length * secants[i];
        slopes[i + 1] = kMonotoneRadius * to / length * secants[i];
    }
    return slopes;
}

// The cubic with these ends and slopes, in Hermite's form.
double CubicAt(const Point& from, const Point& to, double fromSlope, double toSlope, double x) {
    const double width = to.x - from.x;
    const double t = (x - from.x) / width;
    const double u = 1 - t;
    return u * u * ((1 + 2 * t) * from.y + t * width * fromSlope) + t * t * ((1 + 2 * u) * to.y - u * width * toSlope);
}

// Appends the cubic through a run, as far as it lies between left and right.
void AddRun(std::vector<Point>& line, std::span<const Point> run, float left, float right, float step) {
    const std::vector<double> slopes = Slopes(run);
    line.push_back(run.front());
    for (std::size_t i = 0; i + 1 < run.size(); ++i) {
        const Point& from = run[i];
        const Point& to = run[i + 1];
        const float begin = std::max(from.x, left - step);
        const float end = std::min(to.x, right + step);
        const int steps = begin < end ? static_cast<int>(std::ceil((end - begin) / step)) : 0;
        for (int k = begin > from.x ? 0 : 1; k < steps; ++k) {
            const float x = begin + static_cast<float>(k) * step;
            line.push_back({x, static_cast<float>(CubicAt(from, to, slopes[i], slopes[i + 1], x))});
        }
        line.push_back(to);
    }
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

std::vector<Point> CurveLine::Spline(std::span<const Point> points, float left, float right, float step) {
    const std::vector<Point> sorted = Ascending(points);
    if (!(step > 0)) return Straight(points, left, right);
    std::vector<Point> line;
    for (auto begin = sorted.begin(); begin != sorted.end();) {
        const auto jump = std::adjacent_find(begin, sorted.end(), IsJump);
        const auto end = jump == sorted.end() ? jump : jump + 1;
        AddRun(line, {begin, end}, left, right, step);
        begin = end;
    }
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
