#include "qoc/components/Delay.h"

#include "MeasureSound.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;

namespace {

struct Side {
    double time = 0; // ms
    double mix = 50; // %
    bool inverted = false;
};

void Set(AudioFilter& filter, const Side& side, int first) {
    filter.SetParameterValue(first, static_cast<float>((side.time + 500) / 1000));
    filter.SetParameterValue(first + 1, static_cast<float>(side.mix / 100));
    filter.SetParameterValue(first + 2, side.inverted ? 1.0F : 0.0F);
}

boost::intrusive_ptr<AudioFilter> Prepared(const Side& left, const Side& right, std::size_t channels = 2,
                                           float rate = 44100) {
    boost::intrusive_ptr<AudioFilter> filter(new Delay);
    Set(*filter, left, kDelayLeftTime);
    Set(*filter, right, kDelayRightTime);
    filter->Prepare(rate, 8192, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

std::vector<std::size_t> NonZero(const std::vector<float>& sound) {
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < sound.size(); ++i)
        if (sound[i] != 0) places.push_back(i);
    return places;
}

TEST(Delay, TapsStandAtTheExactSampleBeforeAndBehindTheOriginal) {
    struct Case {
        float rate;
        double time; // ms
        std::size_t original;
        std::size_t tap;
    };
    const Case cases[] = {{44100, 10, 22050, 22491},   {44100, -500, 22050, 0},     {44100, 500, 22050, 44100},
                          {48000, 33.3, 24000, 25598}, {96000, -0.1, 48000, 47990}, {192000, 250, 96000, 144000}};
    for (const Case& each : cases) {
        const auto filter = Prepared({each.time, 25}, {each.time, 25}, 1, each.rate);
        EXPECT_EQ(filter->Latency(), each.original);
        const auto response = test::ImpulseResponse(*filter, 200000)[0];
        std::vector<std::size_t> places = {each.original, each.tap};
        std::ranges::sort(places);
        ASSERT_EQ(NonZero(response), places) << each.time << " at " << each.rate;
        EXPECT_NEAR(response[each.original], 0.75, 1e-6);
        EXPECT_NEAR(response[each.tap], 0.25, 1e-6);
        EXPECT_EQ(filter->Tail(), each.time > 0 ? each.tap - each.original : 0);
    }
}

TEST(Delay, RightHandChannelsHaveSettingsOfTheirOwn) {
    const auto filter = Prepared({1, 100}, {2, 100, true}, 6);
    const auto response = test::ImpulseResponse(*filter, 40000);
    const auto left = static_cast<std::size_t>(22050 + 44);
    const auto right = static_cast<std::size_t>(22050 + 88);
    // Left, right, centre, effects, left and right surround.
    const bool isRight[] = {false, true, false, false, false, true};
    for (std::size_t channel = 0; channel < 6; ++channel) {
        const std::size_t tap = isRight[channel] ? right : left;
        EXPECT_EQ(NonZero(response[channel]), std::vector{tap}) << channel;
        EXPECT_EQ(response[channel][tap], isRight[channel] ? -1 : 1) << channel;
    }
    EXPECT_NEAR(filter->GetParameterValue(kDelayChannelCount), 6.0 / 32, 1e-9);
}

TEST(Delay, WithNothingMixedInTheSoundIsBitExactButLater) {
    const auto filter = Prepared({-300, 0}, {77, 0});
    const auto input = test::NoiseChannels(2, 60000);
    const auto output = test::Processed(*filter, input);
    for (std::size_t channel = 0; channel < 2; ++channel)
        EXPECT_TRUE(std::equal(output[channel].begin() + 22050, output[channel].end(), input[channel].begin()));
}

// The second difference of the sine itself is (2 pi f / rate)^2 of its amplitude, here 0.0032; a jump would be seen.
TEST(Delay, ChangesMakeNoClick) {
    const auto filter = Prepared({100, 100}, {0, 0});
    const test::Channels input(2, test::Sine(400, 120000, 44100, 1));
    test::Channels output = input;
    test::Process(*filter, input, output, 0, 60000, 441);
    Set(*filter, {-123.4, 80, true}, kDelayLeftTime);
    test::Process(*filter, input, output, 60000, 60300, 100);
    Set(*filter, {33.3, 80}, kDelayLeftTime); // in the middle of the fade
    test::Process(*filter, input, output, 60300, 120000, 441);
    EXPECT_LT(test::Roughness(output[0], 40000, 120000), 0.004);
    // 33.3 ms are 1469 samples to the nearest.
    const auto expected = [&](std::size_t i) { return 0.2 * input[0][i - 22050] + 0.8 * input[0][i - 22050 - 1469]; };
    for (std::size_t i = 100000; i < 110000; ++i)
        ASSERT_NEAR(output[0][i], expected(i), 1e-5);
}

} // namespace
