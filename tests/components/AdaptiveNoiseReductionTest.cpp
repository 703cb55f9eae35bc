#include "qoc/components/AdaptiveNoiseReduction.h"

#include "SoundMaterial.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/restoration/NoiseProfile.h"
#include "qoc/dsp/restoration/SpectralGain.h"
#include "qoc/dsp/spectrum/RealFFT.h"

#include <gtest/gtest.h>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;
using test::Channels;
using test::Material;

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

// As a render does it: the sound is heard beforehand, and what comes out stands where it was.
Channels Rendered(AudioFilter& filter, const Channels& sound, float rate = 44100) {
    Prepare(filter, rate, sound.size());
    const std::vector<const float*> inputs = [&] {
        std::vector<const float*> pointers;
        for (const auto& channel : sound)
            pointers.push_back(channel.data());
        return pointers;
    }();
    filter.Listen(inputs, sound[0].size());
    const auto latency = static_cast<std::ptrdiff_t>(filter.Latency());
    Channels longer = sound;
    for (auto& channel : longer)
        channel.resize(channel.size() + filter.Latency());
    Channels output = test::Processed(filter, longer);
    for (auto& channel : output)
        channel.erase(channel.begin(), channel.begin() + latency);
    return output;
}

// Stationary noise, a kind of test::material a channel each.
std::vector<float> SteadyNoise(bool isPink, std::size_t frames, unsigned seed) {
    std::mt19937 generator(seed);
    return isPink ? test::material::PinkNoise(frames, generator) : test::Noise(frames, seed, 0.1F);
}

double DecibelsOf(const std::vector<float>& sound, const std::vector<float>& reference, std::size_t frames) {
    const auto begin = [&](const std::vector<float>& all) {
        return std::vector<float>(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(frames));
    };
    return 10 * std::log10(test::Energy(begin(sound)) / test::Energy(begin(reference)));
}

// Of the magnitudes in a short-time spectrum, each bin against its own mean square: 3.2 for Gaussian noise, more for
// noise with musical tones in it.
double MagnitudeKurtosis(const std::vector<float>& sound) {
    constexpr std::size_t kFrame = 1024;
    const RealFFT transform(kFrame);
    std::vector<std::vector<double>> magnitudes(transform.Bins());
    std::vector<float> frame(kFrame);
    std::vector<std::complex<float>> spectrum(transform.Bins());
    for (std::size_t start = 0; start + kFrame <= sound.size(); start += kFrame / 2) {
        for (std::size_t i = 0; i < kFrame; ++i)
            frame[i] = sound[start + i] * static_cast<float>(0.5 - 0.5 * std::cos(2 * std::numbers::pi * i / kFrame));
        transform.Forward(frame, spectrum);
        for (std::size_t bin = 0; bin < spectrum.size(); ++bin)
            magnitudes[bin].push_back(std::abs(spectrum[bin]));
    }
    double second = 0;
    double fourth = 0;
    double count = 0;
    for (std::size_t bin = 2; bin + 2 < magnitudes.size(); ++bin) {
        double square = 0;
        double mean = 0;
        for (const double magnitude : magnitudes[bin]) {
            square += magnitude * magnitude / static_cast<double>(magnitudes[bin].size());
            mean += magnitude / static_cast<double>(magnitudes[bin].size());
        }
        for (const double magnitude : magnitudes[bin]) {
            second += std::pow(magnitude - mean, 2) / square;
            fourth += std::pow(magnitude - mean, 4) / (square * square);
            ++count;
        }
    }
    return fourth / count / std::pow(second / count, 2);
}

TEST(AdaptiveNoiseReduction, KeepsCleanSoundOfEveryKind) {
    for (const Material kind :
         {Material::kMelody, Material::kMusic, Material::kDrums, Material::kSpeech, Material::kChords, Material::kPad,
          Material::kBrass, Material::kBass, Material::kVowels}) {
        constexpr int kRate = 22050;
        const Channels clean = test::MakeMaterial(kind, 2 * kRate, kRate, 3);
        const Channels output = Rendered(*Made(), clean, kRate);
        for (std::size_t channel = 0; channel < 2; ++channel)
            EXPECT_GE(test::SignalToNoise(clean[channel], output[channel]), kind == Material::kMusic ? 25 : 30)
                << test::kMaterialNames[static_cast<std::size_t>(kind)];
    }
}

