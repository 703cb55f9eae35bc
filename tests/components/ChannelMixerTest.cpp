#include "qoc/components/ChannelMixer.h"

#include "MeasureSound.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;
using test::Channels;

namespace {

using Filter = boost::intrusive_ptr<AudioFilter>;

Filter Prepared(std::size_t channels, float rate = 48000) {
    Filter filter(new ChannelMixer);
    filter->Prepare(rate, 512, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

void SetAmount(AudioFilter& filter, int output, int input, double percent) {
    filter.SetParameterValue(kChannelMixerFirstAmount + 8 * output + input, static_cast<float>((percent + 100) / 200));
}

TEST(ChannelMixer, LeavesEveryLayoutAsItIsByDefault) {
    for (const std::size_t channels : {1U, 2U, 6U, 8U, 12U}) {
        const Channels input = test::NoiseChannels(channels, 3000);
        const Filter filter = Prepared(channels);
        EXPECT_TRUE(test::Processed(*filter, input) == input) << channels;
        EXPECT_EQ(filter->GetParameterValue(kChannelMixerChannelCount), static_cast<float>(channels) / 32);
    }
}

// Against the sums in double precision.
TEST(ChannelMixer, NullsAgainstTheMatrix) {
    for (const std::size_t channels : {1U, 2U, 6U, 8U, 10U}) {
        const std::size_t mixed = std::min<std::size_t>(channels, 8);
        const Filter filter = Prepared(channels);
        const auto amount = [](std::size_t output, std::size_t input) {
            return static_cast<double>((output * 37 + input * 59) % 201) - 100;
        };
        for (std::size_t output = 0; output < 8; ++output) {
            for (std::size_t input = 0; input < 8; ++input)
                SetAmount(*filter, static_cast<int>(output), static_cast<int>(input), amount(output, input));
        }
        filter->Reset();
        const Channels input = test::NoiseChannels(channels, 2000, 5);
        const Channels output = test::Processed(*filter, input);
        for (std::size_t channel = 0; channel < mixed; ++channel) {
            std::vector<float> expected(2000);
            for (std::size_t i = 0; i < expected.size(); ++i) {
                double sum = 0;
                for (std::size_t from = 0; from < mixed; ++from)
                    sum += amount(channel, from) / 100 * input[from][i];
                expected[i] = static_cast<float>(sum);
            }
            EXPECT_LT(test::NullDecibels(expected, output[channel], 0), -120) << channel << " of " << channels;
        }
        for (std::size_t channel = mixed; channel < channels; ++channel)
            EXPECT_TRUE(output[channel] == input[channel]);
    }
}

TEST(ChannelMixer, ChannelsCanBeSwappedAndInvertedBitByBit) {
    const Filter filter = Prepared(2);
    SetAmount(*filter, 0, 0, 0);
    SetAmount(*filter, 0, 1, 100);
    SetAmount(*filter, 1, 0, -100);
    SetAmount(*filter, 1, 1, -1e-5); // an inverted 0 %
    filter->Reset();
    const Channels input = test::NoiseChannels(2, 1000);
    const Channels output = test::Processed(*filter, input);
    EXPECT_TRUE(output[0] == input[1]);
    for (std::size_t i = 0; i < 1000; ++i)
        ASSERT_EQ(output[1][i], -input[0][i]);
}

TEST(ChannelMixer, NeitherAChangeOfPolarityNorAPathThatGoesOutClicks) {
    const Channels input = {test::Sine(100, 48000, 48000)};
    Channels output = input;
    const Filter goingOut = Prepared(1);
    test::Process(*goingOut, input, output, 0, 24000, 512);
    SetAmount(*goingOut, 0, 0, 0);
    test::Process(*goingOut, input, output, 24000, 48000, 512);
    EXPECT_LT(test::Roughness(output[0], 23000, 40000), 8.6e-5 + 0.9e-5 + 2.05e-5);
    EXPECT_EQ(output[0].back(), 0);
    const Filter filter = Prepared(1);
    test::Process(*filter, input, output, 0, 24000, 512);
    SetAmount(*filter, 0, 0, -100);
    test::Process(*filter, input, output, 24000, 48000, 512);
    // With w the sine's 0.0131 a sample, and 240 samples the time constant: the sine bends by w^2 / 2, the ramp by
    // 2 / 240^2 / 2, and both slopes together by w * 2 / (e * 240).
    EXPECT_LT(test::Roughness(output[0], 23000, 40000), 8.6e-5 + 1.8e-5 + 4.1e-5);
    EXPECT_EQ(output[0].back(), -input[0].back());
}

} // namespace
