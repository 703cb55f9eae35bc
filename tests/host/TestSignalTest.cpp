#include "host/TestSignal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

TEST(TestSignal, HasTheLevelItPromisesInBothChannelsAllAlong) {
    const qohost::Sound sound = qohost::MakeTestSignal();
    ASSERT_EQ(sound.Frames(), 441000U);
    EXPECT_NE(sound.channels[0], sound.channels[1]);
    float peak = 0;
    for (const auto& channel : sound.channels) {
        for (std::size_t second = 0; second < 10; ++second) {
            const auto begin = channel.begin() + static_cast<std::ptrdiff_t>(second * 44100);
            const float loudest = std::abs(
                *std::max_element(begin, begin + 44100, [](float a, float b) { return std::abs(a) < std::abs(b); }));
            EXPECT_GT(loudest, 0.1F) << second;
            peak = std::max(peak, loudest);
        }
    }
    EXPECT_NEAR(peak, 0.5, 1e-6);
}

TEST(TestSignal, IsTheSameEveryTimeAndOfAnyLength) {
    EXPECT_EQ(qohost::MakeTestSignal(0.7, 48000).channels, qohost::MakeTestSignal(0.7, 48000).channels);
    EXPECT_EQ(qohost::MakeTestSignal(0.7, 48000).Frames(), 33600U);
    EXPECT_EQ(qohost::MakeTestSignal(0).Frames(), 0U);
}

} // namespace
