#include "qoc/components/StereoExpander.h"

#include "MeasureSound.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;

namespace {

using test::Channels;
using test::NoiseChannels;

boost::intrusive_ptr<AudioFilter> Prepared(std::size_t channels = 2, double pan = 0, double expand = 100) {
    boost::intrusive_ptr<AudioFilter> filter(new StereoExpander);
    filter->SetParameterValue(kStereoExpanderPan, static_cast<float>((pan + 100) / 200));
    filter->SetParameterValue(kStereoExpanderExpand, static_cast<float>(expand / 300));
    filter->Prepare(44100, 8192, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

// In place.
void Process(AudioFilter& filter, Channels& sound, std::size_t begin, std::size_t end, std::size_t block) {
    test::Process(filter, sound, sound, begin, end, block);
}

TEST(StereoExpander, DefaultsAndSoundsThatAreNotStereoAreBitExact) {
    for (const auto& filter : {Prepared(), Prepared(1, 50, 250), Prepared(6, -50, 0)}) {
        const Channels input = NoiseChannels(filter->GetNumberOfInputChannels(), 3000);
        Channels sound = input;
        Process(*filter, sound, 0, 3000, 512);
        EXPECT_EQ(sound, input);
    }
}

TEST(StereoExpander, NoExpansionMakesBothChannelsEqual) {
    Channels sound = NoiseChannels(2, 3000);
    const float middle = (sound[0][5] + sound[1][5]) / 2;
    Process(*Prepared(2, 0, 0), sound, 0, 3000, 512);
    EXPECT_EQ(sound[0], sound[1]);
    EXPECT_NEAR(sound[0][5], middle, 1e-6);
}

// Equal power: the middle's gains are sqrt(2) times cosine and sine of an angle that goes from 0 to 90 degrees.
TEST(StereoExpander, PansTheMiddleAndScalesTheSides) {
    const double root2 = std::sqrt(2.0);
    const double eighth = std::cos(std::acos(-1.0) / 8); // half way to the left
    const double threeEighths = std::sin(std::acos(-1.0) / 8);
    struct {
        double pan, expand, left, right, expectedLeft, expectedRight;
    } const cases[] = {
        {0, 300, 0.25, -0.25, 0.75, -0.75},            // sides only
        {0, 300, 0.25, 0.25, 0.25, 0.25},              // middle only
        {0, 200, 0.3, 0.1, 0.4, 0.0},                  // 0.2 +- 2 * 0.1
        {-100, 100, 0.25, 0.25, 0.25 * root2, 0.0},    // middle to the left
        {100, 100, 0.25, 0.25, 0.0, 0.25 * root2},     // and to the right
        {100, 50, 0.3, 0.1, 0.05, 0.2 * root2 - 0.05}, // sides stay where they are
        {-50, 100, 0.2, 0.2, 0.2 * root2 * eighth, 0.2 * root2 * threeEighths},
    };
    for (const auto& each : cases) {
        Channels sound = {{static_cast<float>(each.left)}, {static_cast<float>(each.right)}};
        Process(*Prepared(2, each.pan, each.expand), sound, 0, 1, 1);
        EXPECT_NEAR(sound[0][0], each.expectedLeft, 1e-6) << each.pan << " " << each.expand;
        EXPECT_NEAR(sound[1][0], each.expectedRight, 1e-6) << each.pan << " " << each.expand;
    }
}

TEST(StereoExpander, ChangesAreRampedWhateverTheBlockSize) {
    const auto run = [](std::size_t block) {
        const auto filter = Prepared();
        Channels sound = NoiseChannels(2, 20000);
        sound[1][17000] = std::numeric_limits<float>::infinity(); // in the block in which the last ramp ends
        Process(*filter, sound, 0, 1000, block);
        filter->SetParameterValue(kStereoExpanderPan, 0.1F);
        filter->SetParameterValue(kStereoExpanderExpand, 1);
        Process(*filter, sound, 1000, 10000, block);
        filter->SetParameterValue(kStereoExpanderPan, 0.5F);
        filter->SetParameterValue(kStereoExpanderExpand, 1.0F / 3);
        Process(*filter, sound, 10000, 20000, block);
        return sound;
    };
    const Channels expected = run(1);
    EXPECT_EQ(run(127), expected);
    EXPECT_EQ(run(8192), expected);
    const Channels input = NoiseChannels(2, 20000);
    EXPECT_NEAR(expected[0][1000], input[0][1000], 1e-3) << "no jump";
    EXPECT_GT(std::abs(expected[0][9000] - input[0][9000]), 1e-2);
    EXPECT_EQ(expected[0][19999], input[0][19999]) << "neutral again";
}

} // namespace
