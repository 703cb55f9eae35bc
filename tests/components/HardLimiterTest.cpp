#include "qoc/components/HardLimiter.h"

#include "MeasureLoudness.h"
#include "MeasureSound.h"
#include "SoundMaterial.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/spectrum/RealFFT.h"

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

// The largest magnitude of the sound at sixteen times its rate, in decibels: by the Fourier transform of all of it,
// which is exact whatever it holds just below half the rate. The end is faded out, where the sound is cut off.
double TruePeakDecibels(std::vector<float> sound) {
    constexpr std::size_t kFactor = 16;
    constexpr std::size_t kFade = 1000;
    for (std::size_t i = 0; i < kFade; ++i)
        sound[sound.size() - 1 - i] *= static_cast<float>(i) / kFade;
    std::size_t size = 1;
    while (size < sound.size() + kFade)
        size *= 2;
    sound.resize(size);
    const qoc::dsp::RealFFT whole(size);
    const qoc::dsp::RealFFT fine(kFactor * size);
    std::vector<std::complex<float>> spectrum(fine.Bins());
    whole.Forward(sound, std::span(spectrum).first(whole.Bins()));
    spectrum[whole.Bins() - 1] /= 2.0F; // half the rate stands once, from now on twice
    std::vector<float> interpolated(fine.Size());
    fine.Inverse(spectrum, interpolated);
    float largest = 0;
    for (const float sample : interpolated)
        largest = std::max(largest, std::abs(sample));
    return test::Decibels(kFactor * largest);
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
        test::Noise(kFrames, 2, 3), // every peak stands at the ceiling
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
    // The longest look-ahead is 20 ms; finding a peak takes 387 samples, and the gain stands still for 64 before it.
    constexpr std::size_t kLate = 960 + 387 + 64;
    EXPECT_EQ(filter->Latency(), kLate);
    for (std::size_t channel = 0; channel < 6; ++channel)
        EXPECT_TRUE(std::equal(output[channel].begin() + kLate, output[channel].end(), input[channel].begin()));
}

// A low tone of 0 dB boosted by 12 dB to a ceiling of -3 dB.
TEST(HardLimiter, ASteadyToneStandsAtTheCeiling) {
    const auto filter = Prepared({.ceiling = -3, .boost = 12});
    const auto output = test::Processed(*filter, {test::Sine(1000, 40000, 44100, 1)})[0];
    const double peak = *std::max_element(output.begin() + 20000, output.end());
    EXPECT_NEAR(test::Decibels(peak), -3.06, 0.06);
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

// Of the input that best explains it: what is left, in decibels of that.
double Distortion(const std::vector<float>& input, const std::vector<float>& output, std::size_t latency) {
    double both = 0;
    double in = 0;
    double out = 0;
    for (std::size_t i = input.size() / 2; i + latency < input.size(); ++i) {
        both += double{input[i]} * output[i + latency];
        in += std::pow(double{input[i]}, 2);
        out += std::pow(double{output[i + latency]}, 2);
    }
    return 10 * std::log10(std::max(in * out / (both * both) - 1, 1e-14));
}

// Driven 6 dB over. The gain must not follow the waves of a low tone, nor beats more than one that comes back with the
// release time after every peak: the figures of the last three are such a limiter's.
TEST(HardLimiter, SteadySoundIsHardlyDistorted) {
    constexpr std::size_t kFrames = 88200;
    struct Sum {
        std::vector<double> tones;
        double most; // dB
    };
    const Sum sums[] = {{{30}, -90},           {{50}, -90},           {{997}, -90},
                        {{60, 7000}, -85},     {{19000, 20000}, -90}, {{1000, 1020}, -28.1},
                        {{1000, 1010}, -21.5}, {{1000, 1005}, -17.6}, {{220, 277, 330}, -24.3}};
    for (const Sum& sum : sums) {
        std::vector<float> sound(kFrames);
        for (const double hertz : sum.tones) {
            const auto tone = test::Sine(hertz, kFrames, 44100, 1.0 / static_cast<double>(sum.tones.size()));
            std::ranges::transform(sound, tone, sound.begin(), std::plus{});
        }
        const auto filter = Prepared({.ceiling = -1, .boost = 5, .lookAhead = 7.1});
        const auto output = test::Processed(*filter, {sound})[0];
        EXPECT_LT(Distortion(sound, output, filter->Latency()), sum.most) << sum.tones.back();
    }
}

// Driven 7 dB over. The figures are 0.3 LU more than the quietest loss of free limiters whose true peaks are held to
// the same ceiling: 1.5 by the limiter of the LSP plug-ins 1.2.5; alimiter of ffmpeg 5.1 loses 1.9 and 2.4.
TEST(HardLimiter, DrumsAndMusicStayLoud) {
    constexpr float kRate = 48000;
    constexpr double kBoost = 11; // the loudest sample of the material is at -6 dB
    for (const auto kind : {test::Material::kDrums, test::Material::kMusic}) {
        const Channels sound = test::MakeMaterial(kind, 144000, kRate, 4);
        const auto filter = Prepared({.ceiling = -1, .boost = kBoost, .lookAhead = 7.1}, sound.size(), kRate);
        const double lost = test::Loudness(sound) + kBoost - test::Loudness(test::Processed(*filter, sound));
        EXPECT_LT(lost, 1.81) << test::kMaterialNames[static_cast<std::size_t>(kind)];
    }
}

// A single peak costs hardly any time, whatever the release is.
TEST(HardLimiter, TheGainComesBackSoonAfterASinglePeak) {
    const auto filter = Prepared({.ceiling = -20, .lookAhead = 5, .release = 200});
    std::vector<float> sound(20000, 0.01F);
    sound[10000] = 1;
    const auto output = test::Processed(*filter, {sound})[0];
    const std::size_t peak = 10000 + filter->Latency();
    EXPECT_LT(output[peak + 50], 0.0012F);
    EXPECT_GT(output[peak + 1100], 0.0097F); // 25 ms: look-ahead and five times 2 % of the release
}

TEST(HardLimiter, TheGainComesBackFromNothing) {
    const auto filter = Prepared({.ceiling = -100, .boost = 50, .lookAhead = 5, .release = 40});
    std::vector<float> sound(80000);
    std::fill_n(sound.begin(), 10000, 1e14F);
    std::fill(sound.begin() + 60000, sound.end(), 1e-9F);
    const auto output = test::Processed(*filter, {sound})[0];
    EXPECT_NEAR(output.back() / 3.16e-7, 1, 0.01);
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

// The second channel stands still, so that its output is the gain.
TEST(HardLimiter, ChannelsThatComeApartGoOnFromTheCommonGain) {
    constexpr std::size_t kHalf = 22050;
    const auto filter = Prepared({.ceiling = -6}, 2);
    const Channels input = {test::Sine(500, 2 * kHalf, 44100, 2), std::vector<float>(2 * kHalf, 0.1F)};
    Channels output = input;
    test::Process(*filter, input, output, 0, kHalf, 512);
    EXPECT_NEAR(output[1][kHalf - 1] / 0.1, 0.25, 0.02);
    Set(*filter, {.ceiling = -6, .linked = false});
    test::Process(*filter, input, output, kHalf, 2 * kHalf, 512);
    for (std::size_t i = kHalf; i < 2 * kHalf; ++i)
        ASSERT_NEAR(output[1][i], output[1][i - 1], 0.001) << i;
    EXPECT_NEAR(output[1].back() / 0.1, 1, 0.02);
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
