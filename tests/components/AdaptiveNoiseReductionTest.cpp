#include "qoc/components/AdaptiveNoiseReduction.h"

#include "MusicSound.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/restoration/NoiseTracker.h"
#include "qoc/dsp/restoration/SpectralGain.h"

#include <gtest/gtest.h>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;
using test::Channels;

namespace {

void SetNatural(AudioFilter& filter, int index, double natural) {
    filter.SetParameterValue(index, filter.GetParameterInfo(index)->ToNormalised(static_cast<float>(natural)));
}

boost::intrusive_ptr<AudioFilter> Made() {
    return new AdaptiveNoiseReduction;
}

void Prepare(AudioFilter& filter, float rate = 44100, std::size_t channels = 1) {
    filter.Prepare(rate, 8192, AudioChannelLayout::ForChannelCount(channels));
}

boost::intrusive_ptr<AudioFilter> Prepared(float rate = 44100, std::size_t channels = 1) {
    const auto filter = Made();
    Prepare(*filter, rate, channels);
    return filter;
}

double NoiseFloor(const AudioFilter& filter) {
    return filter.GetParameterInfo(kAdaptiveNoiseReductionNoiseFloor)
        ->ToNatural(filter.GetParameterValue(kAdaptiveNoiseReductionNoiseFloor));
}

// The start, where the noise is not known yet, counted in.
TEST(AdaptiveNoiseReduction, ImprovesTheRatioOfSignalAndNoiseBySixDecibels) {
    for (const float rate : {44100.0F, 192000.0F}) {
        const auto frames = static_cast<std::size_t>(6 * rate);
        const auto clean = test::Melody(frames, rate);
        for (const double ratio : {10.0, 20.0}) {
            const auto spoiled = test::Spoiled(clean, test::Noise(frames, 3), ratio);
            const auto filter = Prepared(rate);
            const auto output = test::Processed(*filter, {spoiled})[0];
            EXPECT_GE(test::SignalToNoise(clean, output, filter->Latency()), ratio + 6) << ratio << " at " << rate;
        }
    }
}

TEST(AdaptiveNoiseReduction, LeavesCleanSoundAlone) {
    for (const float rate : {44100.0F, 96000.0F}) {
        const auto clean = test::Melody(static_cast<std::size_t>(6 * rate), rate);
        const auto filter = Prepared(rate);
        const auto output = test::Processed(*filter, {clean})[0];
        EXPECT_GE(test::SignalToNoise(clean, output, filter->Latency()), 30) << rate;
    }
}

// A tone is no noise, however long it is held.
TEST(AdaptiveNoiseReduction, KeepsAHeldTone) {
    const auto tone = test::Spoiled(test::Sine(1000, 300000, 44100, 0.2), test::Noise(300000, 9), 40);
    const auto filter = Prepared();
    const auto output = test::Processed(*filter, {tone})[0];
    const auto end = [](const std::vector<float>& sound, std::size_t at) {
        return std::abs(test::ResponseAt(
            {sound.begin() + static_cast<std::ptrdiff_t>(at), sound.begin() + static_cast<std::ptrdiff_t>(at + 44100)},
            1000, 44100));
    };
    EXPECT_NEAR(test::Decibels(end(output, 250000) / end(tone, 250000 - filter->Latency())), 0, 0.5);
}

TEST(AdaptiveNoiseReduction, NoiseAloneGoesDownByWhatIsSet) {
    const auto noise = test::Noise(200000, 4, 0.1F);
    const std::vector<float> late(noise.begin() + 100000, noise.end());
    for (const double reduction : {0.0, 6.0, 12.0, 20.0}) {
        for (const bool isFine : {false, true}) {
            const auto filter = Made();
            SetNatural(*filter, kAdaptiveNoiseReductionReduceBy, reduction);
            SetNatural(*filter, kAdaptiveNoiseReductionHighQuality, isFine);
            Prepare(*filter);
            const auto output = test::Processed(*filter, {noise})[0];
            const std::vector<float> left(output.begin() + 100000, output.end());
            EXPECT_NEAR(10 * std::log10(test::Energy(left) / test::Energy(late)), -reduction, 0.15 * reduction + 0.05)
                << isFine;
        }
    }
}

// Uniform noise of amplitude a has the power a * a / 3.
TEST(AdaptiveNoiseReduction, TellsTheLevelOfTheNoise) {
    for (const float rate : {44100.0F, 96000.0F}) {
        const auto filter = Prepared(rate, 2);
        test::Processed(*filter, {test::Noise(300000, 5, 0.01F), test::Noise(300000, 6, 0.03F)});
        EXPECT_NEAR(NoiseFloor(*filter), test::Decibels(0.03 / std::sqrt(3.0)), 1) << rate;
    }
    const auto filter = Prepared();
    test::Processed(*filter, {std::vector<float>(50000)});
    EXPECT_NEAR(NoiseFloor(*filter), -120, 1e-3);
}

TEST(AdaptiveNoiseReduction, EveryFrameSizeBringsUntouchedSoundBackAFrameLater) {
    const auto noise = test::Noise(60000, 7);
    for (const int item : {0, 1, 2, 3, 4}) {
        for (const bool isFine : {false, true}) {
            const auto filter = Made();
            SetNatural(*filter, kAdaptiveNoiseReductionReduceBy, 0);
            SetNatural(*filter, kAdaptiveNoiseReductionFFTSize, item);
            SetNatural(*filter, kAdaptiveNoiseReductionHighQuality, isFine);
            Prepare(*filter);
            EXPECT_EQ(filter->Latency(), std::size_t{1024} << item);
            EXPECT_LT(test::NullDecibels(noise, test::Processed(*filter, {noise})[0], filter->Latency()), -110) << item;
        }
    }
}

// Values of Ephraim and Malah's formula, from E1(1) = 0.21938393 and E1(0.25) = 1.04428263 (Abramowitz and Stegun,
// table 5.1).
TEST(SpectralGain, IsThatOfTheLogarithmicSpectralAmplitude) {
    EXPECT_NEAR(SpectralGain::LogSpectralAmplitudeGain(1, 2), 0.5 * std::exp(0.5 * 0.21938393), 1e-6);
    EXPECT_NEAR(SpectralGain::LogSpectralAmplitudeGain(1, 0.5), 0.5 * std::exp(0.5 * 1.04428263), 1e-6);
    EXPECT_NEAR(SpectralGain::LogSpectralAmplitudeGain(1e4, 1e4), 1e4 / (1e4 + 1), 1e-9);
    EXPECT_EQ(SpectralGain::LogSpectralAmplitudeGain(1, 0), 1) << "bounded where the formula has a pole";
}

// Noise that grows by 12 dB at once is followed within two seconds, one that falls within a second.
TEST(NoiseTracker, FollowsTheLevelOfTheNoise) {
    constexpr std::size_t kBins = 400;
    constexpr int kFramesPerSecond = 50;
    std::mt19937 generator(1);
    std::exponential_distribution<float> power(1);
    NoiseTracker tracker;
    tracker.Prepare(kBins, kFramesPerSecond);
    std::vector<float> powers(kBins);
    const auto run = [&](double seconds, float level) {
        for (int i = 0; i < seconds * kFramesPerSecond; ++i) {
            std::ranges::generate(powers, [&] { return level * power(generator); });
            tracker.Update(powers, 5);
        }
        double sum = 0;
        for (const float noise : tracker.Noise())
            sum += noise;
        return sum / kBins / level;
    };
    EXPECT_NEAR(run(3, 1), 1, 0.2);
    EXPECT_NEAR(run(3, 16), 1, 0.2);
    EXPECT_NEAR(run(2, 0.1F), 1, 0.25);
}

} // namespace
