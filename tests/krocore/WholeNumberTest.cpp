#include "krocore/WholeNumber.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace krocore {
namespace {

TEST(WholeNumber, IsTruncatedAndHeldWithinItsBounds) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const struct {
        double number;
        int expected; // within -1 and 5
    } cases[] = {
        {2.9, 2},         {-0.9, 0},
        {-1, -1},         {-1.5, -1},
        {5, 5},           {5.5, 5},
        {4.99, 4},        {1e308, 5},
        {-1e308, -1},     {kInfinity, 5},
        {1e-320, 0},      {-0.0, 0},
        {-kInfinity, -1}, {std::numeric_limits<double>::quiet_NaN(), -1},
    };
    for (const auto& c : cases)
        EXPECT_EQ(TruncatedWithin(c.number, -1, 5), c.expected) << c.number;
}

TEST(WholeNumber, ReachesTheEndsOfEveryType) {
    using Limits = std::numeric_limits<std::int64_t>;
    EXPECT_EQ(TruncatedWithin(1e19, Limits::min(), Limits::max()), Limits::max());
    EXPECT_EQ(TruncatedWithin(0x1p63, Limits::min(), Limits::max()), Limits::max());
    EXPECT_EQ(TruncatedWithin(-0x1p63, Limits::min(), Limits::max()), Limits::min());
    EXPECT_EQ(TruncatedWithin<std::uint32_t>(-1, 0, 7), 0U);
}

} // namespace
} // namespace krocore
