#include "qoc/dsp/restoration/AutoregressiveInterpolator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

using qoc::dsp::AutoregressiveInterpolator;

namespace {

// A model that keeps the third difference's changes small goes on with the slope of 2 a sample at which the known sound
// ends on either side: without a bound the middle of the gap would come to about 15.
TEST(AutoregressiveInterpolator, StaysWithinTheReachOfTheSoundAround) {
    constexpr std::size_t kBegin = 50;
    constexpr std::size_t kLength = 30;
    const std::vector<double> coefficients = {1, -4, 6, -4, 1};
    std::vector<double> sound(130);
    sound[kBegin - 2] = sound[kBegin + kLength + 1] = -1;
    sound[kBegin - 1] = sound[kBegin + kLength] = 1;
    std::vector<std::size_t> unknown(kLength);
    std::iota(unknown.begin(), unknown.end(), kBegin);
    AutoregressiveInterpolator interpolator;
    interpolator.Prepare(kLength, coefficients.size() - 1);
    interpolator.Restore(coefficients, unknown, sound);
    const auto [lo, hi] = std::ranges::minmax(sound);
    EXPECT_GE(lo, -2) << "half of what it swings by more than there is";
    EXPECT_LE(hi, 2);
    EXPECT_GT(hi, 1) << "the slope goes on";
}

} // namespace
