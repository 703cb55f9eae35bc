#include "workbench/views/MeterBallistics.h"

#include <gtest/gtest.h>

namespace workbench {
namespace {

TEST(MeterBallistics, FallsTwentyDecibelsIn1700MillisecondsAndHoldsTheMark) {
    MeterBallistics meter;
    EXPECT_TRUE(meter.Feed(0.5F, 0.1F));
    EXPECT_NEAR(meter.Level(), -6.0206F, 1e-3F);
    meter.Feed(0, 0.85F);
    EXPECT_NEAR(meter.Level(), -16.0206F, 1e-3F);
    EXPECT_NEAR(meter.Mark(), -6.0206F, 1e-3F);
    // Past the holding time the mark falls as the level does, and both end.
    meter.Feed(0, 0.85F);
    EXPECT_NEAR(meter.Level(), -26.0206F, 1e-3F);
    EXPECT_NEAR(meter.Mark(), -16.0206F, 1e-3F);
    for (int i = 0; i < 100; ++i)
        meter.Feed(0, 0.1F);
    EXPECT_TRUE(meter.IsAtRest());
    EXPECT_FALSE(meter.Feed(0, 0.1F));
}

} // namespace
} // namespace workbench
