#include "qoc/components/StudioReverb.h"

#include "MeasureReverb.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;
using test::Channels;

namespace {

struct Settings {
    double roomSize = 50;
    double decay = 1800; // ms
    double early = 0;
    double width = 100;
    double highCut = 20000;
    double lowCut = 20;
    double damping = 0;
    double diffusion = 90;
    double dry = 0;
    double wet = 100;
};

void Set(AudioFilter& filter, const Settings& s) {
    const double natural[] = {s.roomSize, s.decay,   s.early,     s.width, s.highCut,
                              s.lowCut,   s.damping, s.diffusion, s.dry,   s.wet};
    for (int index = kStudioReverbRoomSize; index <= kStudioReverbWet; ++index)
        filter.SetParameterValue(index,
                                 filter.GetParameterInfo(index)->ToNormalised(static_cast<float>(natural[index])));
}

boost::intrusive_ptr<AudioFilter> Prepared(const Settings& settings, std::size_t channels = 2, float rate = 44100) {
    boost::intrusive_ptr<AudioFilter> filter(new StudioReverb);
    Set(*filter, settings);
    filter->Prepare(rate, 8192, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

Channels ResponsesOf(const Settings& settings, std::size_t channels = 2, float rate = 44100, double seconds = 2) {
    return test::ImpulseResponse(*Prepared(settings, channels, rate), static_cast<std::size_t>(seconds * rate));
}

TEST(StudioReverb, DecaysBySixtyDecibelsInTheDecayTimeInRoomsOfAnySize) {
    struct Case {
        Settings settings;
        std::size_t channels;
        float rate;
    };
    const Case cases[] = {
        {{.roomSize = 0, .decay = 200}, 2, 44100},
        {{.roomSize = 100, .decay = 1000, .early = 50}, 1, 48000},
        {{.roomSize = 0, .decay = 5000}, 2, 44100},
        {{.decay = 2000, .diffusion = 0}, 6, 96000},
        {{.decay = 1500}, 2, 192000},
    };
    for (const Case& each : cases) {
        const double decay = each.settings.decay / 1000;
        const auto response = ResponsesOf(each.settings, each.channels, each.rate, 0.2 + 0.9 * decay)[0];
        EXPECT_NEAR(test::DecayTime(response, each.rate) / decay, 1, 0.05) << decay << " s at " << each.rate;
    }
}

TEST(StudioReverb, DampingShortensTheDecayOfHighFrequenciesOnly) {
    for (const float rate : {44100.0F, 96000.0F}) {
        const auto response = ResponsesOf({.decay = 2000, .damping = 50}, 2, rate, 2.2)[0];
        EXPECT_NEAR(test::DecayTime(test::Octave(response, 250, rate), rate), 2, 0.2) << rate;
        EXPECT_LT(test::DecayTime(test::Octave(response, 8000, rate), rate), 1.2) << rate;
        const auto undamped = ResponsesOf({.decay = 2000}, 2, rate, 2.2)[0];
        EXPECT_NEAR(test::DecayTime(test::Octave(undamped, 8000, rate), rate), 2, 0.2) << rate;
    }
}

TEST(StudioReverb, IsBitExactWithoutReverberation) {
    const Channels input = test::NoiseChannels(6, 20000, 1, 0.5F);
    EXPECT_TRUE(test::Processed(*Prepared({.early = 50, .dry = 100, .wet = 0}, 6), input) == input);
}

TEST(StudioReverb, CutsLieAtThreeDecibels) {
    const auto flat = ResponsesOf({.decay = 300})[0];
    const auto cut = ResponsesOf({.decay = 300, .highCut = 5000, .lowCut = 200})[0];
    for (const double hertz : {200.0, 5000.0}) {
        const double ratio =
            std::abs(test::ResponseAt(cut, hertz, 44100)) / std::abs(test::ResponseAt(flat, hertz, 44100));
        EXPECT_NEAR(test::Decibels(ratio), -3.01, 0.3) << hertz;
    }
}

TEST(StudioReverb, WidthGoesFromOneSoundInAllChannelsToSeparateOnesOfTheSamePower) {
    const Channels narrow = ResponsesOf({.width = 0});
    EXPECT_TRUE(narrow[0] == narrow[1]);
    const double power = test::Energy(ResponsesOf({.width = 100})[0]);
    for (const double width : {0.0, 50.0})
        EXPECT_NEAR(10 * std::log10(test::Energy(ResponsesOf({.width = width})[0]) / power), 0, 1) << width;
}

// The larger the room, the later its walls answer.
TEST(StudioReverb, EarlyReflectionsComeLaterFromLargerRooms) {
    const auto centreOfEarly = [](double size) {
        Channels with = ResponsesOf({.roomSize = size, .early = 100, .diffusion = 0}, 2, 44100, 0.5);
        const Channels without = ResponsesOf({.roomSize = size, .early = 0, .diffusion = 0}, 2, 44100, 0.5);
        double energy = 0;
        double moment = 0;
        for (std::size_t i = 0; i < with[0].size(); ++i) {
            const double early = double{with[0][i]} - without[0][i];
            energy += early * early;
            moment += early * early * static_cast<double>(i) / 44.1;
        }
        return moment / energy; // ms
    };
    const double small = centreOfEarly(0);
    const double middle = centreOfEarly(50);
    EXPECT_GT(small, 0.5);
    EXPECT_GT(middle, 2 * small);
    EXPECT_GT(centreOfEarly(100), 2 * middle);
}

TEST(StudioReverb, DoesNotClickWhileSettingsChange) {
    const auto filter = Prepared({.early = 30, .damping = 30});
    const Channels input = {test::Sine(200, 132300, 44100), test::Sine(200, 132300, 44100)};
    Channels output = input;
    test::Process(*filter, input, output, 0, 66150, 441);
    std::size_t at = 66150;
    for (const Settings& next :
         {Settings{.roomSize = 90, .early = 60}, Settings{.decay = 9000, .highCut = 900},
          Settings{.lowCut = 400, .damping = 90, .diffusion = 5}, Settings{.width = 0, .wet = 30}}) {
        Set(*filter, next);
        test::Process(*filter, input, output, at, at + 3000, 441);
        at += 3000;
    }
    EXPECT_LT(test::Roughness(output[0], 66150, at), 3 * test::Roughness(input[0], 0, at));
}

} // namespace
