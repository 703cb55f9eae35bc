#include "AllocationCounter.h"
#include "EffectWalk.h"

#include <gtest/gtest.h>

#include <limits>

using namespace qoc::components;

namespace {

using kroaudiofilterhost::AudioFilter;
using test::Channels;
using test::Format;
using test::MadeEffect;
using test::Settings;

constexpr Format kStereo = {44100, 2};

// All that can be learnt of an effect from outside.
struct Outside {
    std::size_t latency;
    std::size_t tail;
    Channels sound;
    Settings settings; // with what it tells by now
    std::vector<float> response;

    bool operator==(const Outside&) const = default;
};

Outside Hear(AudioFilter& filter, const Channels& input) {
    Outside outside{.latency = filter.Latency(),
                    .tail = filter.Tail(),
                    .sound = test::Processed(filter, input, 777),
                    .settings = test::SettingsOf(filter),
                    .response = {}};
    filter.GetMagnitudeResponse(50, {20, 7000, true}, outside.response);
    return outside;
}

Channels SoundFor(const AudioFilter& filter, unsigned seed) {
    constexpr std::size_t kMostLatency = 20000;
    const std::size_t frames = std::min(filter.Latency(), kMostLatency) + 6000;
    return test::BusySound(filter.GetNumberOfInputChannels(), frames, filter.GetSampleRate(), seed);
}

// One that has sounded under settings that changed meanwhile, the last time since it sounded.
MadeEffect Used(const EffectDescription& effect, unsigned seed) {
    MadeEffect filter = effect.create();
    test::Shuffle(*filter, seed);
    test::Prepare(*filter, kStereo);
    test::Processed(*filter, test::BusySound(2, 7001, kStereo.rate, seed));
    test::Shuffle(*filter, seed + 100);
    test::Processed(*filter, SoundFor(*filter, seed));
    test::Shuffle(*filter, seed + 200);
    return filter;
}

// The same, but that it has not sounded.
MadeEffect Unused(const EffectDescription& effect, unsigned seed) {
    MadeEffect filter = effect.create();
    test::Shuffle(*filter, seed);
    test::Prepare(*filter, kStereo);
    test::Shuffle(*filter, seed + 100);
    test::Shuffle(*filter, seed + 200);
    return filter;
}

TEST(EveryEffect, IsAsNewAfterAResetAndAfterEveryPreparation) {
    test::ForEveryEffect([](const EffectDescription& effect) {
        for (unsigned seed = 1; seed <= 3; ++seed) {
            const MadeEffect used = Used(effect, seed);
            used->Reset();
            const MadeEffect unused = Unused(effect, seed);
            unused->Reset();
            const Channels sound = SoundFor(*used, seed + 7);
            EXPECT_TRUE(Hear(*used, sound) == Hear(*unused, sound)) << "reset, seed " << seed;
            for (const Format& format : {Format{16000, 3}, kStereo}) {
                test::Prepare(*used, format);
                const MadeEffect fresh = test::Prepared(effect, format, test::SettingsOf(*used));
                const Channels other = SoundFor(*used, seed + 7);
                EXPECT_TRUE(Hear(*used, other) == Hear(*fresh, other)) << format.rate << " Hz, seed " << seed;
            }
        }
    });
}

// How the same sound may be cut, with parameters that change at the same places.
struct Cut {
    std::vector<std::size_t> blocks; // by turns
    bool inPlace = false;
};

Channels ProcessedCut(AudioFilter& filter, const Channels& input, const Cut& cut) {
    constexpr std::size_t kChangeEvery = 9000;
    Channels output = input;
    const std::size_t frames = input.front().size();
    std::size_t turn = 0;
    for (std::size_t start = 0; start < frames;) {
        const std::size_t change = start / kChangeEvery;
        if (start == change * kChangeEvery && change > 0) test::Shuffle(filter, static_cast<unsigned>(change));
        const std::size_t next = std::min((change + 1) * kChangeEvery, frames);
        const std::size_t end = std::min(next, start + cut.blocks[turn++ % cut.blocks.size()]);
        test::Process(filter, cut.inPlace ? output : input, output, start, end, test::kLargestBlock);
        start = end;
    }
    return output;
}

TEST(EveryEffect, GivesTheSameOutputInBlocksOfAnySizeAndInPlace) {
    const Cut cuts[] = {{{1, 63, 2, 4096, 500, 3}}, {{test::kLargestBlock}}, {{997}, true}};
    test::ForEveryEffect([&](const EffectDescription& effect) {
        for (const Format& format : {Format{44100, 2}, Format{22050, 3}}) {
            const Channels input = test::BusySound(format.channels, 29000, format.rate, 5);
            const Channels expected = ProcessedCut(*test::Prepared(effect, format), input, {{64}});
            for (const Cut& cut : cuts)
                EXPECT_TRUE(ProcessedCut(*test::Prepared(effect, format), input, cut) == expected) << cut.blocks[0];
        }
    });
    // Nothing but blocks of one sample, for a shorter time.
    test::ForEveryEffect([](const EffectDescription& effect) {
        const Channels input = test::BusySound(1, 11000, 48000, 6);
        EXPECT_TRUE(ProcessedCut(*test::Prepared(effect, {48000, 1}), input, {{1}}) ==
                    ProcessedCut(*test::Prepared(effect, {48000, 1}), input, {{512}}));
    });
}

TEST(EveryEffect, AllocatesNothingInProcess) {
    test::ForEveryEffect([](const EffectDescription& effect) {
        const MadeEffect filter = test::Prepared(effect, {48000, 3});
        Channels sound = test::BusySound(3, test::kLargestBlock, 48000, 13);
        std::vector<float*> outputs;
        for (auto& channel : sound)
            outputs.push_back(channel.data());
        const std::vector<const float*> inputs(outputs.begin(), outputs.end());
        for (unsigned seed = 0; seed < 4; ++seed) {
            test::Shuffle(*filter, seed);
            const std::size_t before = AllocationCount();
            filter->Process({inputs, outputs, test::kLargestBlock});
            filter->Process({inputs, outputs, 1});
            EXPECT_EQ(AllocationCount(), before);
        }
    });
}

// Denormal numbers count as zero, which is what keeps sound that decays from becoming dear; they may only pass.
TEST(EveryEffect, MakesNoDenormalNumbers) {
    const float tinyValue = 4e-39F;
    test::ForEveryEffect([&](const EffectDescription& effect) {
        for (unsigned seed = 1; seed <= 3; ++seed) {
            const MadeEffect filter = effect.create();
            test::Shuffle(*filter, seed);
            test::Prepare(*filter, kStereo);
            const Channels tiny(2,
                                std::vector<float>(std::min<std::size_t>(filter->Latency(), 20000) + 2000, tinyValue));
            const Channels sound = test::Processed(*filter, tiny);
            for (const auto& channel : sound)
                EXPECT_TRUE(
                    std::ranges::all_of(channel, [&](float value) { return value == 0 || value == tinyValue; }));
        }
    });
}

TEST(EveryEffect, BadSamplesLeaveNothingBehindOnceTheyHavePassed) {
    constexpr float kBad[] = {std::numeric_limits<float>::quiet_NaN(), -std::numeric_limits<float>::infinity(),
                              std::numeric_limits<float>::max(), -1e20F, std::numeric_limits<float>::denorm_min()};
    test::ForEveryEffect([&](const EffectDescription& effect) {
        for (unsigned seed = 0; seed < 3; ++seed) {
            const MadeEffect filter = effect.create();
            if (seed > 0) test::Shuffle(*filter, seed);
            test::Prepare(*filter, {44100, 2});
            Channels input = test::NoiseChannels(2, 3000, 9, 0.3F);
            for (std::size_t i = 0; i < 200; ++i)
                input[seed % 2][700 + i] = kBad[i % std::size(kBad)];
            test::Processed(*filter, input);
            const std::size_t passed = std::min<std::size_t>(filter->Latency() + filter->Tail() + 30000, 300000);
            test::Processed(*filter, Channels(2, std::vector<float>(passed)));
            const Channels after = test::Processed(*filter, test::NoiseChannels(2, filter->Latency() + 8000, 11, 0.5F));
            for (const auto& channel : after)
                EXPECT_TRUE(std::ranges::all_of(channel, [](float sample) { return std::abs(sample) < 1000; })) << seed;
            // And after a reset, nothing at all.
            filter->Reset();
            const MadeEffect fresh = test::Prepared(effect, {44100, 2}, test::SettingsOf(*filter));
            const Channels sound = test::BusySound(2, filter->Latency() + 2000, 44100, 3);
            EXPECT_TRUE(test::Processed(*filter, sound) == test::Processed(*fresh, sound)) << seed;
        }
    });
}

} // namespace
