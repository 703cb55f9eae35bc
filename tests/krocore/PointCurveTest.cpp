#include "krocore/PointCurve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

using krocore::PointCurve;

namespace {

using Nodes = std::vector<PointCurve::Node>;

Nodes At(const std::vector<std::pair<double, double>>& points) {
    Nodes nodes;
    for (const auto& [place, value] : points)
        nodes.push_back({.place = place, .value = value});
    return nodes;
}

Nodes Smooth(const std::vector<std::pair<double, double>>& points, double axisLength) {
    Nodes nodes = At(points);
    PointCurve::JoinSmoothly(nodes, axisLength);
    return nodes;
}

Nodes Straight(const std::vector<std::pair<double, double>>& points) {
    Nodes nodes = At(points);
    PointCurve::JoinStraight(nodes);
    return nodes;
}

TEST(PointCurve, IsStraightBetweenPointsAndLevelBesideThem) {
    const Nodes nodes = Straight({{40, 5}, {10, 1}, {40, 7}}); // in any order
    EXPECT_NEAR(PointCurve::At(nodes, 25), 3, 1e-12);
    EXPECT_EQ(PointCurve::At(nodes, -100), 1);
    EXPECT_NEAR(PointCurve::At(nodes, 39.999999), 5, 1e-6);
    EXPECT_EQ(PointCurve::At(nodes, 40), 7) << "the later one holds above a step";
    EXPECT_EQ(PointCurve::At(nodes, 1000), 7);
    for (const Nodes& one : {Straight({{3, 4}}), Smooth({{3, 4}}, 10)})
        for (const double place : {-1.0, 3.0, 9.0})
            EXPECT_EQ(PointCurve::At(one, place), 4);
    PointCurve::JoinStraight({});
    PointCurve::JoinSmoothly({}, 10);
}

// Fritsch and Carlson by hand. Secants 1 and 0: slopes 1, 0, 0. Secants 0.1 and 1.9: slopes 0.1, 1, 1.9, of which the
// first two are shortened by 3 / hypot(1, 10). Secants -1 and 2, a turn: slopes -1, 0, 2.
TEST(PointCurve, SmoothIsTheMonotoneCubic) {
    const Nodes level = Smooth({{1, 0}, {2, 1}, {3, 1}}, 3);
    EXPECT_NEAR(PointCurve::At(level, 1.5), 0.5 + 0.125, 1e-12);
    EXPECT_EQ(PointCurve::At(level, 2.5), 1);
    const Nodes steep = Smooth({{1, 0}, {2, 0.1}, {3, 2}}, 3);
    const double shortened = 3 / std::hypot(1.0, 10.0);
    EXPECT_NEAR(PointCurve::At(steep, 1.5), 0.05 + 0.125 * (0.1 - 1) * shortened, 1e-12);
    EXPECT_NEAR(PointCurve::At(steep, 2.5), 1.05 + 0.125 * (shortened - 1.9), 1e-12);
    const Nodes turn = Smooth({{0, 1}, {1, 0}, {2, 2}}, 2);
    EXPECT_NEAR(PointCurve::At(turn, 0.25), 1 - 0.25 * 0.25 * 2.5 - 0.25 * 0.75 * 0.75, 1e-12);
    EXPECT_NEAR(PointCurve::At(turn, 1.25), 2 * 0.0625 * 2.5 - 0.25 * 0.75 * 2 * 0.25, 1e-12);
}

// Points closer than 1/2000 of the axis: 0.05 of 100. On either side the curve is what the points of that side make.
TEST(PointCurve, ACubicEndsAtAStepAndAnotherBegins) {
    for (const double width : {0.0, 1e-9, 0.049}) {
        const Nodes nodes = Smooth({{0, 0}, {20, 10}, {40, 60}, {40 + width, 5}, {70, 6}, {100, 90}}, 100);
        const Nodes before = Smooth({{0, 0}, {20, 10}, {40, 60}}, 100);
        const Nodes behind = Smooth({{40 + width, 5}, {70, 6}, {100, 90}}, 100);
        for (const double place : {5.0, 25.0, 39.9})
            EXPECT_EQ(PointCurve::At(nodes, place), PointCurve::At(before, place)) << place;
        for (const double place : {40.1, 50.0, 85.0})
            EXPECT_EQ(PointCurve::At(nodes, place), PointCurve::At(behind, place)) << place;
        if (width > 0) {
            EXPECT_NEAR(PointCurve::At(nodes, 40 + width / 2), 32.5, 1e-3) << "straight";
        }
    }
    const Nodes apart = Smooth({{0, 0}, {20, 10}, {40, 60}, {40.051, 5}, {70, 6}, {100, 90}}, 100);
    const Nodes before = Smooth({{0, 0}, {20, 10}, {40, 60}}, 100);
    EXPECT_GT(std::abs(PointCurve::At(apart, 35) - PointCurve::At(before, 35)), 1) << "no step";
}

// What a graph does to a curve: another unit, another origin, upside down.
TEST(PointCurve, ScalingAndShiftingMovesTheCurveAndNothingElse) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> part(0, 1);
    for (int round = 0; round < 50; ++round) {
        std::vector<std::pair<double, double>> points;
        std::vector<std::pair<double, double>> pixels;
        for (int i = 0; i < 12; ++i) {
            const double place = i % 4 == 3 ? points.back().first + 1e-4 : part(random);
            points.emplace_back(place, part(random));
            pixels.emplace_back(37 + 500 * place, 220 - 180 * points.back().second);
        }
        const Nodes curve = Smooth(points, 1);
        const Nodes picture = Smooth(pixels, 500);
        for (double place = -0.1; place < 1.1; place += 0.01)
            ASSERT_NEAR(PointCurve::At(picture, 37 + 500 * place), 220 - 180 * PointCurve::At(curve, place), 1e-6);
    }
}

TEST(PointCurve, PassesNoPointsValueBetweenTwoPoints) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> part(0, 1);
    for (int round = 0; round < 50; ++round) {
        std::vector<std::pair<double, double>> points;
        for (int i = 0; i < 20; ++i)
            points.emplace_back(part(random), std::pow(part(random), 4));
        const Nodes nodes = Smooth(points, 1);
        for (std::size_t i = 1; i < nodes.size(); ++i) {
            const auto [low, high] = std::minmax({nodes[i - 1].value, nodes[i].value});
            for (const double part : {0.1, 0.5, 0.9}) {
                const double place = nodes[i - 1].place + part * (nodes[i].place - nodes[i - 1].place);
                ASSERT_GE(PointCurve::At(nodes, place), low - 1e-12);
                ASSERT_LE(PointCurve::At(nodes, place), high + 1e-12);
            }
        }
    }
}

} // namespace
