#include "qoc/components/FullReverb.h"

#include "MeasureReverb.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

#include <map>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;
using test::Channels;

namespace {

using Settings = std::map<int, double>; // natural values; the others are the defaults

void Set(AudioFilter& filter, const Settings& settings) {
    for (const auto& [index, natural] : settings)
        filter.SetParameterValue(index, filter.GetParameterInfo(index)->ToNormalised(static_cast<float>(natural)));
}

boost::intrusive_ptr<AudioFilter> Prepared(const Settings& settings, std::size_t channels = 2, float rate = 44100) {
    boost::intrusive_ptr<AudioFilter> filter(new FullReverb);
    Set(*filter, settings);
    filter->Prepare(rate, 8192, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

Channels ResponsesOf(const Settings& settings, std::size_t channels = 2, float rate = 44100, double seconds = 1) {
    return test::ImpulseResponse(*Prepared(settings, channels, rate), static_cast<std::size_t>(seconds * rate));
}

double Told(const AudioFilter& filter, int index) {
    return filter.GetParameterInfo(index)->ToNatural(filter.GetParameterValue(index));
}

const Settings kReverberationOnly = {{kFullReverbDry, 0}, {kFullReverbReverberation, 100}, {kFullReverbEarly, 0}};
const Settings kEarlyOnly = {{kFullReverbDry, 0}, {kFullReverbReverberation, 0}, {kFullReverbEarly, 100}};

Settings With(Settings settings, const Settings& more) {
    for (const auto& [index, natural] : more)
        settings[index] = natural;
    return settings;
}

TEST(FullReverb, DecaysBySixtyDecibelsInTheDecayTimeInEveryOctave) {
    struct Case {
        double decay;
        double size;
        std::size_t channels;
        float rate;
    };
    for (const Case& each : {Case{500, 50, 1, 48000}, Case{1500, 1500, 2, 44100}, Case{4000, 20000, 2, 44100},
                             Case{1000, 300, 6, 96000}, Case{1000, 5000, 2, 192000}}) {
        const Channels responses =
            ResponsesOf(With(kReverberationOnly, {{kFullReverbDecay, each.decay}, {kFullReverbRoomSize, each.size}}),
                        each.channels, each.rate, 0.2 + 0.9 * each.decay / 1000);
        for (const double hertz : {125, 250, 500, 1000, 2000, 4000, 8000}) {
            const double measured = test::DecayTime(test::Octave(responses, hertz, each.rate), each.rate);
            EXPECT_NEAR(measured * 1000 / each.decay, 1, 0.1) << each.decay << " ms, " << hertz << " Hz";
        }
    }
}

// A room of 1000 cubic metres, as wide as deep, is 6 m high and sqrt(1000 / 6) = 12.91 m wide; the listener sits 1.2 m
// high in the middle of the width at 0.7 of the depth. The source is 1.5 m high, half a width to the right of the
// middle at 0.5 of the way to the front wall.
struct Geometry {
    double side = std::sqrt(1000 / 6.0);
    double height = 6;
    double listener[3] = {side / 2, 0.7 * side, 1.2};
    double source[3] = {0.75 * side, 0.35 * side, 1.5};

    double Distance(double x, double y, double z) const {
        return std::hypot(x - listener[0], y - listener[1], z - listener[2]);
    }
    double Direct() const { return Distance(source[0], source[1], source[2]); }
    std::vector<double> FirstOrder() const {
        const auto [x, y, z] = source;
        return {Distance(-x, y, z),           Distance(2 * side - x, y, z), Distance(x, -y, z),
                Distance(x, 2 * side - y, z), Distance(x, y, -z),           Distance(x, y, 2 * height - z)};
    }
};

const Settings kGeometry = With(kEarlyOnly, {{kFullReverbRoomSize, 1000},
                                             {kFullReverbDimension, 1},
                                             {kFullReverbLocation, 50},
                                             {kFullReverbDistance, 50},
                                             {kFullReverbDiffusion, 0},
                                             {kFullReverbHighPass, 20}});

TEST(FullReverb, ReflectionsArriveWhenTheGeometryOfTheRoomSays) {
    const Geometry room;
    for (const float rate : {44100.0F, 96000.0F}) {
        const auto response = ResponsesOf(kGeometry, 1, rate, 0.3)[0];
        // Sabine: 1500 ms in that room.
        const double surface = 2 * room.side * room.side + 4 * room.side * room.height;
        const double reflection = std::sqrt(1 - 0.161 * 1000 / (surface * 1.5));
        for (const double way : room.FirstOrder()) {
            const auto at = static_cast<std::size_t>(std::lround((way - room.Direct()) / 343 * rate));
            EXPECT_NEAR(response[at], reflection * room.Direct() / way, 0.01) << way << " m";
        }
    }
}

// Walls that scatter send the energy of a reflection as a cluster behind it.
TEST(FullReverb, DiffusionScattersReflectionsAndKeepsWhenTheyArriveAndTheirEnergy) {
    const Geometry room;
    const auto plain = ResponsesOf(kGeometry, 1, 44100, 0.5)[0];
    const auto scattered = ResponsesOf(With(kGeometry, {{kFullReverbDiffusion, 80}}), 1, 44100, 0.5)[0];
    const auto firstOf = [](const std::vector<float>& response) {
        return std::ranges::find_if(response, [](float sample) { return std::abs(sample) > 1e-4; }) - response.begin();
    };
    EXPECT_EQ(firstOf(scattered), firstOf(plain));
    EXPECT_NEAR(10 * std::log10(test::Energy(scattered) / test::Energy(plain)), 0, 1.5);
    EXPECT_LT(test::EchoDensity(plain, 0.05, 44100), 0.2);
    EXPECT_GT(test::EchoDensity(scattered, 0.05, 44100), 0.8);
}

TEST(FullReverb, TheDirectSoundIsIncludedAtItsPlaceOnlyWhenAsked) {
    const Settings settings = With(kGeometry, {{kFullReverbDry, 100}, {kFullReverbEarly, 0}});
    const Channels plain = ResponsesOf(settings);
    EXPECT_EQ(plain[0][0], 1);
    EXPECT_EQ(plain[1][0], 1);
    // One source at the right: its sound reaches the right microphone first and is louder there.
    const Channels placed = ResponsesOf(With(settings, {{kFullReverbIncludeDirect, 1}, {kFullReverbSumInputs, 1}}));
    const auto arrival = [](const std::vector<float>& response) {
        return std::ranges::find_if(response, [](float sample) { return std::abs(sample) > 0.05; }) - response.begin();
    };
    EXPECT_EQ(arrival(placed[1]), 0);
    EXPECT_GT(arrival(placed[0]), 3); // 17 cm are 22 samples from the side
    EXPECT_LT(arrival(placed[0]), 22);
    EXPECT_GT(test::Energy(placed[1]), 1.5 * test::Energy(placed[0]));
}

TEST(FullReverb, IsBitExactWithoutReflectionsAndReverberation) {
    const Channels input = test::NoiseChannels(6, 20000, 1, 0.5F);
    const auto filter = Prepared({{kFullReverbReverberation, 0}, {kFullReverbEarly, 0}, {kFullReverbLowGain, 12}}, 6);
    EXPECT_TRUE(test::Processed(*filter, input) == input);
}

TEST(FullReverb, TheEqualiserShapesWhatTheRoomAddsAsItsCurveShows) {
    const Settings gains = {{kFullReverbLowGain, -12},
                            {kFullReverbMiddleGain, 9},
                            {kFullReverbMiddleQ, 2},
                            {kFullReverbHighGain, 6},
                            {kFullReverbHighFrequency, 6000}};
    const auto flat = ResponsesOf(kGeometry)[0];
    const auto shaped = ResponsesOf(With(kGeometry, gains))[0];
    std::vector<float> curve;
    constexpr std::size_t kSize = 101;
    ASSERT_TRUE(Prepared(gains)->GetResponseCurve(0, kSize, curve));
    for (const std::size_t place : {10U, 40U, 57U, 70U, 95U}) {
        const double hertz = 20 * std::pow(1000.0, static_cast<double>(place) / (kSize - 1));
        const double ratio =
            std::abs(test::ResponseAt(shaped, hertz, 44100)) / std::abs(test::ResponseAt(flat, hertz, 44100));
        EXPECT_NEAR(test::Decibels(ratio), curve[place], 0.1) << hertz;
    }
    EXPECT_NEAR(curve.front(), -12, 0.1); // far below the shelf
    EXPECT_NEAR(curve.back(), 6, 0.3);
    EXPECT_FALSE(Prepared({})->GetResponseCurve(1, kSize, curve));
}

TEST(FullReverb, TellsWhatFollowsFromTheRoom) {
    const auto filter = Prepared(kGeometry);
    const Geometry room;
    EXPECT_NEAR(Told(*filter, kFullReverbRoomWidth), room.side, 1e-3);
    EXPECT_NEAR(Told(*filter, kFullReverbRoomDepth), room.side, 1e-3);
    EXPECT_NEAR(Told(*filter, kFullReverbRoomHeight), 6, 1e-3);
    const double surface = 2 * room.side * room.side + 4 * room.side * 6;
    EXPECT_NEAR(Told(*filter, kFullReverbRoomDecay), 161 * 1000 / (0.2 * surface), 1);
    EXPECT_NEAR(Told(*filter, kFullReverbRoomPredelay), 4 * 1e6 / (surface * 343), 0.1);
    EXPECT_NEAR(Told(*filter, kFullReverbFirstReflection),
                1000 * (std::ranges::min(room.FirstOrder()) - room.Direct()) / 343, 0.01);
}

TEST(FullReverb, TheRoomSetsTheDecayWhenItIsToldTo) {
    const Settings settings = With(kReverberationOnly, {{kFullReverbRoomSize, 8000}, {kFullReverbDecay, 500}});
    const auto filter = Prepared(With(settings, {{kFullReverbSetByRoom, 1}}));
    const double decay = Told(*filter, kFullReverbRoomDecay) / 1000;
    const auto response = test::ImpulseResponse(*filter, 2 * 44100)[0];
    EXPECT_NEAR(test::DecayTime(response, 44100) / decay, 1, 0.1);
    const auto first = std::ranges::find_if(response, [](float sample) { return sample != 0; }) - response.begin();
    EXPECT_NEAR(static_cast<double>(first) / 44.1, Told(*filter, kFullReverbRoomPredelay), 0.02);
}

TEST(FullReverb, DoesNotClickWhileSettingsChange) {
    const auto filter = Prepared({{kFullReverbDry, 0}});
    const Channels input = {test::Sine(200, 132300, 44100), test::Sine(200, 132300, 44100)};
    Channels output = input;
    test::Process(*filter, input, output, 0, 66150, 441);
    std::size_t at = 66150;
    for (const Settings& next :
         {Settings{{kFullReverbRoomSize, 9000}, {kFullReverbLowGain, 12}},
          Settings{{kFullReverbLocation, 80}, {kFullReverbDecay, 6000}, {kFullReverbSumInputs, 1}},
          Settings{{kFullReverbIncludeDirect, 1}, {kFullReverbMiddleFrequency, 300}},
          Settings{{kFullReverbSetByRoom, 1}, {kFullReverbEarly, 0}, {kFullReverbHighPass, 300}}}) {
        Set(*filter, next);
        test::Process(*filter, input, output, at, at + 3000, 441);
        at += 3000;
    }
    EXPECT_LT(test::Roughness(output[0], 66150, at), 3 * test::Roughness(input[0], 0, at));
}

} // namespace
