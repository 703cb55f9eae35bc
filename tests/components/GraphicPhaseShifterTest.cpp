#include "qoc/components/GraphicPhaseShifter.h"

#include "MeasureSound.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;
using test::Channels;

namespace {

struct Node {
    double hertz;
    double degrees;
};

struct DrawnPhase {
    std::vector<Node> nodes = {};
    double rate = 44100;
    double size = 16384;
    double range = 180;
    bool isLinear = false;
    int channel = 0;
    std::size_t channels = 1;
};

double PlaceOf(double hertz, const DrawnPhase& setup) {
    const double nyquist = setup.rate / 2;
    return setup.isLinear ? (hertz - 20) / (nyquist - 20) : std::log(hertz / 20) / std::log(nyquist / 20);
}

boost::intrusive_ptr<AudioFilter> Prepared(const DrawnPhase& setup) {
    boost::intrusive_ptr<AudioFilter> filter(new GraphicPhaseShifter);
    filter->SetParameterValue(kPhaseShifterSize, static_cast<float>((setup.size - 32) / 65504));
    filter->SetParameterValue(kPhaseShifterRange, setup.range > 180 ? 1 : 0);
    filter->SetParameterValue(kPhaseShifterScale, setup.isLinear ? 1 : 0);
    filter->SetParameterValue(kPhaseShifterChannel, static_cast<float>(setup.channel) / 33);
    if (!setup.nodes.empty())
        filter->SetParameterValue(kPhaseShifterPointCount, static_cast<float>(setup.nodes.size()) / 128);
    int index = kPhaseShifterFirstPoint;
    for (const Node& node : setup.nodes) {
        filter->SetParameterValue(index++, static_cast<float>(PlaceOf(node.hertz, setup)));
        filter->SetParameterValue(index++, static_cast<float>((node.degrees + setup.range) / (2 * setup.range)));
    }
    filter->Prepare(static_cast<float>(setup.rate), 8192, AudioChannelLayout::ForChannelCount(setup.channels));
    return filter;
}

void ExpectPhase(const std::vector<float>& response, const AudioFilter& filter, double hertz, double degrees) {
    const auto value = test::ResponseAt(response, hertz, filter.GetSampleRate(), static_cast<double>(filter.Latency()));
    EXPECT_NEAR(test::Decibels(std::abs(value)), 0, 0.1) << hertz;
    EXPECT_NEAR(std::remainder(std::arg(value) * 180 / std::numbers::pi - degrees, 360), 0, 0.5) << hertz;
}

TEST(GraphicPhaseShifter, TurnsThePhaseAsDrawnAndKeepsTheLevel) {
    const DrawnPhase setups[] = {
        {.nodes = {{20, 0}, {100, 90}, {300, -45}, {1000, 60}, {3000, -120}, {8000, 150}, {22050, 0}}},
        {.nodes = {{20, 0}, {200, 300}, {1000, -200}, {9000, 0}, {24000, 0}},
         .rate = 48000,
         .size = 65536,
         .range = 360},
        {.nodes = {{20, 180}, {2000, 180}, {12000, 0}, {44000, 0}}, .rate = 96000, .isLinear = true},
        {.nodes = {{20, 0}, {500, 0}, {700, 90}, {30000, 90}, {60000, 0}, {96000, 0}}, .rate = 192000, .size = 32768},
    };
    for (const DrawnPhase& setup : setups) {
        const auto filter = Prepared(setup);
        const auto response = test::ImpulseResponse(*filter, filter->Latency() + filter->Tail() + 1)[0];
        for (std::size_t i = 0; i + 1 < setup.nodes.size(); ++i) {
            const Node& node = setup.nodes[i];
            const Node& next = setup.nodes[i + 1];
            ExpectPhase(response, *filter, node.hertz, node.degrees);
            const double middle = setup.isLinear ? (node.hertz + next.hertz) / 2 : std::sqrt(node.hertz * next.hertz);
            ExpectPhase(response, *filter, middle, (node.degrees + next.degrees) / 2);
        }
    }
}

// As by an effect that has been prepared with the setting.
TEST(GraphicPhaseShifter, EverySettingIsHeardAtOnce) {
    const DrawnPhase setup = {.nodes = {{20, 0}, {300, 90}, {3000, -60}, {22050, 40}}, .size = 2048};
    const auto measured = [](AudioFilter& filter) { return test::ImpulseResponse(filter, 8192)[0]; };
    const std::pair<int, float> settings[] = {{kPhaseShifterSplineCurves, 1},
                                              {kPhaseShifterChannel, 2.0F / 33},
                                              {kPhaseShifterRange, 1},
                                              {kPhaseShifterScale, 1},
                                              {kPhaseShifterPointCount, 3.0F / 128},
                                              {kPhaseShifterFirstPoint + 1, 0.8F},
                                              {kPhaseShifterFirstPoint + 4, 0.5F},
                                              {kPhaseShifterFirstPoint + 6, 0.9F},
                                              {kPhaseShifterFirstPoint + 7, 0.3F}};
    for (const auto& [index, value] : settings) {
        const auto filter = Prepared(setup);
        const std::vector<float> before = measured(*filter);
        filter->SetParameterValue(index, value);
        filter->Reset();
        const auto expected = Prepared(setup);
        expected->SetParameterValue(index, value);
        expected->Prepare(44100, 8192, AudioChannelLayout::Mono());
        const std::vector<float> after = measured(*filter);
        EXPECT_EQ(after, measured(*expected)) << index;
        EXPECT_NE(after, before) << index;
    }
}

TEST(GraphicPhaseShifter, OnlyTheChosenChannelIsShifted) {
    const std::vector<Node> nodes = {{20, 180}, {22050, 180}}; // upside down
    const Channels input = test::NoiseChannels(3, 60000);
    for (const int chosen : {0, 1, 2, 3, 4}) {
        const auto filter = Prepared({.nodes = nodes, .size = 1024, .channel = chosen, .channels = 3});
        const Channels output = test::Processed(*filter, input);
        for (int channel = 0; channel < 3; ++channel) {
            std::vector<float> sound = output[static_cast<std::size_t>(channel)];
            if (chosen == 0 || chosen == channel + 1) std::ranges::transform(sound, sound.begin(), std::negate<>());
            EXPECT_LT(test::NullDecibels(input[static_cast<std::size_t>(channel)], sound, filter->Latency()), -120)
                << chosen << " " << channel;
        }
    }
}

TEST(GraphicPhaseShifter, AFlatCurveNulls) {
    const auto filter = Prepared({.size = 65536});
    const Channels input = test::NoiseChannels(1, 100000);
    EXPECT_LT(test::NullDecibels(input[0], test::Processed(*filter, input)[0], filter->Latency()), -120);
    EXPECT_EQ(filter->Latency(), 32768U + 12288);
}

TEST(GraphicPhaseShifter, ACurveOfOnePointIsALevelAndOneOfNoneLeavesTheSound) {
    for (const float spline : {0.0F, 1.0F}) {
        const auto filter = Prepared({.nodes = {{5000, 90}}});
        filter->SetParameterValue(kPhaseShifterSplineCurves, spline);
        const auto expectEverywhere = [&](double degrees) {
            filter->Reset();
            const auto response = test::ImpulseResponse(*filter, filter->Latency() + filter->Tail() + 1)[0];
            for (const double hertz : {200.0, 5000.0, 18000.0})
                ExpectPhase(response, *filter, hertz, degrees);
        };
        expectEverywhere(90);
        filter->SetParameterValueQuietly(kPhaseShifterPointCount, 0);
        expectEverywhere(0);
    }
}

} // namespace
