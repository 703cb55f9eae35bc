#include "qoc/components/AutoClickRemover.h"

#include "AllocationCounter.h"
#include "SoundMaterial.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;
using test::Channels;

namespace {

boost::intrusive_ptr<AudioFilter> Prepared(float rate = 44100, std::size_t channels = 1) {
    boost::intrusive_ptr<AudioFilter> filter(new AutoClickRemover);
    filter->Prepare(rate, 8192, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

void SetNatural(AudioFilter& filter, int index, float natural) {
    filter.SetParameterValue(index, filter.GetParameterInfo(index)->ToNormalised(natural));
}

float Repairs(const AudioFilter& filter) {
    return filter.GetParameterInfo(kAutoClickRemoverRepairs)
        ->ToNatural(filter.GetParameterValue(kAutoClickRemoverRepairs));
}

// A click about every 40 ms: a burst of noise that dies away within 0.05 to 0.5 ms.
std::vector<float> Clicks(std::size_t frames, double rate, unsigned seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> uniform(0, 1);
    std::normal_distribution<double> normal;
    std::vector<float> clicks(frames);
    for (double at = 0.02 * rate; at + 0.01 * rate < static_cast<double>(frames);
         at += (0.02 + 0.04 * uniform(generator)) * rate) {
        const double length = (0.05 + 0.45 * uniform(generator)) * 1e-3 * rate;
        const double size = 0.3 + uniform(generator);
        for (int i = 0; i < length; ++i)
            clicks[static_cast<std::size_t>(at) + static_cast<std::size_t>(i)] =
                static_cast<float>(size * normal(generator) * std::exp(-2 * i / length));
    }
    return clicks;
}

// Music over a soft noise, as every recording has it.
std::vector<float> Recording(std::size_t frames, double rate) {
    const auto music = test::Melody(frames, rate);
    return test::Spoiled(music, test::Noise(frames, 21), 50);
}

TEST(AutoClickRemover, RepairsClicksAtEverySampleRate) {
    for (const float rate : {44100.0F, 192000.0F}) {
        const auto frames = static_cast<std::size_t>(2 * rate);
        const auto clean = Recording(frames, rate);
        const auto spoiled = test::Spoiled(clean, Clicks(frames, rate, 5), 18);
        const auto filter = Prepared(rate);
        const auto output = test::Processed(*filter, {spoiled})[0];
        EXPECT_GE(test::SignalToNoise(clean, output, filter->Latency()), 25) << rate;
        EXPECT_NEAR(Repairs(*filter), 50, 13) << "40 ms from one to the next";
    }
}

TEST(AutoClickRemover, LeavesCleanSoundAlone) {
    for (const float rate : {44100.0F, 192000.0F}) {
        const auto clean = Recording(static_cast<std::size_t>(2 * rate), rate);
        const auto filter = Prepared(rate);
        const auto output = test::Processed(*filter, {clean})[0];
        EXPECT_GE(test::SignalToNoise(clean, output, filter->Latency()), 40) << rate;
    }
    const auto noise = test::Noise(60000, 2);
    const auto filter = Prepared();
    const auto output = test::Processed(*filter, {noise})[0];
    EXPECT_TRUE(
        std::equal(output.begin() + static_cast<std::ptrdiff_t>(filter->Latency()), output.end(), noise.begin()))
        << "noise has nothing that stands out";
    EXPECT_EQ(Repairs(*filter), 0);
}

TEST(AutoClickRemover, RepairsTheSameInBlocksOfAnySizeAndAllocatesNothing) {
    const auto spoiled = test::Spoiled(Recording(60000, 44100), Clicks(60000, 44100, 9), 18);
    const auto run = [&](std::size_t block) {
        const auto filter = Prepared();
        Channels output = {std::vector<float>(spoiled.size())};
        const float* const input = spoiled.data();
        for (std::size_t at = 0; at < spoiled.size(); at += block) {
            const float* const inputs[] = {input + at};
            float* const outputs[] = {output[0].data() + at};
            const std::size_t before = AllocationCount();
            filter->Process({inputs, outputs, std::min(block, spoiled.size() - at)});
            EXPECT_EQ(AllocationCount(), before);
        }
        EXPECT_GT(Repairs(*filter), 10);
        return output;
    };
    const Channels expected = run(64);
    EXPECT_TRUE(run(1) == expected);
    EXPECT_TRUE(run(8192) == expected);
}

// 1 to 5 samples of random size and sign, three a second.
std::vector<float> ShortClicks(std::size_t frames, double rate, unsigned seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> uniform(-1, 1);
    std::vector<float> clicks(frames);
    for (double at = 0.1 * rate; at + 0.05 * rate < static_cast<double>(frames); at += rate / 3) {
        const std::size_t length = 1 + generator() % 5;
        const float size = uniform(generator);
        const auto place = static_cast<std::size_t>(at) + generator() % 1000;
        for (std::size_t i = 0; i < length; ++i)
            clicks[place + i] = std::copysign(0.5F + 0.5F * std::abs(uniform(generator)), uniform(generator)) *
                                (0.3F + 0.7F * std::abs(size));
    }
    return clicks;
}

// Pulses of voices and brass, dense chords and hits are no clicks, and stay; clicks on them go.
TEST(AutoClickRemover, KnowsClicksFromEveryKindOfSound) {
    using test::Material;
    double gains = 0;
    constexpr int kKinds = 10; // silence apart
    for (int kind = 0; kind < kKinds; ++kind) {
        const auto name = test::kMaterialNames[static_cast<std::size_t>(kind)];
        const float rate = kind % 4 == 3 ? 96000 : 44100;
        const auto clean =
            test::MakeMaterial(static_cast<Material>(kind), static_cast<std::size_t>(0.6 * rate), rate, 2)[0];
        const auto spoiled = test::Spoiled(clean, ShortClicks(clean.size(), rate, 3), 20);
        const auto filter = Prepared(rate, 2);
        Channels input = {clean, spoiled};
        for (auto& channel : input)
            channel.resize(channel.size() + filter->Latency());
        const Channels output = test::Processed(*filter, input);
        const bool isExact = kind == static_cast<int>(Material::kDrums) || kind == static_cast<int>(Material::kNoise);
        EXPECT_GT(test::SignalToNoise(clean, output[0], filter->Latency()), isExact ? 500 : 40) << name;
        const double gain = test::SignalToNoise(clean, output[1], filter->Latency()) - 20;
        EXPECT_GT(gain, 10) << name;
        gains += gain;
    }
    EXPECT_GT(gains / kKinds, 15);
}

// One sample beside a sine: only its near surroundings may change, and the sine is there again.
TEST(AutoClickRemover, OnlyTheSamplesOfAClickChange) {
    constexpr std::size_t kClick = 20000;
    const auto sine = test::Sine(1000, 40000, 44100, 0.3);
    Channels input(6, sine);
    input[2][kClick] += 0.3F;
    const auto filter = Prepared(44100, 6);
    const Channels output = test::Processed(*filter, input);
    const std::size_t latency = filter->Latency();
    for (std::size_t channel = 0; channel < input.size(); ++channel) {
        for (std::size_t i = 4000; i + latency < sine.size(); ++i) {
            const bool isNear = channel == 2 && i + 4 > kClick && i < kClick + 4;
            ASSERT_NEAR(output[channel][i + latency], sine[i], isNear ? 1e-3 : 0) << channel << " " << i;
        }
    }
    EXPECT_EQ(Repairs(*filter), 1);
}

// The same clicks: the lower the threshold, the more are found, however soft.
TEST(AutoClickRemover, TheThresholdDecidesWhatIsAClick) {
    const auto clean = Recording(88200, 44100);
    const auto spoiled = test::Spoiled(clean, Clicks(88200, 44100, 6), 40);
    float before = 1e6F;
    for (const float threshold : {10.0F, 30.0F, 90.0F}) {
        const auto filter = Prepared();
        SetNatural(*filter, kAutoClickRemoverThreshold, threshold);
        test::Processed(*filter, {spoiled});
        EXPECT_LT(Repairs(*filter), before) << threshold;
        before = Repairs(*filter);
    }
}

// A burst of 3 ms: for the default complexity, up to 1.3 ms, that is no click.
TEST(AutoClickRemover, MoreComplexityRepairsLongerClicks) {
    constexpr std::size_t kBurst = 30000;
    const auto clean = Recording(60000, 44100);
    auto spoiled = clean;
    const auto noise = test::Noise(132, 8, 0.5F);
    for (std::size_t i = 0; i < noise.size(); ++i)
        spoiled[kBurst + i] += noise[i];
    const auto ratioWith = [&](float complexity) {
        const auto filter = Prepared();
        SetNatural(*filter, kAutoClickRemoverComplexity, complexity);
        return test::SignalToNoise(clean, test::Processed(*filter, {spoiled})[0], filter->Latency());
    };
    const double before = test::SignalToNoise(clean, spoiled);
    EXPECT_NEAR(ratioWith(16), before, 2);
    EXPECT_GT(ratioWith(80), before + 6);
}

// A sound that starts out of silence surprises from the front alone, at whatever level.
TEST(AutoClickRemover, TheStartOfASoundIsNoClick) {
    std::vector<float> sound(40000);
    const auto sine = test::Sine(440, 20000, 44100, 0.5);
    std::copy(sine.begin() + 25, sine.end(), sound.begin() + 15000);
    const auto filter = Prepared();
    const auto output = test::Processed(*filter, {sound})[0];
    EXPECT_GT(test::SignalToNoise(sound, output, filter->Latency()), 40);
}

} // namespace
