#include "MeasureSound.h"
#include "krocore/config/Error.h"
#include "qoc/components/EffectCatalogue.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

// What every effect of the catalogue does at the ends of what it can be set to and prepared for.

using namespace qoc::components;

namespace {

using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;
using test::Channels;
using Effect = boost::intrusive_ptr<AudioFilter>;

constexpr std::size_t kLargestBlock = 4096;
constexpr std::size_t kNoise = 3000; // frames of sound, and silence behind it

Effect Prepared(const EffectDescription& description, float rate, std::size_t channels = 2) {
    const Effect effect = description.create();
    effect->SetDuration(kNoise);
    effect->Prepare(rate, kLargestBlock, AudioChannelLayout::ForChannelCount(channels));
    return effect;
}

void ForEveryEffect(const std::function<void(const EffectDescription&)>& test) {
    for (const EffectDescription& description : AllEffects()) {
        if (description.create == nullptr) continue;
        SCOPED_TRACE(description.shortName);
        test(description);
    }
}

// Infinite where a sample is no number.
double PeakOf(const Channels& sound, std::size_t begin, std::size_t end) {
    double peak = 0;
    for (const auto& channel : sound) {
        for (std::size_t i = begin; i < std::min(end, channel.size()); ++i)
            peak = std::isfinite(channel[i]) ? std::max(peak, std::abs(double{channel[i]})) : INFINITY;
    }
    return peak;
}

// Everything at its lower end, everything at its upper one, then by turns a single parameter at an end and each of them
// at one or at its default. Returns what was set.
std::string GoToCorner(AudioFilter& effect, unsigned corner) {
    std::mt19937 generator(corner);
    const bool isSingle = corner >= 2 && corner % 2 == 0;
    const int single = static_cast<int>(generator() % static_cast<unsigned>(std::max(1, effect.GetParameterCount())));
    std::string told;
    for (int index = 0; index < effect.GetParameterCount(); ++index) {
        const auto* const info = effect.GetParameterInfo(index);
        const unsigned end = corner < 2 ? corner : generator() % (isSingle ? 2 : 3);
        if (info == nullptr || info->IsReadOnly() || end == 2 || (isSingle && index != single)) continue;
        effect.SetParameterValue(index, static_cast<float>(end));
        if (index < 40) told += info->GetID() + (end == 0 ? " lowest, " : " highest, ");
    }
    return told;
}

// Noise, and what is heard behind it: until the tail has ended, or for `seconds` of a longer one.
void ExpectSilenceAfterNoise(AudioFilter& effect, double seconds) {
    constexpr std::size_t kMargin = 1000;
    constexpr double kMostGrowth = 10; // at first: of resonances that feed each other
    const auto most = static_cast<std::size_t>(seconds * effect.GetSampleRate());
    const bool hasToEnd = effect.Tail() < most;
    const std::size_t ended = kNoise + effect.Latency() + (hasToEnd ? effect.Tail() : most);
    Channels sound = test::NoiseChannels(effect.GetNumberOfInputChannels(), kNoise, 5, 0.5F);
    for (auto& channel : sound)
        channel.resize(ended + kMargin);
    test::Process(effect, sound, sound, 0, ended + kMargin, kLargestBlock);
    const double loudest = PeakOf(sound, 0, ended);
    const double last = PeakOf(sound, ended, ended + kMargin);
    EXPECT_LT(loudest, INFINITY);
    EXPECT_LE(last, hasToEnd ? std::max(1e-3 * loudest, 1e-4) : kMostGrowth * std::max(loudest, 1.0))
        << "after " << loudest << ", tail " << effect.Tail();
}

TEST(EveryEffect, FallsSilentBehindItsTailAtTheEndsOfItsRanges) {
    struct Walk {
        float rate;
        unsigned corners;
        double seconds;
    };
    for (const Walk& walk : {Walk{1000, 4, 29}, Walk{8000, 12, 29}, Walk{44100, 4, 0.2}, Walk{192000, 4, 0.05}}) {
        ForEveryEffect([&](const EffectDescription& description) {
            for (unsigned corner = 0; corner < walk.corners; ++corner) {
                const Effect effect = description.create();
                const std::string told = GoToCorner(*effect, corner);
                effect->SetDuration(kNoise);
                SCOPED_TRACE(testing::Message() << walk.rate << " Hz, corner " << corner << ": " << told);
                effect->Prepare(walk.rate, kLargestBlock, AudioChannelLayout::ForChannelCount(2));
                ExpectSilenceAfterNoise(*effect, walk.seconds);
            }
        });
    }
}

// What an impulse becomes, against the graph; where it ends within the frames. Asked for one by one, since a graph
// shows the bottom of a notch at the place beside it.
TEST(EveryEqualiser, SoundsAsItsGraphTellsAtTheEndsOfItsRanges) {
    constexpr std::size_t kFrames = 20000;
    constexpr double kRange = 80;                                                 // dB below the loudest place
    constexpr double kPlaces[] = {0.0005, 0.0031, 0.017, 0.08, 0.21, 0.36, 0.46}; // of the sample rate
    int compared = 0;
    for (const std::string_view name : {"notch", "parametriceq", "graphiceq10bands", "graphiceq30bands"}) {
        for (unsigned corner = 0; corner < 12; ++corner) {
            const float rate = std::array{8000.0F, 44100.0F, 192000.0F}[corner % 3];
            const Effect effect = FindEffectByShortName(name)->create();
            const std::string told = GoToCorner(*effect, corner);
            effect->Prepare(rate, kLargestBlock, AudioChannelLayout::Mono());
            if (effect->Tail() > kFrames) continue;
            SCOPED_TRACE(testing::Message() << name << " at " << rate << " Hz, corner " << corner << ": " << told);
            const auto sound = test::ImpulseResponse(*effect, kFrames)[0];
            std::vector<float> graph;
            for (const double place : kPlaces) {
                std::vector<float> level;
                ASSERT_TRUE(effect->GetMagnitudeResponse(1, {place * rate, place * rate, false}, level));
                graph.push_back(level[0]);
            }
            for (std::size_t i = 0; i < graph.size(); ++i) {
                if (graph[i] < std::ranges::max(graph) - kRange) continue;
                EXPECT_NEAR(test::Decibels(std::abs(test::ResponseAt(sound, kPlaces[i], 1))), graph[i], 0.05)
                    << kPlaces[i];
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 150);
}

TEST(EveryEffect, ServesAnySampleRateThatItTakesAndRefusesOthersAsItWas) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    ForEveryEffect([](const EffectDescription& description) {
        const Effect effect = Prepared(description, 8000);
        for (const float rate : {0.0F, -0.0F, -44100.0F, 1e-30F, 100.0F, 999.0F, 2e6F, kInfinity, -kInfinity,
                                 std::numeric_limits<float>::quiet_NaN()}) {
            EXPECT_THROW(effect->Prepare(rate, 64, AudioChannelLayout::ForChannelCount(2)), krocore::config::Error)
                << rate;
        }
        EXPECT_EQ(effect->GetSampleRate(), 8000);
        ExpectSilenceAfterNoise(*effect, 0.1);
        for (const float rate : {1000.0F, 1001.5F, 1999.0F, 11025.0F, 22050.0F, 352800.0F, 768000.0F}) {
            SCOPED_TRACE(rate);
            ExpectSilenceAfterNoise(*Prepared(description, rate, 1), 0.01);
        }
    });
}

TEST(EveryEffect, ServesAnyLayoutThatItTakesAndRefusesOthersAsItWas) {
    ForEveryEffect([](const EffectDescription& description) {
        const Effect effect = Prepared(description, 8000);
        for (const std::size_t channels : {std::size_t{0}, AudioFilter::kMaximumChannels + 1, std::size_t{1000}}) {
            EXPECT_THROW(effect->Prepare(8000, 64, AudioChannelLayout::ForChannelCount(channels)),
                         krocore::config::Error)
                << channels;
        }
        EXPECT_EQ(effect->GetNumberOfInputChannels(), 2U);
        for (const std::size_t channels : {2U, 1U, 3U, 4U, 5U, 7U, 8U, 16U, 31U, 32U}) {
            SCOPED_TRACE(channels);
            effect->Prepare(8000, kLargestBlock, AudioChannelLayout::ForChannelCount(channels));
            Channels sound = test::NoiseChannels(channels, 600, 3, 0.5F);
            Channels output(effect->GetNumberOfOutputChannels(), std::vector<float>(600));
            test::Process(*effect, sound, output, 0, 600, 256);
            EXPECT_LT(PeakOf(output, 0, 600), 100);
        }
    });
}

} // namespace
