#include "qoc/components/IntraClip.h"

#include "AllocationCounter.h"
#include "SoundMaterial.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterQuality;
using kromediatypes::AudioChannelLayout;
using test::Channels;

namespace {

struct Restoration {
    double gain = 0; // dB
    double level = 0;
    bool findsLevel = false;
    bool usesSpectrum = true;
    double minimumSize = 2;
    int size = 2; // item
};

void SetNatural(AudioFilter& filter, int index, double natural) {
    filter.SetParameterValue(index, filter.GetParameterInfo(index)->ToNormalised(static_cast<float>(natural)));
}

boost::intrusive_ptr<AudioFilter> Prepared(const Restoration& settings, float rate = 44100, std::size_t channels = 1,
                                           AudioFilterQuality quality = AudioFilterQuality::kLive) {
    boost::intrusive_ptr<AudioFilter> filter(new IntraClip);
    filter->SetQuality(quality);
    SetNatural(*filter, kIntraClipGain, settings.gain);
    SetNatural(*filter, kIntraClipLevel, settings.level);
    SetNatural(*filter, kIntraClipFindLevel, settings.findsLevel);
    SetNatural(*filter, kIntraClipUseSpectrum, settings.usesSpectrum);
    SetNatural(*filter, kIntraClipMinimumSize, settings.minimumSize);
    SetNatural(*filter, kIntraClipFFTSize, settings.size);
    filter->Prepare(rate, 8192, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

// A melody with a peak of that many decibels, over the noise of a recording.
std::vector<float> Recording(double peak, double rate) {
    const auto frames = static_cast<std::size_t>(4 * rate);
    auto sound = test::Spoiled(test::Melody(frames, rate), test::Noise(frames, 31), 60);
    float largest = 0;
    for (const float sample : sound)
        largest = std::max(largest, std::abs(sample));
    for (float& sample : sound)
        sample *= static_cast<float>(std::pow(10, peak / 20)) / largest;
    return sound;
}

std::vector<float> Clipped(std::vector<float> sound, double level) {
    const auto limit = static_cast<float>(std::pow(10, level / 20));
    for (float& sample : sound)
        sample = std::clamp(sample, -limit, limit);
    return sound;
}

double Improvement(const std::vector<float>& clean, const std::vector<float>& clipped, AudioFilter& filter) {
    return test::SignalToNoise(clean, test::Processed(filter, {clipped})[0], filter.Latency()) -
           test::SignalToNoise(clean, clipped);
}

TEST(IntraClip, RestoresWhatWasSixDecibelsTooLoud) {
    for (const float rate : {44100.0F, 192000.0F}) {
        const auto clean = Recording(6, rate);
        EXPECT_GE(Improvement(clean, Clipped(clean, 0), *Prepared({}, rate)), 4) << rate;
        EXPECT_GE(Improvement(clean, Clipped(clean, 0), *Prepared({.usesSpectrum = false}, rate)), 4) << rate;
    }
}

double PeakOf(const std::vector<float>& sound) {
    double peak = 0;
    for (const float sample : sound)
        peak = std::max<double>(peak, std::abs(sample));
    return peak;
}

double DecibelsOver(double peak, double truePeak) {
    return 20 * std::log10(peak / truePeak);
}

// Gains in dB that each kind of sound has to reach at 3, 6 and 10 dB of clipping.
struct LeastGains {
    test::Material kind;
    std::array<double, 3> gains;
};

constexpr LeastGains kLeastGains[] = {{test::Material::kMelody, {20, 12, 6}}, {test::Material::kMusic, {0, 1, 1}},
                                      {test::Material::kDrums, {0, 0.2, 1}},  {test::Material::kSpeech, {6, 5, 3}},
                                      {test::Material::kChords, {10, 8, 5}},  {test::Material::kPad, {8, 8, 5}},
                                      {test::Material::kBrass, {2, 1, 1}},    {test::Material::kBass, {15, 10, 6}},
                                      {test::Material::kVowels, {4, 4, 2}},   {test::Material::kNoise, {0, 0, 0}}};

// Over every kind the mean at 6 dB is 8 dB, and nowhere does a peak come out much higher than it was.
TEST(IntraClip, EveryKindOfSoundGainsAndNoPeakIsOutOfProportion) {
    constexpr std::array kDecibels = {3.0, 6.0, 10.0};
    double sum = 0;
    for (const auto& [kind, least] : kLeastGains) {
        const auto sound = test::MakeMaterial(kind, 24000, 44100, 5)[0];
        for (std::size_t i = 0; i < kDecibels.size(); ++i) {
            auto clean = sound;
            const double scale = std::pow(10, kDecibels[i] / 20) / PeakOf(sound);
            for (float& sample : clean)
                sample *= static_cast<float>(scale);
            const auto clipped = Clipped(clean, 0);
            const auto filter = Prepared({}, 44100, 1, AudioFilterQuality::kRender);
            const auto output = test::Processed(*filter, {clipped})[0];
            const double gain =
                test::SignalToNoise(clean, output, filter->Latency()) - test::SignalToNoise(clean, clipped);
            const auto name = test::kMaterialNames[static_cast<std::size_t>(kind)];
            EXPECT_GE(gain, least[i]) << name << " clipped by " << kDecibels[i];
            EXPECT_LE(DecibelsOver(PeakOf(output), PeakOf(clean)), 3) << name << " clipped by " << kDecibels[i];
            if (kDecibels[i] == 6) sum += gain;
        }
    }
    EXPECT_GE(sum / std::size(kLeastGains), 8);
}

// One peak of three samples, too little to tell a level by, before the others are heard.
TEST(IntraClip, WhatWasListenedToTellsTheLevelFromTheStart) {
    const auto clean = test::Sine(4000, 20000, 44100, 0.8);
    auto clipped = Clipped(clean, -6);
    std::fill(clipped.begin() + 6, clipped.begin() + 8000, 0.0F);
    const auto firstPeak = [&](bool listens) {
        const auto filter = Prepared({.findsLevel = true});
        EXPECT_TRUE(filter->WantsToListen());
        const float* const inputs[] = {clipped.data()};
        if (listens) filter->Listen(inputs, clipped.size());
        const auto output = test::Processed(*filter, {clipped})[0];
        return *std::max_element(output.begin(), output.begin() + static_cast<std::ptrdiff_t>(filter->Latency()) + 40);
    };
    EXPECT_NEAR(firstPeak(false), std::pow(10, -6 / 20.0), 1e-6);
    EXPECT_GT(firstPeak(true), 0.53);
}

TEST(IntraClip, EveryFrameSizeRestores) {
    const auto clean = Recording(6, 44100);
    for (const int size : {0, 1, 2, 3, 4}) {
        const auto filter = Prepared({.size = size});
        EXPECT_EQ(filter->Latency(), (std::size_t{512} << size) * 5 / 4);
        EXPECT_GE(Improvement(clean, Clipped(clean, 0), *filter), 4) << size;
    }
}

// Clipped at -9 dB: found, or told. Without either nothing is clipped.
TEST(IntraClip, TheLevelIsFoundOrTold) {
    const auto clean = Recording(-3, 44100);
    const auto clipped = Clipped(clean, -9);
    EXPECT_GE(Improvement(clean, clipped, *Prepared({.findsLevel = true})), 4);
    EXPECT_GE(Improvement(clean, clipped, *Prepared({.level = -9})), 4);
    EXPECT_NEAR(Improvement(clean, clipped, *Prepared({})), 0, 0.01);
}

TEST(IntraClip, WhatIsNotClippedIsBitExactButLater) {
    for (const float rate : {44100.0F, 192000.0F}) {
        const auto sound = Recording(-1, rate);
        const Channels sounds = {sound, test::Sine(50, sound.size(), rate, 0.8), test::Sine(3001, sound.size(), rate),
                                 test::Noise(sound.size(), 3, 0.9F)};
        for (const bool finds : {false, true}) {
            const auto filter = Prepared({.findsLevel = finds}, rate, sounds.size());
            const Channels output = test::Processed(*filter, sounds);
            for (std::size_t channel = 0; channel < sounds.size(); ++channel) {
                EXPECT_TRUE(std::equal(output[channel].begin() + static_cast<std::ptrdiff_t>(filter->Latency()),
                                       output[channel].end(), sounds[channel].begin()))
                    << channel << " at " << rate << (finds ? " found" : "");
            }
        }
    }
}

TEST(IntraClip, RestoresTheSameInBlocksOfAnySizeAndAllocatesNothing) {
    const auto clipped = Clipped(Recording(6, 44100), 0);
    const auto run = [&](std::size_t block) {
        const auto filter = Prepared({.findsLevel = true});
        std::vector<float> output(clipped.size());
        for (std::size_t at = 0; at < clipped.size(); at += block) {
            const float* const inputs[] = {clipped.data() + at};
            float* const outputs[] = {output.data() + at};
            const std::size_t before = AllocationCount();
            filter->Process({inputs, outputs, std::min(block, clipped.size() - at)});
            EXPECT_EQ(AllocationCount(), before);
        }
        EXPECT_GT(*std::ranges::max_element(output), 1.5F);
        return output;
    };
    const auto expected = run(64);
    EXPECT_TRUE(run(1) == expected);
    EXPECT_TRUE(run(8192) == expected);
}

// A clipped sample was no lower than it is, and its neighbours are not touched.
TEST(IntraClip, RestoredSamplesLieBeyondTheClippingAndOthersStay) {
    const auto clipped = Clipped(Recording(6, 44100), 0);
    for (const bool usesSpectrum : {false, true}) {
        const auto filter = Prepared({.usesSpectrum = usesSpectrum});
        const auto output = test::Processed(*filter, {clipped})[0];
        std::size_t raised = 0;
        for (std::size_t i = 0; i + filter->Latency() < clipped.size(); ++i) {
            const float restored = output[i + filter->Latency()];
            if (std::abs(clipped[i]) < 0.99F) {
                ASSERT_EQ(restored, clipped[i]) << i;
            } else {
                ASSERT_GE(restored * clipped[i], 0.98F) << i;
                raised += std::abs(restored) > 1.05F ? 1 : 0;
            }
        }
        EXPECT_GT(raised, 1000U);
    }
}

// Of every half period, 7.35 samples, of a sine of 1.3, that within 40 degrees of the peak is clipped: 3.3 samples.
TEST(IntraClip, RunsShorterThanTheMinimumStay) {
    const auto clean = test::Sine(3000, 40000, 44100, 1.3);
    const auto clipped = Clipped(clean, 0);
    EXPECT_NEAR(Improvement(clean, clipped, *Prepared({.minimumSize = 5})), 0, 0.01);
    EXPECT_GT(Improvement(clean, clipped, *Prepared({.minimumSize = 3}, 44100, 1, AudioFilterQuality::kRender)), 20);
}

TEST(IntraClip, TheGainMakesRoom) {
    const auto sound = test::Noise(20000, 3, 0.5F);
    const auto filter = Prepared({.gain = -6});
    const auto output = test::Processed(*filter, {sound})[0];
    for (std::size_t i = 0; i + filter->Latency() < sound.size(); ++i)
        ASSERT_NEAR(output[i + filter->Latency()], sound[i] * std::pow(10, -6 / 20.0), 1e-6);
}

} // namespace