// And no musical tones are left of it.
TEST(AdaptiveNoiseReduction, NoiseAloneGoesDownByWhatIsSetFromTheStartOfARender) {
    for (const bool isPink : {false, true}) {
        const std::vector<float> noise = SteadyNoise(isPink, 2 * 44100, 4);
        for (const double reduction : {0.0, 6.0, 20.0, 40.0}) {
            for (const int size : {0, 2, 4}) {
                const auto filter = Made();
                SetNatural(*filter, kAdaptiveNoiseReductionReduceBy, reduction);
                SetNatural(*filter, kAdaptiveNoiseReductionFFTSize, size);
                const std::vector<float> output = Rendered(*filter, {noise})[0];
                EXPECT_NEAR(DecibelsOf(output, noise, noise.size()), -reduction, 1) << isPink << ' ' << size;
                EXPECT_NEAR(DecibelsOf(output, noise, 4410), -reduction, 1) << isPink << ' ' << size;
                EXPECT_LE(MagnitudeKurtosis(output), 4) << isPink << ' ' << size << ' ' << reduction;
            }
        }
    }
}

// From few looks the noise is known less well: of 40 dB some may be missing.
TEST(AdaptiveNoiseReduction, ShortNoiseGoesDownByTheDefaultAndNotMuchLessThanByTheMost) {
    struct Case {
        double seconds;
        int size;
    };
    for (const Case& c : {Case{0.7, 2}, Case{1.0, 2}, Case{1.0, 4}}) {
        for (const unsigned seed : {5U, 6U, 7U, 8U}) {
            const auto frames = static_cast<std::size_t>(c.seconds * 44100);
            const std::vector<float> noise = SteadyNoise(seed % 2 == 0, frames, seed);
            const auto reduced = [&](double decibels) {
                const auto filter = Made();
                SetNatural(*filter, kAdaptiveNoiseReductionReduceBy, decibels);
                SetNatural(*filter, kAdaptiveNoiseReductionFFTSize, c.size);
                return DecibelsOf(Rendered(*filter, {noise})[0], noise, frames);
            };
            EXPECT_NEAR(reduced(20), -20, 1.5) << c.seconds << ' ' << seed << ' ' << c.size;
            EXPECT_LT(reduced(40), -25) << c.seconds << ' ' << seed << ' ' << c.size;
        }
    }
}

// The gains are those of ffmpeg's afftdn (nr=20, nf= the true level of the noise) on 8 s of such sounds.
TEST(AdaptiveNoiseReduction, GainsMoreThanAnotherReductionThatIsToldTheLevelOfTheNoise) {
    struct Case {
        bool isPink;
        double ratio;
        double gain;
    };
    const auto check = [](Material kind, std::span<const Case> cases) {
        const std::vector<float> clean = test::MakeMaterial(kind, 4 * 44100, 44100, 1)[0];
        for (const Case& one : cases) {
            const auto spoiled = test::Spoiled(clean, SteadyNoise(one.isPink, clean.size(), 78), one.ratio);
            const std::vector<float> output = Rendered(*Made(), {spoiled})[0];
            EXPECT_GE(test::SignalToNoise(clean, output) - one.ratio, one.gain)
                << test::kMaterialNames[static_cast<std::size_t>(kind)] << ' ' << one.isPink << ' ' << one.ratio;
        }
    };
    check(Material::kMusic, std::vector<Case>{{false, 10, 5.23}, {false, 15, 3.36}, {true, 10, 0.39}, {true, 20, 0}});
    check(Material::kSpeech,
          std::vector<Case>{{false, 10, 8.08}, {false, 20, 4.34}, {true, 10, 1.25}, {true, 20, 0.09}});
}

