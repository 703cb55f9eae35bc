#include "qoc/components/EffectCatalogue.h"

#include "AllocationCounter.h"
#include "MeasureSound.h"
#include "qoc/components/ComponentIDs.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <set>

using namespace qoc::components;

namespace {

using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;
using test::Channels;

constexpr std::size_t kLargestBlock = 8192;

struct Format {
    float rate;
    std::size_t channels;
};

using MadeEffect = boost::intrusive_ptr<AudioFilter>;

// Calls for every effect that can process.
void ForEveryEffect(const Format& format, const std::function<void(const std::function<MadeEffect()>& make)>& test) {
    for (const EffectDescription& effect : AllEffects()) {
        if (effect.create == nullptr) continue;
        SCOPED_TRACE(std::string(effect.shortName) + " at " + std::to_string(format.rate) + ", channels " +
                     std::to_string(format.channels));
        test([&] {
            const auto filter = effect.create();
            filter->SetDuration(5.0 * format.rate);
            filter->Prepare(format.rate, kLargestBlock, AudioChannelLayout::ForChannelCount(format.channels));
            return filter;
        });
    }
}

// Sets about a third of the parameters anywhere.
void Shuffle(AudioFilter& filter, unsigned seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> value(0, 1);
    for (int index = 0; index < filter.GetParameterCount(); ++index) {
        if (filter.GetParameterInfo(index) != nullptr && value(generator) < 0.34F)
            filter.SetParameterValue(index, value(generator));
    }
}

// What every effect promises, whatever it does.
TEST(EveryEffect, GivesTheSameOutputInBlocksOfAnySize) {
    for (const Format& format : {Format{44100, 2}, Format{96000, 1}, Format{48000, 6}}) {
        ForEveryEffect(format, [&](const auto& make) {
            constexpr std::size_t kFrames = 40000;
            constexpr std::size_t kChange = 15000;
            const Channels input = test::NoiseChannels(format.channels, kFrames, 5, 0.5F);
            const auto run = [&](std::size_t block) {
                const MadeEffect filter = make();
                Channels output = input;
                test::Process(*filter, input, output, 0, kChange, block);
                Shuffle(*filter, 3);
                test::Process(*filter, input, output, kChange, kFrames, block);
                return output;
            };
            const Channels expected = run(64);
            for (const std::size_t block : {std::size_t{1}, std::size_t{997}, kLargestBlock})
                EXPECT_TRUE(run(block) == expected) << block;
        });
    }
}

TEST(EveryEffect, WorksInPlace) {
    ForEveryEffect({44100, 2}, [](const auto& make) {
        const Channels input = test::NoiseChannels(2, 20000, 7, 0.5F);
        Channels sound = input;
        test::Process(*make(), sound, sound, 0, 20000, 512);
        EXPECT_TRUE(sound == test::Processed(*make(), input));
    });
}

TEST(EveryEffect, RecoversFromBadSamples) {
    for (const Format& format : {Format{44100, 1}, Format{192000, 2}}) {
        ForEveryEffect(format, [&](const auto& make) {
            const MadeEffect filter = make();
            Channels input = test::NoiseChannels(format.channels, 3000, 9, 0.5F);
            input[0][100] = std::numeric_limits<float>::quiet_NaN();
            input[0][200] = -std::numeric_limits<float>::infinity();
            input[0][300] = std::numeric_limits<float>::max();
            input[0][400] = std::numeric_limits<float>::denorm_min();
            test::Processed(*filter, input);
            // Longer than any effect remembers.
            const Channels silence(format.channels, std::vector<float>(filter->Latency() + filter->Tail() + 50000));
            test::Processed(*filter, silence);
            const Channels after = test::Processed(*filter, test::NoiseChannels(format.channels, 30000, 11, 0.5F));
            for (const auto& channel : after)
                EXPECT_TRUE(std::ranges::all_of(channel, [](float sample) { return std::abs(sample) < 1000; }));
        });
    }
}

TEST(EveryEffect, AllocatesNothingInProcess) {
    ForEveryEffect({48000, 6}, [](const auto& make) {
        const MadeEffect filter = make();
        Channels sound = test::NoiseChannels(6, 3 * kLargestBlock, 13, 0.5F);
        for (unsigned seed = 0; seed < 4; ++seed) {
            Shuffle(*filter, seed);
            std::vector<float*> outputs;
            for (auto& channel : sound)
                outputs.push_back(channel.data());
            const std::vector<const float*> inputs(outputs.begin(), outputs.end());
            const std::size_t before = AllocationCount();
            filter->Process({inputs, outputs, kLargestBlock});
            filter->Process({inputs, outputs, 1});
            EXPECT_EQ(AllocationCount(), before);
        }
    });
}

TEST(EffectCatalogue, NamesEveryEffectOnceAndMakesWhatItNames) {
    std::set<std::u16string_view> ids;
    std::set<std::string_view> shortNames;
    std::set<krocore::string16> names;
    for (const EffectDescription& effect : AllEffects()) {
        ids.insert(effect.componentID);
        shortNames.insert(effect.shortName);
        names.insert(effect.DisplayName());
        const auto filter = CreateEffect(effect.componentID);
        ASSERT_EQ(filter != nullptr, effect.create != nullptr);
        if (filter != nullptr) {
            EXPECT_EQ(filter->GetComponentID(), effect.componentID);
        }
    }
    EXPECT_EQ(ids.size(), 28U);
    EXPECT_EQ(shortNames.size(), 28U);
    EXPECT_EQ(names.size(), 28U);
}

TEST(EffectCatalogue, FindsByShortNameInAnyCaseAndByExactIdentifier) {
    EXPECT_EQ(FindEffectByShortName("IntraClip")->componentID, kIntraClipComponentComponentID);
    EXPECT_EQ(FindEffectByShortName("AMPLIFY")->componentID, kAmplifyComponentID);
    EXPECT_EQ(FindEffectByShortName("amp"), nullptr);
    EXPECT_EQ(FindEffect(kDopplerComponentID)->shortName, "doppler");
    EXPECT_EQ(FindEffect(u"qoc.doppler"), nullptr);
    EXPECT_EQ(CreateEffect(u""), nullptr);
}

} // namespace
