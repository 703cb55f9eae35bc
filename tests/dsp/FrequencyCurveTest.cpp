#include "qoc/dsp/filters/FrequencyCurve.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace qoc::dsp;
using krocore::FrequencyAxis;

namespace {

constexpr FrequencyAxis kLinear{20, 20000, false};
constexpr FrequencyAxis kLogarithmic{20, 20000, true};

TEST(FrequencyCurve, IsStraightInTheAxisAndLevelBeyondTheEnds) {
    const std::vector<FrequencyCurve::Point> points = {{4000, 5}, {1000, 1}}; // in any order
    const FrequencyCurve linear(points, kLinear, false, 0);
    const FrequencyCurve logarithmic(points, kLogarithmic, false, 0);
    EXPECT_NEAR(linear.At(2500), 3, 1e-12);
    EXPECT_NEAR(logarithmic.At(2000), 3, 1e-12);
    for (const FrequencyCurve* curve : {&linear, &logarithmic}) {
        EXPECT_EQ(curve->At(20), 1);
        EXPECT_EQ(curve->At(20000), 5);
    }
}

// Secants 1 and 0 a decade: half way the cubic lies an eighth of the first slope above the line.
TEST(FrequencyCurve, ASplineIsEvenAlongTheAxis) {
    const FrequencyCurve decades({{100, 0}, {1000, 1}, {10000, 1}}, kLogarithmic, true, 0);
    EXPECT_NEAR(decades.At(std::sqrt(100000.0)), 0.625, 1e-12);
    const FrequencyCurve linear({{1000, 0}, {2000, 1}, {3000, 1}}, kLinear, true, 0);
    EXPECT_NEAR(linear.At(1500), 0.625, 1e-12);
}

TEST(FrequencyCurve, PointsAtOnePlaceMakeAStep) {
    for (const bool spline : {false, true}) {
        const FrequencyCurve curve({{100, 0}, {200, 0}, {200, 1}, {300, 1}}, kLinear, spline, 0);
        EXPECT_EQ(curve.At(199.999), 0);
        EXPECT_EQ(curve.At(200), 1);
        EXPECT_EQ(curve.At(250), 1);
    }
}

// With fewer points than make a line, too.
TEST(FrequencyCurve, SamplesAreTheCurve) {
    const std::vector<FrequencyCurve::Point> curves[] = {
        {{30, 1}, {30, 2}, {500, -1}, {700, 3}, {1500, 3}}, {{20, 1}, {2000, 4}}, {{700, 3}}, {}};
    for (const auto& points : curves) {
        for (const bool spline : {false, true}) {
            const FrequencyCurve curve(points, kLogarithmic, spline, 7);
            const std::vector<double> samples = curve.Sample(1001, 2000);
            ASSERT_EQ(samples.size(), 1001U);
            for (std::size_t i = 0; i < samples.size(); ++i)
                ASSERT_NEAR(samples[i], curve.At(2.0 * static_cast<double>(i)), 1e-12) << i;
            if (points.size() < 2) {
                EXPECT_EQ(samples[500], points.empty() ? 7 : 3);
            }
        }
    }
}

} // namespace
