#include "qoc/components/Reverb.h"

#include "MeasureReverb.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;
using test::Channels;

namespace {

struct Settings {
    double decay = 1500; // ms
    double predelay = 0; // ms
    double diffusion = 80;
    double perception = 20;
    double dry = 0;
    double wet = 100;
    bool sums = false;
};

void Set(AudioFilter& filter, const Settings& s) {
    const double natural[] = {s.decay, s.predelay, s.diffusion, s.perception, s.dry, s.wet, s.sums ? 1.0 : 0.0};
    for (int index = kReverbDecay; index <= kReverbSumInputs; ++index)
        filter.SetParameterValue(index,
                                 filter.GetParameterInfo(index)->ToNormalised(static_cast<float>(natural[index])));
}

boost::intrusive_ptr<AudioFilter> Prepared(const Settings& settings, std::size_t channels = 2, float rate = 44100) {
    boost::intrusive_ptr<AudioFilter> filter(new Reverb);
    Set(*filter, settings);
    filter->Prepare(rate, 8192, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

std::vector<float> ResponseOf(const Settings& settings, std::size_t channels, float rate, double seconds) {
    return test::ImpulseResponse(*Prepared(settings, channels, rate), static_cast<std::size_t>(seconds * rate))[0];
}

TEST(Reverb, DecaysBySixtyDecibelsInTheDecayTimeWhateverElseIsSet) {
    struct Case {
        Settings settings;
        std::size_t channels;
        float rate;
    };
    const Case cases[] = {
        {{.decay = 100}, 2, 44100},
        {{.decay = 300, .diffusion = 0, .perception = 100}, 1, 48000},
        {{.decay = 1000, .diffusion = 100, .perception = 0}, 2, 96000},
        {{.decay = 2500, .perception = 100}, 6, 44100},
        {{.decay = 6000, .predelay = 100}, 2, 44100},
        {{.decay = 1500, .sums = true}, 2, 192000},
    };
    for (const Case& each : cases) {
        const double decay = each.settings.decay / 1000;
        const auto response = ResponseOf(each.settings, each.channels, each.rate, 0.2 + 0.9 * decay);
        EXPECT_NEAR(test::DecayTime(response, each.rate) / decay, 1, 0.05) << decay << " s at " << each.rate;
    }
}

TEST(Reverb, TheLongestDecayLasts) {
    const auto response = ResponseOf({.decay = 20000}, 1, 44100, 14);
    EXPECT_NEAR(test::DecayTime(response, 44100, -5, -25) / 20, 1, 0.05);
}

TEST(Reverb, IsBitExactWithoutReverberation) {
    const Channels input = test::NoiseChannels(6, 20000, 1, 0.5F);
    EXPECT_TRUE(test::Processed(*Prepared({.dry = 100, .wet = 0}, 6), input) == input);
}

TEST(Reverb, TheFirstSoundComesAfterThePredelay) {
    for (const double predelay : {0.0, 35.0, 2000.0}) {
        const auto response = ResponseOf({.predelay = predelay}, 2, 48000, 2.5);
        const auto first = std::ranges::find_if(response, [](float sample) { return sample != 0; });
        EXPECT_EQ(first - response.begin(), std::lround(predelay * 48)) << predelay;
    }
}

// So that the wet level means the same at every setting: noise comes out as loud as it goes in.
TEST(Reverb, IsAsLoudAsTheSoundItself) {
    for (const double decay : {100.0, 800.0, 5000.0}) {
        for (const double perception : {0.0, 100.0}) {
            for (const std::size_t channels : {1, 2, 6}) {
                const auto response =
                    ResponseOf({.decay = decay, .perception = perception}, channels, 44100, 0.2 + decay / 1000);
                EXPECT_NEAR(10 * std::log10(test::Energy(response)), 0, 1)
                    << decay << " " << perception << " " << channels;
            }
        }
    }
}

TEST(Reverb, ChannelsReverberateApartUnlessTheyAreSummed) {
    const auto left = [](bool sums) {
        Channels input(2, std::vector<float>(44100));
        input[0] = test::Noise(44100, 1);
        const Channels output = test::Processed(*Prepared({.sums = sums}), input);
        return std::make_pair(test::Energy(output[0]), test::Energy(output[1]));
    };
    const auto apart = left(false);
    const auto summed = left(true);
    EXPECT_GT(apart.first, 1.3 * apart.second);
    EXPECT_NEAR(summed.first / summed.second, 1, 0.3);
}

TEST(Reverb, TheTailIsAllThatIsHeard) {
    for (const Settings& settings :
         {Settings{.decay = 100, .diffusion = 100}, Settings{.decay = 2000, .predelay = 500}}) {
        const auto filter = Prepared(settings);
        const std::size_t tail = filter->Tail();
        auto response = test::ImpulseResponse(*filter, 2 * tail)[0];
        const double all = test::Energy(response);
        response.erase(response.begin(), response.begin() + static_cast<std::ptrdiff_t>(tail));
        EXPECT_LT(10 * std::log10(test::Energy(response) / all), -80);
        EXPECT_GT(10 * std::log10(test::Energy(response) / all), -125); // and not far more
    }
}

TEST(Reverb, TheTailsOfTwoChannelsAreNotCorrelated) {
    const Channels tails = test::ImpulseResponse(*Prepared({.decay = 2000}), 88200);
    double product = 0;
    for (std::size_t i = 0; i < tails[0].size(); ++i)
        product += double{tails[0][i]} * tails[1][i];
    EXPECT_LT(std::abs(product) / std::sqrt(test::Energy(tails[0]) * test::Energy(tails[1])), 0.15);
}

TEST(Reverb, LeavesTheLowFrequencyEffectsAlone) {
    Channels input(6, std::vector<float>(20000));
    input[3] = test::Noise(20000, 1); // of 5.1
    const Channels output = test::Processed(*Prepared({.dry = 100}, 6), input);
    EXPECT_TRUE(output == input);
}

// What comes out is about as loud as the low tone that goes in, and so about as smooth.
TEST(Reverb, DoesNotClickWhileSettingsChange) {
    const auto filter = Prepared({});
    const Channels input = {test::Sine(200, 132300, 44100), test::Sine(200, 132300, 44100)};
    Channels output = input;
    test::Process(*filter, input, output, 0, 66150, 441);
    std::size_t at = 66150;
    for (const Settings& next : {Settings{.decay = 400, .predelay = 30}, Settings{.decay = 9000, .perception = 90},
                                 Settings{.predelay = 200, .diffusion = 5}, Settings{.wet = 30, .sums = true}}) {
        Set(*filter, next);
        test::Process(*filter, input, output, at, at + 3000, 441);
        at += 3000;
    }
    EXPECT_LT(test::Roughness(output[0], 66150, at), 3 * test::Roughness(input[0], 0, at));
}

TEST(Reverb, TellsItsLengthAndTheRatioOfTheLevels) {
    const auto filter = Prepared({.decay = 3000, .predelay = 250, .dry = 100, .wet = 50});
    const auto told = [&](int index) {
        return filter->GetParameterInfo(index)->ToNatural(filter->GetParameterValue(index));
    };
    EXPECT_NEAR(told(kReverbLength), 3.25, 1e-4);
    EXPECT_NEAR(told(kReverbDirectRatio), 6.0206, 1e-3);
    Set(*filter, {.dry = 100, .wet = 0});
    EXPECT_EQ(told(kReverbDirectRatio), 80);
    Set(*filter, {.dry = 0, .wet = 0});
    EXPECT_EQ(told(kReverbDirectRatio), 0);
}

} // namespace
