#include "qoc/components/FFTFilter.h"

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
    double decibels;
};

// The travel of a fader: the cube root of the amplitude, 1 at +12 dB.
double LevelOf(double decibels) {
    return std::cbrt(std::pow(10.0, (decibels - 12) / 20));
}

void Draw(AudioFilter& filter, const std::vector<Node>& nodes, double rate) {
    filter.SetParameterValueQuietly(kFFTFilterUpdating, 1);
    filter.SetParameterValueQuietly(kFFTFilterPointCount, static_cast<float>(nodes.size()) / 128);
    int index = kFFTFilterFirstPoint;
    for (const Node& node : nodes) {
        filter.SetParameterValue(index++, static_cast<float>(node.hertz / (rate / 2)));
        filter.SetParameterValue(index++, static_cast<float>(LevelOf(node.decibels)));
    }
    filter.SetParameterValueQuietly(kFFTFilterUpdating, 0);
}

void SetSize(AudioFilter& filter, double size) {
    filter.SetParameterValue(kFFTFilterSize, static_cast<float>((size - 32) / 23968));
}

struct DrawnFilter {
    std::vector<Node> nodes = {};
    double rate = 44100;
    double size = 4096;
    int window = 1;
    bool isLinear = false;
    bool spline = false;
    std::size_t channels = 1;
};

boost::intrusive_ptr<AudioFilter> Prepared(const DrawnFilter& setup) {
    boost::intrusive_ptr<AudioFilter> filter(new FFTFilter);
    SetSize(*filter, setup.size);
    filter->SetParameterValue(kFFTFilterWindowType, 0.125F * static_cast<float>(setup.window));
    filter->SetParameterValue(kFFTFilterScale, setup.isLinear ? 1 : 0);
    filter->SetParameterValue(kFFTFilterSplineCurves, setup.spline ? 1 : 0);
    if (!setup.nodes.empty()) Draw(*filter, setup.nodes, setup.rate);
    filter->Prepare(static_cast<float>(setup.rate), 8192, AudioChannelLayout::ForChannelCount(setup.channels));
    return filter;
}

double GainAt(const std::vector<float>& response, double hertz, double rate) {
    return test::Decibels(std::abs(test::ResponseAt(response, hertz, rate)));
}

double ToldGainAt(const AudioFilter& filter, double hertz) {
    std::vector<float> decibels;
    EXPECT_TRUE(filter.GetMagnitudeResponse(1, {hertz, hertz, false}, decibels));
    return decibels.at(0);
}

std::vector<float> Measured(AudioFilter& filter) {
    return test::ImpulseResponse(filter, filter.Latency() + filter.Tail() + 2, 1).back();
}

TEST(FFTFilter, TheSoundMeetsEveryNodeAndTheGraphTellsTheTruth) {
    const std::vector<Node> nodes = {{20, 0},     {150, 6},  {400, -12},  {1200, 9},
                                     {2500, -20}, {6000, 0}, {9000, -40}, {15000, 3}};
    const DrawnFilter setups[] = {
        {.nodes = nodes},
        {.nodes = nodes, .rate = 48000, .window = 2, .channels = 2},
        {.nodes = nodes, .rate = 96000, .size = 8192, .window = 3, .spline = true},
        {.nodes = nodes, .rate = 192000, .size = 16384, .window = 4, .isLinear = true, .channels = 6},
        {.nodes = nodes, .size = 8192, .window = 5},
        {.nodes = nodes, .size = 8192, .window = 6, .isLinear = true, .spline = true},
        {.nodes = nodes, .size = 32768, .window = 7},
        {.nodes = {{20, -6}, {300, 6}, {20000, -30}}, .size = 2048, .window = 0},
    };
    for (const DrawnFilter& setup : setups) {
        const auto filter = Prepared(setup);
        const std::vector<float> response = Measured(*filter);
        for (const Node& node : setup.nodes) {
            const double measured = GainAt(response, node.hertz, setup.rate);
            EXPECT_NEAR(measured, node.decibels, 0.1) << node.hertz << " Hz, window " << setup.window;
            EXPECT_NEAR(ToldGainAt(*filter, node.hertz), measured, 0.01) << node.hertz;
            const double between = node.hertz * 1.1;
            EXPECT_NEAR(ToldGainAt(*filter, between), GainAt(response, between, setup.rate), 0.05) << between;
        }
    }
}

