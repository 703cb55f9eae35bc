#include "krocore/FaderTranslator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace krocore {
namespace {

struct Point {
    double decibels;
    double travel; // 10^((decibels - 12) / 60), worked out by hand
};

constexpr Point kPoints[] = {
    {12, 1}, {0, 0.630957344480193}, {-48, 0.1}, {-108, 0.01}, {-6, 0.501187233627272},
};

TEST(FaderTranslator, FollowsTheCubeRootOfTheAmplitudeBothWays) {
    const FaderTranslator<double> fader;
    for (const Point& point : kPoints) {
        EXPECT_NEAR(fader.GetNormalizedValue(point.decibels), point.travel, 1e-12);
        EXPECT_NEAR(fader.GetDecibelValue(point.travel), point.decibels, 1e-9);
    }
}

TEST(FaderTranslator, EndsAreSilenceAndTwelveDecibels) {
    const FaderTranslator<float> fader;
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(fader.GetDecibelValue(0), -infinity);
    EXPECT_EQ(fader.GetDecibelValue(-0.5F), -infinity);
    EXPECT_EQ(fader.GetDecibelValue(3), 12);
    EXPECT_EQ(fader.GetNormalizedValue(-infinity), 0);
    EXPECT_EQ(fader.GetNormalizedValue(40), 1);
    EXPECT_TRUE(std::isnan(fader.GetNormalizedValue(std::nanf(""))));
    EXPECT_TRUE(std::isnan(fader.GetDecibelValue(std::nanf(""))));
}

} // namespace
} // namespace krocore
