#include "qoc/components/FrequencyCurve.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace qoc::components;

namespace {

using Axis = FrequencyCurve::Axis;

TEST(FrequencyCurve, IsStraightInTheAxisAndLevelBeyondTheEnds) {
    const std::vector<FrequencyCurve::Point> points = {{4000, 5}, {1000, 1}}; // in any order
    const FrequencyCurve linear(points, Axis::kLinear, false, 0);
    const FrequencyCurve logarithmic(points, Axis::kLogarithmic, false, 0);
    EXPECT_NEAR(linear.At(2500), 3, 1e-12);
    EXPECT_NEAR(logarithmic.At(2000), 3, 1e-12);
    for (const FrequencyCurve* curve : {&linear, &logarithmic}) {
        EXPECT_EQ(curve->At(20), 1);
        EXPECT_EQ(curve->At(20000), 5);
    }
    EXPECT_EQ(FrequencyCurve({}, Axis::kLinear, true, 7).At(500), 7);
}

// Fritsch and Carlson by hand; secants 1 and 0: slopes 1, 0, 0. Secants 0.1 and 1.9: slopes 0.1, 1, 1.9, of which the
// first two are shortened by 3 / hypot(1, 10).
TEST(FrequencyCurve, SplineIsTheMonotoneCubic) {
    const FrequencyCurve level({{1, 0}, {2, 1}, {3, 1}}, Axis::kLinear, true, 0);
    EXPECT_NEAR(level.At(1.5), 0.5 + 0.125, 1e-12);
    EXPECT_NEAR(level.At(2.5), 1, 1e-12);
    const FrequencyCurve steep({{1, 0}, {2, 0.1}, {3, 2}}, Axis::kLinear, true, 0);
    const double shortened = 3 / std::hypot(1.0, 10.0);
    EXPECT_NEAR(steep.At(1.5), 0.05 + 0.125 * (0.1 - 1) * shortened, 1e-12);
    const FrequencyCurve decades({{10, 0}, {100, 1}, {1000, 1}}, Axis::kLogarithmic, true, 0);
    EXPECT_NEAR(decades.At(std::sqrt(1000.0)), 0.625, 1e-12);
}

TEST(FrequencyCurve, PointsAtOnePlaceMakeAStep) {
    for (const bool spline : {false, true}) {
        const FrequencyCurve curve({{100, 0}, {200, 0}, {200, 1}, {300, 1}}, Axis::kLinear, spline, 0);
        EXPECT_EQ(curve.At(199.999), 0);
        EXPECT_EQ(curve.At(200), 1);
        EXPECT_EQ(curve.At(250), 1);
    }
}

TEST(FrequencyCurve, SamplesAreTheCurve) {
    const FrequencyCurve curve({{30, 1}, {30, 2}, {500, -1}, {700, 3}, {1500, 3}}, Axis::kLogarithmic, true, 0);
    const std::vector<double> samples = curve.Sample(1001, 2000);
    for (std::size_t i = 0; i < samples.size(); ++i)
        ASSERT_NEAR(samples[i], curve.At(2.0 * static_cast<double>(i)), 1e-12) << i;
}

} // namespace