// Half way between two nodes the fader stands half way.
TEST(FFTFilter, WhatIsDrawnIsHeard) {
    const std::vector<Node> nodes = {{500, -20}, {8000, 8}};
    const double middle = 20 * std::log10(std::pow((LevelOf(-20) + LevelOf(8)) / 2, 3)) + 12;
    for (const bool isLinear : {false, true}) {
        const auto filter = Prepared({.nodes = nodes, .isLinear = isLinear});
        const std::vector<float> response = Measured(*filter);
        EXPECT_NEAR(GainAt(response, isLinear ? 4250 : 2000, 44100), middle, 0.02) << isLinear;
        EXPECT_NEAR(GainAt(response, 100, 44100), -20, 0.02);
        EXPECT_NEAR(GainAt(response, 20000, 44100), 8, 0.02);
    }
}

TEST(FFTFilter, AFlatCurveNulls) {
    for (const double size : {32.0, 4096.0, 32768.0}) {
        const auto filter = Prepared({.size = size, .channels = 2});
        const Channels input = test::NoiseChannels(2, 90000);
        const Channels output = test::Processed(*filter, input, 100);
        for (std::size_t channel = 0; channel < 2; ++channel)
            EXPECT_LT(test::NullDecibels(input[channel], output[channel], filter->Latency()), -120) << size;
    }
}

TEST(FFTFilter, SilenceIsAsDeepAsTheWindow) {
    constexpr double kSilence = -1000;
    const auto filter = Prepared({.nodes = {{20, 0}, {5000, 0}, {5100, kSilence}, {20000, kSilence}}, .window = 7});
    const std::vector<float> response = Measured(*filter);
    EXPECT_LT(GainAt(response, 8000, 44100), -120);
    EXPECT_NEAR(GainAt(response, 4500, 44100), 0, 0.01);
}

TEST(FFTFilter, ACurveIsHeardWhenItIsComplete) {
    const auto filter = Prepared({});
    const auto gain = [&] { return ToldGainAt(*filter, 1000); };
    filter->SetParameterValueQuietly(kFFTFilterUpdating, 1);
    for (const int level : {kFFTFilterFirstPoint + 1, kFFTFilterFirstPoint + 3})
        filter->SetParameterValue(level, static_cast<float>(LevelOf(-10)));
    EXPECT_NEAR(gain(), 0, 1e-3) << "half written";
    EXPECT_NEAR(GainAt(Measured(*filter), 1000, 44100), 0, 1e-3);
    filter->SetParameterValueQuietly(kFFTFilterUpdating, 0);
    EXPECT_NEAR(gain(), -10, 1e-3);
    filter->Reset();
    EXPECT_NEAR(GainAt(Measured(*filter), 1000, 44100), -10, 1e-3);
}

// As by an effect that has been prepared with the setting.
TEST(FFTFilter, EverySettingIsHeardAtOnce) {
    const DrawnFilter setup = {.nodes = {{20, -10}, {700, 6}, {2000, -30}, {22000, -4}}, .spline = true};
    const std::pair<int, float> settings[] = {
        {kFFTFilterSplineCurves, 0},        {kFFTFilterWindowType, 0.5F},     {kFFTFilterScale, 1},
        {kFFTFilterPointCount, 3.0F / 128}, {kFFTFilterFirstPoint + 1, 0.8F}, {kFFTFilterFirstPoint + 2, 0.05F},
        {kFFTFilterFirstPoint + 6, 0.9F},   {kFFTFilterFirstPoint + 7, 0.3F}};
    for (const auto& [index, value] : settings) {
        const auto filter = Prepared(setup);
        ToldGainAt(*filter, 1000);
        const std::vector<float> before = Measured(*filter);
        filter->SetParameterValue(index, value);
        const double told = ToldGainAt(*filter, 1000);
        filter->Reset();
        const auto expected = Prepared(setup);
        expected->SetParameterValue(index, value);
        expected->Prepare(44100, 8192, AudioChannelLayout::Mono());
        const std::vector<float> after = Measured(*filter);
        EXPECT_EQ(after, Measured(*expected)) << index;
        EXPECT_NE(after, before) << index;
        EXPECT_EQ(told, ToldGainAt(*expected, 1000)) << index;
    }
}