// The start, where the noise is not known yet, counted in.
TEST(AdaptiveNoiseReduction, ImprovesTheRatioOfSignalAndNoiseWhilePlaying) {
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

TEST(AdaptiveNoiseReduction, LearnsTheNoiseWithinASecondWhilePlaying) {
    const auto noise = test::Noise(200000, 4, 0.1F);
    const std::vector<float> late(noise.begin() + 50000, noise.end());
    for (const double reduction : {12.0, 40.0}) {
        for (const bool isFine : {false, true}) {
            const auto filter = Made();
            SetNatural(*filter, kAdaptiveNoiseReductionReduceBy, reduction);
            SetNatural(*filter, kAdaptiveNoiseReductionHighQuality, isFine);
            Prepare(*filter);
            const auto output = test::Processed(*filter, {noise})[0];
            const std::vector<float> left(output.begin() + 50000, output.end());
            EXPECT_NEAR(10 * std::log10(test::Energy(left) / test::Energy(late)), -reduction, 1) << isFine;
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

TEST(AdaptiveNoiseReduction, EveryFrameSizeBringsUntouchedSoundBackAFrameAndAHopLater) {
    const auto noise = test::Noise(60000, 7);
    for (const int item : {0, 1, 2, 3, 4}) {
        for (const bool isFine : {false, true}) {
            const auto filter = Made();
            SetNatural(*filter, kAdaptiveNoiseReductionReduceBy, 0);
            SetNatural(*filter, kAdaptiveNoiseReductionFFTSize, item);
            SetNatural(*filter, kAdaptiveNoiseReductionHighQuality, isFine);
            Prepare(*filter);
            const std::size_t frame = std::size_t{1024} << item;
            EXPECT_EQ(filter->Latency(), frame + frame / (isFine ? 8 : 4));
            EXPECT_LT(test::NullDecibels(noise, test::Processed(*filter, {noise})[0], filter->Latency()), -110) << item;
        }
    }
}

// Values of Ephraim and Malah's formula, from E1(1) = 0.21938393 and E1(0.25) = 1.04428263 (Abramowitz and Stegun,
// table 5.1).
TEST(SpectralGain, IsThatOfTheLogarithmicSpectralAmplitude) {
    constexpr float kPart = 0.01F;
    const double one = 0.5 * std::exp(0.5 * 0.21938393);
    const double quarter = 0.5 * std::exp(0.5 * 1.04428263);
    EXPECT_NEAR(SpectralGain::LogSpectralAmplitudeGain(1, 2), one, kPart * one);
    EXPECT_NEAR(SpectralGain::LogSpectralAmplitudeGain(1, 0.5), quarter, kPart * quarter);
    EXPECT_NEAR(SpectralGain::LogSpectralAmplitudeGain(1e4, 1e4), 1e4 / (1e4 + 1), 1e-6);
    EXPECT_EQ(SpectralGain::LogSpectralAmplitudeGain(1, 0), 1) << "bounded where the formula has a pole";
}

// Noise that grows by 12 dB at once is followed within three seconds, one that falls within a second.
TEST(NoiseProfile, FollowsTheLevelOfTheNoise) {
    constexpr std::size_t kRate = 44100;
    NoiseTracker tracker;
    NoiseProfile profile;
    tracker.Prepare(kRate);
    profile.Prepare(tracker.Bands(), 513, kRate);
    const auto run = [&](std::size_t seconds, float amplitude) {
        const auto noise = test::Noise(seconds * kRate, static_cast<unsigned>(seconds), amplitude);
        tracker.Hear(noise, [&](const NoiseTracker::Look& look) { profile.Add(look); });
        profile.Find(profile.Looks());
        double sum = 0;
        for (const float power : profile.Noise())
            sum += power;
        return sum / 513 / (test::Energy(noise) / static_cast<double>(noise.size()));
    };
    EXPECT_NEAR(run(2, 0.1F), 1, 0.15);
    EXPECT_NEAR(run(3, 0.4F), 1, 0.15);
    EXPECT_NEAR(run(1, 0.04F), 1, 0.25);
}

// What is heard beforehand is known around each place, and a pause that is digitally silent does not count.
TEST(NoiseProfile, KnowsEachPlaceOfASoundThatWasHeardBefore) {
    constexpr std::size_t kRate = 44100;
    NoiseTracker tracker;
    NoiseProfile profile;
    tracker.Prepare(kRate);
    profile.Prepare(tracker.Bands(), 513, kRate);
    const auto record = [&](const std::vector<float>& sound) {
        tracker.Hear(sound, [&](const NoiseTracker::Look& look) { profile.Record(look); });
    };
    record(test::Noise(10 * kRate, 1, 0.01F));
    record(std::vector<float>(5 * kRate));
    record(test::Noise(10 * kRate, 2, 0.1F));
    const auto levelAt = [&](std::size_t look) {
        profile.Find(look);
        return 10 * std::log10(profile.Noise()[200]);
    };
    const double quiet = 10 * std::log10(0.01 * 0.01 / 3);
    EXPECT_NEAR(levelAt(0), quiet, 1);
    EXPECT_NEAR(levelAt(55), quiet, 1) << "before the pause";
    EXPECT_NEAR(levelAt(85), quiet + 20, 1) << "behind it";
    EXPECT_NEAR(levelAt(profile.Looks()), quiet + 20, 1);
}

} // namespace
