#include "qoc/components/HardLimiter.h"

#include "MeasureSound.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;
using test::Channels;

namespace {

struct Limits {
    double ceiling = -1; // dB
    double boost = 0;    // dB
    double lookAhead = 7;
    double release = 100;
    bool linked = true;
};

void Set(AudioFilter& filter, const Limits& limits) {
    const double stored[] = {(limits.ceiling + 100) / 100, (limits.boost + 100) / 150, (limits.lookAhead - 5) / 15,
                             (limits.release - 40) / 160, limits.linked ? 1.0 : 0.0};
    for (int index = kHardLimiterMaximumAmplitude; index <= kHardLimiterLinkChannels; ++index)
        filter.SetParameterValue(index, static_cast<float>(stored[index]));
}

boost::intrusive_ptr<AudioFilter> Prepared(const Limits& limits, std::size_t channels = 1, float rate = 44100) {
    boost::intrusive_ptr<AudioFilter> filter(new HardLimiter);
    Set(*filter, limits);
    filter->Prepare(rate, 8192, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

// The largest magnitude of the sound at sixteen times its rate, in decibels: a sinc of 160 samples under a Hann window,
// in double precision, longer and finer than what the limiter itself looks with.
double TruePeakDecibels(const std::vector<float>& sound) {
    constexpr int kReach = 80;
    constexpr int kPhases = 16;
    double largest = 0;
    for (int phase = 0; phase < kPhases; ++phase) {
        std::vector<double> weights;
        for (int tap = 1 - kReach; tap <= kReach; ++tap) {
            const double angle = std::numbers::pi * (tap - static_cast<double>(phase) / kPhases);
            const double sinc = angle == 0 ? 1 : std::sin(angle) / angle;
            weights.push_back(sinc * (0.5 + 0.5 * std::cos(angle / kReach)));
        }
        for (std::size_t start = 0; start + weights.size() <= sound.size(); ++start) {
            double sum = 0;
            for (std::size_t i = 0; i < weights.size(); ++i)
                sum += weights[i] * sound[start + i];
            largest = std::max(largest, std::abs(sum));
        }
    }
    return test::Decibels(largest);
}

TEST(HardLimiter, NoTruePeakRisesAboveTheCeiling) {
    constexpr std::size_t kFrames = 12000;
    const auto sign = [](float x) { return x < 0 ? -1.0F : 1.0F; };
    std::vector<float> signs = test::Noise(kFrames, 3);
    std::ranges::transform(signs, signs.begin(), sign);
    std::vector<float> square = test::Sine(440.7, kFrames, 44100);
    std::ranges::transform(square, square.begin(), sign);
    std::vector<float> impulses(kFrames);
    for (std::size_t i = 100; i < kFrames; i += 517)
        impulses[i] = i % 2 == 0 ? 3.0F : -2.0F;
    const std::vector<float> sounds[] = {
        test::Noise(kFrames, 1),
        signs,
        square,
        impulses,
        test::Sine(11026, kFrames, 44100, 1.4), // its samples stand 45 degrees beside its peaks at times
        test::Sine(19500, kFrames, 44100, 2),
    };
    const Limits settings[] = {{.lookAhead = 5, .release = 40}, {.ceiling = -20, .boost = 15, .lookAhead = 20}};
    for (const auto& sound : sounds) {
        for (const Limits& limits : settings) {
            for (const float rate : {44100.0F, 96000.0F}) {
                const auto filter = Prepared(limits, 1, rate);
                const auto output = test::Processed(*filter, {sound})[0];
                EXPECT_LT(TruePeakDecibels(output), limits.ceiling + 0.05) << &sound - sounds << " at " << rate;
            }
        }
    }
}

TEST(HardLimiter, WhatStaysBelowTheCeilingIsBitExactButLater) {
    const auto filter = Prepared({.ceiling = 0}, 6, 48000);
    const Channels input = test::NoiseChannels(6, 20000, 1, 0.1F);
    const Channels output = test::Processed(*filter, input);
    // The longest look-ahead is 20 ms; finding a peak takes 67 samples, and the gain stands still for 32 before it.
    EXPECT_EQ(filter->Latency(), 960U + 99);
    for (std::size_t channel = 0; channel < 6; ++channel)
        EXPECT_TRUE(std::equal(output[channel].begin() + 1059, output[channel].end(), input[channel].begin()));
}

// A low tone of 0 dB boosted by 12 dB to a ceiling of -3 dB.
TEST(HardLimiter, ASteadyToneStandsAtTheCeiling) {
    const auto filter = Prepared({.ceiling = -3, .boost = 12});
    const auto output = test::Processed(*filter, {test::Sine(1000, 40000, 44100, 1)})[0];
    const double peak = *std::max_element(output.begin() + 20000, output.end());
    EXPECT_NEAR(test::Decibels(peak), -3, 0.1);
}

// After a burst that took 20 dB away, what is missing of the gain shrinks by 1 / e in the release time.
TEST(HardLimiter, TheReleaseTimeIsTheTimeConstant) {
    for (const double release : {40.0, 200.0}) {
        const auto filter = Prepared({.ceiling = -20, .lookAhead = 5, .release = release});
        std::vector<float> sound(44100, 0.01F);
        std::fill(sound.begin() + 1000, sound.begin() + 3000, 1.0F);
        const auto output = test::Processed(*filter, {sound})[0];
        const auto gainAt = [&](double seconds) {
            return output[static_cast<std::size_t>(44100 * seconds) + filter->Latency()] / 0.01;
        };
        const double early = 0.15;
        const double missing = (1 - gainAt(early + release / 1000)) / (1 - gainAt(early));
        EXPECT_NEAR(missing, std::exp(-1.0), 0.05 * std::exp(-1.0)) << release;
    }
}

// A step of the level by 20 dB: the gain has gone down when the step comes, and began to not earlier than the
// look-ahead before it.
TEST(HardLimiter, TheGainGoesDownWithinTheLookAhead) {
    for (const double lookAhead : {5.0, 12.0, 20.0}) {
        const auto filter = Prepared({.ceiling = -20, .lookAhead = lookAhead});
        std::vector<float> sound(30000, 0.05F);
        std::fill(sound.begin() + 15000, sound.end(), 1.0F);
        const auto output = test::Processed(*filter, {sound})[0];
        const std::size_t step = 15000 + filter->Latency();
        const auto reach = static_cast<std::size_t>(lookAhead * 44.1);
        // The overshoot of the step's interpolation reaches 64 samples ahead of it, and the gain stands still for 32.
        EXPECT_EQ(output[step - reach - 100], 0.05F) << lookAhead;
        EXPECT_LT(output[step - reach / 2], 0.047F);
        EXPECT_LT(output[step], 0.1F);
        EXPECT_LT(test::Roughness(output, 5000, step - 100), 0.05 * 4 / static_cast<double>(reach * reach) * 1.3);
    }
}

TEST(HardLimiter, LinkedChannelsShareTheGain) {
    Channels input = {test::Sine(500, 20000, 44100, 2), test::Sine(700, 20000, 44100, 0.3)};
    const Channels linked = test::Processed(*Prepared({.ceiling = -6}, 2), input);
    const Channels alone = test::Processed(*Prepared({.ceiling = -6, .linked = false}, 2), input);
    const auto peak = [](const std::vector<float>& s) { return *std::max_element(s.begin() + 10000, s.end()); };
    EXPECT_NEAR(peak(linked[0]) / peak(linked[1]), 2 / 0.3, 0.1);
    EXPECT_NEAR(peak(alone[1]), 0.3, 1e-3);
    EXPECT_NEAR(peak(alone[0]), peak(linked[0]), 1e-3);
}

// In bursts of noise the gain is on its way most of the time.
TEST(HardLimiter, TheCeilingHoldsWhileOtherSettingsChange) {
    constexpr std::size_t kBurst = 700;
    const Channels noise = test::NoiseChannels(1, 42 * kBurst);
    Channels bursts = noise;
    for (std::size_t i = 0; i < bursts[0].size(); ++i)
        bursts[0][i] *= i / kBurst % 3 == 0 ? 1.0F : 0.05F;
    const double lookAheads[] = {20, 5, 13, 6, 19, 7};
    const auto changed = [&](const Channels& input, std::size_t every, bool withBoost) {
        const auto filter = Prepared({.ceiling = -3, .boost = 10});
        Channels output = input;
        for (std::size_t step = 0; step * every < input[0].size(); ++step) {
            const double lookAhead = lookAheads[step % std::size(lookAheads)];
            const double boost = withBoost ? lookAhead : 10;
            Set(*filter, {.ceiling = -3, .boost = boost, .lookAhead = lookAhead, .release = lookAhead * 10});
            test::Process(*filter, input, output, step * every, (step + 1) * every, 300);
        }
        return TruePeakDecibels(output[0]);
    };
    EXPECT_LT(changed(noise, 7 * kBurst, true), -3 + 0.05);
    EXPECT_LT(changed(bursts, kBurst, false), -3 + 0.05);
}

} // namespace
