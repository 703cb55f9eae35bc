#include "krocore/PointCurve.h"

#include <algorithm>
#include <cmath>

namespace krocore {

namespace {

using Node = PointCurve::Node;

// By insertion, which keeps the order of equal ones and needs no room.
void Sort(std::span<Node> nodes) noexcept {
    for (auto node = nodes.begin(); node != nodes.end(); ++node) {
        const auto place = std::upper_bound(nodes.begin(), node, node->place,
                                            [](double wanted, const Node& other) { return wanted < other.place; });
        std::rotate(place, node, node + 1);
    }
}

double Secant(const Node& from, const Node& to) noexcept {
    const double width = to.place - from.place;
    return width > 0 ? (to.value - from.value) / width : 0;
}

void JoinByLine(Node& from, Node& to) noexcept {
    from.leaving = to.arriving = Secant(from, to);
}

// Into the circle around the secant in which the cubic is monotone.
void Limit(Node& from, Node& to) noexcept {
    constexpr double kMonotoneRadius = 3;
    const double secant = Secant(from, to);
    if (secant == 0) {
        from.leaving = to.arriving = 0;
        return;
    }
    const double length = std::hypot(from.leaving / secant, to.arriving / secant);
    if (!(length > kMonotoneRadius)) return;
    from.leaving *= kMonotoneRadius / length;
    to.arriving *= kMonotoneRadius / length;
}

// Nodes with room between them. The steps of Fritsch and Carlson: the mean of the neighbouring secants, 0 at a turn,
// then one piece after the other limited. Both sides of an inner node have the same slope.
void JoinRun(std::span<Node> run) noexcept {
    if (run.size() < 2) return;
    for (std::size_t i = 1; i < run.size(); ++i)
        JoinByLine(run[i - 1], run[i]);
    for (std::size_t i = 1; i + 1 < run.size(); ++i) {
        const bool isTurn = run[i].arriving * run[i].leaving <= 0;
        run[i].arriving = run[i].leaving = isTurn ? 0 : (run[i].arriving + run[i].leaving) / 2;
    }
    for (std::size_t i = 1; i < run.size(); ++i) {
        Limit(run[i - 1], run[i]);
        if (i > 1) run[i - 1].arriving = run[i - 1].leaving;
        if (i + 1 < run.size()) run[i].leaving = run[i].arriving;
    }
}

} // namespace

void PointCurve::JoinStraight(std::span<Node> nodes) noexcept {
    Sort(nodes);
    for (std::size_t i = 1; i < nodes.size(); ++i)
        JoinByLine(nodes[i - 1], nodes[i]);
}

void PointCurve::JoinSmoothly(std::span<Node> nodes, double axisLength) noexcept {
    Sort(nodes);
    const auto isJump = [jump = kJump * axisLength](const Node& from, const Node& to) {
        const double width = to.place - from.place;
        return width < jump || width <= 0;
    };
    while (!nodes.empty()) {
        const auto jump = std::ranges::adjacent_find(nodes, isJump);
        const bool isLast = jump == nodes.end();
        const auto count = static_cast<std::size_t>(jump - nodes.begin()) + (isLast ? 0 : 1);
        JoinRun(nodes.first(count));
        if (!isLast) JoinByLine(*jump, *(jump + 1));
        nodes = nodes.subspan(count);
    }
}

double PointCurve::At(std::span<const Node> nodes, double place) noexcept {
    const auto next = std::ranges::upper_bound(nodes, place, {}, &Node::place);
    if (next == nodes.begin()) return nodes.front().value;
    if (next == nodes.end()) return nodes.back().value;
    return Between(*(next - 1), *next, place);
}

// Hermite's form: the level of the first node, the way to the second, and what the slopes bend.
double PointCurve::Between(const Node& from, const Node& to, double place) noexcept {
    const double width = to.place - from.place;
    const double t = (place - from.place) / width;
    const double rest = 1 - t;
    return from.value + (to.value - from.value) * t * t * (3 - 2 * t) +
           width * t * rest * (from.leaving * rest - to.arriving * t);
}

} // namespace krocore