// A panel may ask as soon as it is told of a change, before the filter has been designed anew.
TEST(FFTFilter, AResponseAskedForInTheMiddleOfAChangeDoesNotStay) {
    struct Asker final : kroaudiofilterhost::AudioFilterListener {
        void ParameterChanged(AudioFilter& filter, const kroaudiofilterhost::AudioFilterParameterChange&) override {
            ToldGainAt(filter, 1000);
        }
        void ParameterEditBegun(AudioFilter& /*filter*/, int /*index*/) override {}
        void ParameterEditEnded(AudioFilter& /*filter*/, int /*index*/) override {}
    } asker;
    const auto filter = Prepared({});
    filter->AddListener(asker);
    const auto level = static_cast<float>(LevelOf(-10));
    filter->SetParameterValues(std::vector<kroaudiofilterhost::AudioFilterParameterValue>{
        {kFFTFilterFirstPoint + 1, level}, {kFFTFilterFirstPoint + 3, level}});
    filter->RemoveListener(asker);
    EXPECT_NEAR(ToldGainAt(*filter, 1000), -10, 1e-3);
}

TEST(FFTFilter, ANewCurveFadesIn) {
    const auto filter = Prepared({});
    const std::vector<float> sine = test::Sine(1000, 66150, 44100);
    const Channels input = {sine};
    Channels output = input;
    test::Process(*filter, input, output, 0, 30000, 441);
    Draw(*filter, {{20, -20}, {22050, -20}}, 44100);
    test::Process(*filter, input, output, 30000, 40000, 441);
    Draw(*filter, {{20, 6}, {500, 6}, {2000, -6}}, 44100);
    test::Process(*filter, input, output, 40000, 66150, 441);
    // Of the sine itself at its loudest, by a tenth more; an unfaded switch would raise it by more than three times.
    EXPECT_LT(test::Roughness(output[0], 5000, 66150), 1.1 * test::Roughness(sine, 0, 5000));
}

TEST(FFTFilter, TheSizeDecidesTheLatencyWhenTheEffectIsPrepared) {
    struct {
        double size;
        double rate;
        std::size_t latency; // half the size and three hops of an eighth, but no less than 5 ms each, rounded up to 2^n
    } const cases[] = {
        {32, 44100, 16 + 768},      {4096, 44100, 2048 + 1536},  {32768, 44100, 16384 + 12288},
        {1024, 192000, 512 + 3072}, {16384, 96000, 8192 + 6144},
    };
    for (const auto& each : cases) {
        const auto filter = Prepared({.rate = each.rate, .size = each.size});
        EXPECT_EQ(filter->Latency(), each.latency) << each.size;
        EXPECT_NEAR(Measured(*filter)[each.latency + 1], 1, 1e-6);
    }
    const auto filter = Prepared({.nodes = {{20, 6}, {1000, -6}, {20000, 0}}, .size = 4096});
    SetSize(*filter, 1024);
    EXPECT_EQ(filter->Latency(), 3584U);
    filter->Reset();
    const std::vector<float> response = Measured(*filter);
    EXPECT_LE(std::ranges::count_if(response, [](float sample) { return std::abs(sample) > 1e-6F; }), 1024);
    EXPECT_NEAR(GainAt(response, 1000, 44100), -6, 0.1);
    SetSize(*filter, 32768);
    EXPECT_EQ(filter->Latency(), 3584U);
}

TEST(FFTFilter, ACurveOfOnePointIsALevelAndOneOfNoneLeavesTheSound) {
    for (const bool spline : {false, true}) {
        for (const auto& [hertz, count, level] : {std::tuple(15000.0, 1, -10.0), {20.0, 1, -10.0}, {15000.0, 0, 0.0}}) {
            const auto filter = Prepared({.nodes = {{hertz, -10}}, .spline = spline});
            filter->SetParameterValueQuietly(kFFTFilterPointCount, static_cast<float>(count) / 128);
            filter->Reset();
            const std::vector<float> response = Measured(*filter);
            for (const double place : {50.0, 1000.0, 20000.0})
                EXPECT_NEAR(GainAt(response, place, 44100), level, 1e-3) << place;
        }
    }
}

} // namespace
