#include "qoc/components/Amplify.h"

#include "MeasureSound.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterBlock;
using kromediatypes::AudioChannelLayout;

namespace {

using test::Channels;
using test::NoiseChannels;
using test::Process;
using test::Processed;

constexpr float kSampleRate = 44100;
constexpr std::size_t kLargestBlock = 8192;

boost::intrusive_ptr<AudioFilter> PreparedAmplify(std::size_t channels) {
    auto filter = CreateEffect(kAmplifyComponentID);
    filter->Prepare(kSampleRate, kLargestBlock, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

float Stored(double decibels) {
    return static_cast<float>((decibels + 96) / 144);
}

TEST(Amplify, DefaultsAreBitExact) {
    const auto filter = PreparedAmplify(2);
    Channels input = NoiseChannels(2, 5000);
    input[0][17] = std::numeric_limits<float>::denorm_min();
    EXPECT_EQ(Processed(*filter, input), input);
}

TEST(Amplify, BackAtZeroDecibelsIsBitExactOnceSettled) {
    const auto filter = PreparedAmplify(1);
    const Channels input = NoiseChannels(1, 44100);
    Channels output = input;
    filter->SetParameterValue(kAmplifyFirstGain, Stored(-20));
    Process(*filter, input, output, 0, 22050, 100);
    filter->SetParameterValue(kAmplifyFirstGain, Stored(0));
    Process(*filter, input, output, 22050, 44100, 100);
    EXPECT_NE(output[0][22100], input[0][22100]);
    EXPECT_TRUE(std::equal(input[0].begin() + 33000, input[0].end(), output[0].begin() + 33000));
}

TEST(Amplify, EachChannelHasItsOwnGain) {
    const auto filter = PreparedAmplify(4);
    const float decibels[] = {-96.0F, -24.0F, 6.0F, 48.0F};
    for (int channel = 0; channel < 4; ++channel)
        filter->SetParameterValue(kAmplifyFirstGain + channel, Stored(decibels[channel]));
    filter->Reset(); // settles
    const Channels input(4, std::vector<float>(64, 0.25F));
    const Channels output = Processed(*filter, input);
    for (std::size_t channel = 0; channel < 4; ++channel) {
        const double expected = 0.25 * std::pow(10.0, decibels[channel] / 20.0);
        EXPECT_NEAR(output[channel][0] / expected, 1.0, 2e-6);
        EXPECT_EQ(output[channel][0], output[channel][63]);
    }
}

TEST(Amplify, StoredValuesOutsideTheRangeAreClampedInTheSound) {
    const auto filter = PreparedAmplify(1);
    filter->SetParameterValue(kAmplifyFirstGain, 1.2F);
    filter->Reset();
    const Channels output = Processed(*filter, {{0.001F}});
    EXPECT_NEAR(output[0][0], 0.001 * std::pow(10.0, 48.0 / 20.0), 1e-6);
}

// A jump of the gain by d at rest moves a cascade of two one-poles with coefficient k by at most k * k * d from one
// difference to the next; a hard switch would give d, a straight ramp over the same time a kink at both ends.
TEST(Amplify, GainChangesWithoutClick) {
    const auto filter = PreparedAmplify(1);
    const Channels input(1, std::vector<float>(20000, 1.0F));
    Channels output = input;
    Process(*filter, input, output, 0, 5000, 256);
    filter->SetParameterValue(kAmplifyFirstGain, Stored(-60));
    Process(*filter, input, output, 5000, 20000, 256);
    const double k = 1 - std::exp(-1 / (0.005 * kSampleRate));
    const double bound = k * k * (1 - 0.001);
    constexpr double kFloatSteps = 2.4e-7; // rounding of three values near 1
    double largest = 0;
    for (std::size_t i = 2; i < output[0].size(); ++i)
        largest = std::max(largest, std::abs(double{output[0][i]} - 2.0 * output[0][i - 1] + output[0][i - 2]));
    EXPECT_LE(largest, bound + kFloatSteps);
    EXPECT_NEAR(output[0].back(), 0.001, 1e-8);
}

TEST(Amplify, BadSamplesLeaveNothingBehind) {
    const auto filter = PreparedAmplify(1);
    const auto clean = PreparedAmplify(1);
    for (const auto& each : {filter, clean})
        each->SetParameterValue(kAmplifyFirstGain, Stored(-6));
    Channels input = NoiseChannels(1, 4000);
    const Channels expected = Processed(*clean, input);
    input[0][100] = std::numeric_limits<float>::quiet_NaN();
    input[0][200] = std::numeric_limits<float>::infinity();
    input[0][300] = -std::numeric_limits<float>::denorm_min();
    const Channels output = Processed(*filter, input);
    for (std::size_t i = 0; i < 4000; ++i) {
        if (i != 100 && i != 200 && i != 300) {
            ASSERT_EQ(output[0][i], expected[0][i]) << i;
        }
    }
}

TEST(Amplify, ParametersFollowTheChannels) {
    const auto filter = PreparedAmplify(6);
    EXPECT_EQ(filter->GetParameterCount(), 8);
    EXPECT_EQ(filter->GetParameterValue(kAmplifyChannelCount), 6.0F / 32);
    EXPECT_EQ(filter->GetParameterValue(kAmplifyLinkChannels), 1.0F);
    EXPECT_EQ(filter->GetParameterValue(kAmplifyFirstGain + 5), 2.0F / 3);
    EXPECT_EQ(filter->GetParameterInfo(8), nullptr);
    filter->SetParameterValue(kAmplifyChannelCount, 1);
    EXPECT_EQ(filter->GetParameterValue(kAmplifyChannelCount), 6.0F / 32);
    filter->SetParameterValue(kAmplifyFirstGain, Stored(-6));
    filter->Prepare(kSampleRate, 64, AudioChannelLayout::Stereo());
    EXPECT_EQ(filter->GetParameterCount(), 4);
    EXPECT_EQ(filter->GetParameterValue(kAmplifyFirstGain), Stored(-6));
}

class HeldAmplify : public Amplify {
public:
    using AudioFilter::ReleaseParameters;
    using AudioFilter::TryHoldParameters;
};

// What holds for every effect.
TEST(Amplify, ParametersThatAreBeingChangedAreReadInTheNextBlock) {
    const boost::intrusive_ptr<HeldAmplify> filter(new HeldAmplify);
    filter->Prepare(kSampleRate, kLargestBlock, AudioChannelLayout::Mono());
    const Channels input = {std::vector<float>(3 * kLargestBlock, 0.5F)};
    Channels output = input;
    ASSERT_TRUE(filter->TryHoldParameters());
    filter->SetParameterValue(kAmplifyFirstGain, Stored(-96));
    Process(*filter, input, output, 0, kLargestBlock, kLargestBlock);
    EXPECT_EQ(output[0][kLargestBlock - 1], 0.5F);
    filter->ReleaseParameters();
    Process(*filter, input, output, kLargestBlock, 3 * kLargestBlock, kLargestBlock);
    EXPECT_LT(output[0].back(), 1e-3F);
    EXPECT_TRUE(filter->TryHoldParameters()) << "given back after reading";
}

} // namespace
