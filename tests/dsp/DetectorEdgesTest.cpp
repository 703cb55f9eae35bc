#include "MeasureSound.h"
#include "qoc/dsp/dynamics/LevelDetector.h"
#include "qoc/dsp/pitch/PitchDetector.h"
#include "qoc/dsp/restoration/ClipDetector.h"
#include "qoc/dsp/restoration/NoiseTracker.h"
#include "qoc/dsp/stream/ChannelSide.h"

#include <gtest/gtest.h>

#include <numeric>

using namespace qoc::dsp;

namespace {

using Runs = std::vector<std::pair<std::size_t, std::size_t>>;

Runs FoundIn(const std::vector<float>& sound, const ClipDetector::Settings& settings) {
    ClipDetector detector;
    detector.Prepare(sound.size());
    ClipDetector::Levels levels;
    Runs runs;
    for (const ClipDetector::Run& run : detector.Find(sound, settings, levels))
        runs.emplace_back(run.begin, run.end);
    return runs;
}

// The bound of the tolerance, 0.75 of a level of 1, is a number that floats have.
TEST(ClipDetector, ARunIsWhatReachesTheBoundFromTheFirstSampleToTheLast) {
    const float below = std::nextafter(0.75F, 0.0F);
    const ClipDetector::Settings settings{.level = 1, .tolerance = 0.25, .minimumSize = 2};
    EXPECT_EQ(FoundIn({0, 0.75F, 0.75F, 0.75F, 0}, settings), (Runs{{1, 4}})) << "at the bound";
    EXPECT_EQ(FoundIn({0, 0.75F, below, 0.75F, 0}, settings), Runs()) << "one sample each";
    EXPECT_EQ(FoundIn({0, below, below, below, 0}, settings), Runs()) << "just below";
    EXPECT_EQ(FoundIn({1, 1, 0, 0, -1, -0.75F}, settings), (Runs{{0, 2}, {4, 6}})) << "at both ends";
    EXPECT_EQ(FoundIn({1, 1, -1, -1, 0}, settings), (Runs{{0, 2}, {2, 4}})) << "from one side to the other";
    EXPECT_EQ(FoundIn({0, 1, 1, 1, 0}, {.level = 1, .tolerance = 0.25, .minimumSize = 3}), (Runs{{1, 4}}));
    EXPECT_EQ(FoundIn({0, 1, 1, 1, 0}, {.level = 1, .tolerance = 0.25, .minimumSize = 4}), Runs());
}

TEST(LevelDetector, TheLevelOfASineStaysWhenTheModeChanges) {
    constexpr double kLevel = 0.1;
    const double period = 100;
    for (const bool toPower : {true, false}) {
        LevelDetector detector;
        LevelDetector::Settings settings{.isPower = !toPower, .release = LevelDetector::Remainder(20000)};
        double level = 0;
        const auto next = [&](int i) {
            const double sample = kLevel * std::sin(2 * std::numbers::pi * i / period);
            level = sample * sample;
            detector.Next(std::span(&level, 1), settings);
        };
        for (int i = 0; i < 200000; ++i)
            next(i);
        EXPECT_NEAR(level, -20, 0.1);
        settings.isPower = toPower;
        for (int i = 0; i < 100; ++i) {
            next(i);
            ASSERT_NEAR(level, -20, 0.1) << toPower << " " << i;
        }
    }
}

// Held tones and hits, 30 dB above it, leave the noise what it is.
TEST(NoiseTracker, HearsTheNoiseBetweenTonesAndBetweenHits) {
    constexpr std::size_t kRate = 44100;
    const auto noise = test::Noise(2 * kRate, 1, 0.01F);
    auto tones = noise;
    auto hits = noise;
    const auto burst = test::Noise(2 * kRate, 2, 0.3F);
    for (std::size_t i = 0; i < noise.size(); ++i) {
        for (int partial = 1; partial <= 20; ++partial)
            tones[i] += 0.1F * static_cast<float>(std::sin(2 * std::numbers::pi * 311.0 * partial * i / kRate));
        if (i % 6000 < 1500) hits[i] += burst[i];
    }
    for (const auto& sound : {noise, tones, hits}) {
        NoiseTracker tracker;
        tracker.Prepare(kRate);
        int looks = 0;
        tracker.Hear(sound, [&](const NoiseTracker::Look& look) {
            const double mean = std::accumulate(look.noise.begin(), look.noise.end(), 0.0) / look.noise.size();
            EXPECT_NEAR(10 * std::log10(mean / (0.01 * 0.01 / 3)), 0, 3);
            ++looks;
        });
        EXPECT_GE(looks, 8);
    }
}

// What is quieter than -80 dB has no pitch.
TEST(PitchDetector, HearsFromItsQuietestLevelOn) {
    PitchDetector detector(2048);
    const double quietest = std::sqrt(2e-8); // of a sine whose mean square is 1e-8
    for (const auto& [level, isHeard] : {std::pair(0.97, false), {1.03, true}}) {
        const auto tone = test::Sine(441, 2048, 44100, level * quietest);
        EXPECT_EQ(detector.Detect(tone, 44100).has_value(), isHeard) << level;
    }
}

TEST(ChannelSide, MirrorsStandOnTheOtherSideAndMirrorBack) {
    for (std::size_t count = 1; count <= 32; ++count) {
        const auto layout = kromediatypes::AudioChannelLayout::ForChannelCount(count);
        const auto sides = SidesOf(layout);
        const auto mirrors = MirrorsOf(layout);
        for (std::size_t channel = 0; channel < count; ++channel) {
            EXPECT_EQ(mirrors[mirrors[channel]], channel) << count;
            EXPECT_EQ(mirrors[channel] == channel, sides[channel] == ChannelSide::kMiddle)
                << channel << " of " << count;
        }
    }
}

} // namespace
