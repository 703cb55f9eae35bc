#include "qoc/components/CenterChannelExtract.h"

#include "MeasureSound.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;
using test::Channels;

namespace {

using Filter = boost::intrusive_ptr<AudioFilter>;
using Settings = std::vector<std::pair<int, double>>; // natural values

constexpr double kCenterHertz = 1000;
constexpr double kLeftHertz = 2310;
constexpr double kRightHertz = 467;

Filter Prepared(const Settings& settings, float rate = 44100, std::size_t channels = 2) {
    Filter filter(new CenterChannelExtract);
    filter->Prepare(rate, 512, AudioChannelLayout::ForChannelCount(channels));
    for (const auto& [index, natural] : settings)
        filter->SetParameterValue(index, filter->GetParameterInfo(index)->ToNormalised(static_cast<float>(natural)));
    filter->Prepare(rate, 512, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

// One tone in the middle and one at either side.
Channels Tones(double rate, std::size_t frames = 66150) {
    Channels sound(2, test::Sine(kCenterHertz, frames, rate, 0.25));
    const auto left = test::Sine(kLeftHertz, frames, rate, 0.25);
    const auto right = test::Sine(kRightHertz, frames, rate, 0.25);
    for (std::size_t i = 0; i < frames; ++i) {
        sound[0][i] += left[i];
        sound[1][i] += right[i];
    }
    return sound;
}

// Against the tone that went in, from where the effect has settled.
double LevelOf(const std::vector<float>& sound, double hertz, double rate) {
    constexpr std::size_t kStart = 35000;
    std::complex<double> sum;
    double weight = 0;
    for (std::size_t i = kStart; i < sound.size(); ++i) {
        const double place = static_cast<double>(i - kStart) / static_cast<double>(sound.size() - kStart);
        const double window = 0.5 - 0.5 * std::cos(2 * std::numbers::pi * place);
        sum += window * sound[i] * std::polar(1.0, -2 * std::numbers::pi * hertz * static_cast<double>(i) / rate);
        weight += window;
    }
    return test::Decibels(std::max(2 * std::abs(sum) / weight / 0.25, 1e-9));
}

TEST(CenterChannelExtract, KeepsTheCenterAndTakesTheSidesAway) {
    for (const float rate : {44100.0F, 48000.0F, 96000.0F, 192000.0F}) {
        const Channels output = test::Processed(*Prepared({}, rate), Tones(rate));
        for (const auto& channel : output)
            EXPECT_NEAR(LevelOf(channel, kCenterHertz, rate), 0, 0.5) << rate;
        EXPECT_LT(LevelOf(output[0], kLeftHertz, rate), -30) << rate;
        EXPECT_LT(LevelOf(output[1], kRightHertz, rate), -30) << rate;
    }
}

// The levels of the three tones that are left, for each place to extract from.
TEST(CenterChannelExtract, ExtractsFromThePlaceThatIsChosen) {
    struct Case {
        int position;
        bool center, left, right;
    };
    for (const Case& expected :
         {Case{0, true, false, false}, Case{1, false, true, false}, Case{2, false, false, true}}) {
        const double item = expected.position;
        const Channels output = test::Processed(*Prepared({{kCenterExtractPosition, item}}), Tones(44100));
        const auto check = [&](const std::vector<float>& channel, double hertz, bool isKept) {
            const double level = LevelOf(channel, hertz, 44100);
            if (isKept)
                EXPECT_NEAR(level, 0, 0.5) << hertz << " from " << item;
            else
                EXPECT_LT(level, -30) << hertz << " from " << item;
        };
        check(output[0], kCenterHertz, expected.center);
        check(output[0], kLeftHertz, expected.left);
        check(output[1], kRightHertz, expected.right);
    }
}

// A sound in opposite phases, one that is late on the right, and one that leans to a side.
TEST(CenterChannelExtract, SurroundAndCustomPlacesGoByPhaseDelayAndPan) {
    const Settings custom = {{kCenterExtractPosition, 4}, {kCenterExtractPhaseDiscrimination, 20}};
    const auto at = [&custom](int index, double value) {
        Settings settings = custom;
        settings.emplace_back(index, value);
        return settings;
    };
    const auto tone = [](double amplitude, double lag) {
        std::vector<float> sound(66150);
        for (std::size_t i = 0; i < sound.size(); ++i)
            sound[i] = static_cast<float>(
                amplitude * std::sin(2 * std::numbers::pi * kCenterHertz * (static_cast<double>(i) / 44100 - lag)));
        return sound;
    };
    struct Case {
        Settings settings;
        Channels sound;
    };
    const Case cases[] = {
        {{{kCenterExtractPosition, 3}}, {tone(0.25, 0), tone(-0.25, 0)}},
        {at(kCenterExtractDelay, 0.3), {tone(0.25, 0), tone(0.25, 0.3e-3)}},
        {at(kCenterExtractPhase, 90), {tone(0.25, 0), tone(0.25, 0.25e-3)}}, // a quarter of a millisecond
        // tan(45 degrees * 1.6) = 3.078
        {at(kCenterExtractPan, 60), {tone(0.25, 0), tone(0.25 * 3.0777, 0)}},
    };
    for (const auto& [settings, sound] : cases) {
        const Channels extracted = test::Processed(*Prepared(settings), sound);
        EXPECT_NEAR(LevelOf(extracted[0], kCenterHertz, 44100), 0, 0.1) << &settings - &cases[0].settings;
        const Channels center = test::Processed(*Prepared({{kCenterExtractPhaseDiscrimination, 20}}), sound);
        EXPECT_LT(LevelOf(center[0], kCenterHertz, 44100), -30);
    }
}

TEST(CenterChannelExtract, EqualLevelsGiveTheSoundAgainForEveryWindowAndOverlap) {
    const Channels input = test::NoiseChannels(2, 15000);
    for (int window = 0; window < 5; ++window) {
        for (const double overlaps : {2.0, 3.0, 4.0, 7.0, 16.0}) {
            const Filter filter = Prepared({{kCenterExtractSideLevel, 0},
                                            {kCenterExtractSize, 0},
                                            {kCenterExtractWindow, window},
                                            {kCenterExtractOverlaps, overlaps}});
            const Channels output = test::Processed(*filter, input);
            EXPECT_LT(test::NullDecibels(input[0], output[0], filter->Latency()), -100) << window << " " << overlaps;
        }
    }
}

TEST(CenterChannelExtract, WhatIsRemovedIsTheRestOfTheSound) {
    const Channels input = test::NoiseChannels(2, 40000);
    const Filter filter = Prepared({});
    const Channels kept = test::Processed(*filter, input);
    const Channels removed = test::Processed(*Prepared({{kCenterExtractHearRemoved, 1}}), input);
    std::vector<float> sum(40000);
    std::ranges::transform(kept[1], removed[1], sum.begin(), std::plus<>());
    EXPECT_LT(test::NullDecibels(input[1], sum, filter->Latency()), -100);
}

TEST(CenterChannelExtract, TheRangeBoundsWhatIsExtracted) {
    const Settings range = {
        {kCenterExtractRange, 4}, {kCenterExtractLowFrequency, 1500}, {kCenterExtractHighFrequency, 500}};
    const Channels output = test::Processed(*Prepared(range), Tones(44100));
    EXPECT_NEAR(LevelOf(output[0], kCenterHertz, 44100), 0, 0.5);
    Settings above = range;
    above[2].second = 4000;
    EXPECT_LT(LevelOf(test::Processed(*Prepared(above), Tones(44100))[0], kCenterHertz, 44100), -30);
    above.emplace_back(kCenterExtractKeepOutside, 1);
    EXPECT_NEAR(LevelOf(test::Processed(*Prepared(above), Tones(44100))[0], kCenterHertz, 44100), 0, 0.1);
}

TEST(CenterChannelExtract, TellsTheRangeThatIsChosen) {
    const Filter filter = Prepared({{kCenterExtractRange, 2}}, 48000);
    const auto told = [&filter](int index) {
        return filter->GetParameterInfo(index)->ToNatural(filter->GetParameterValue(index));
    };
    EXPECT_NEAR(told(kCenterExtractPresentLow), 20, 0.01);
    EXPECT_NEAR(told(kCenterExtractPresentHigh), 300, 0.01);
    filter->SetParameterValueQuietly(kCenterExtractRange, 0.75F);
    EXPECT_NEAR(told(kCenterExtractPresentHigh), 24000, 0.01);
}

TEST(CenterChannelExtract, OtherChannelsAreOnlyLater) {
    const Filter filter = Prepared({}, 48000, 6);
    const Channels input = test::NoiseChannels(6, 12000);
    const Channels output = test::Processed(*filter, input);
    for (std::size_t channel = 2; channel < 6; ++channel)
        EXPECT_TRUE(std::equal(output[channel].begin() + static_cast<std::ptrdiff_t>(filter->Latency()),
                               output[channel].end(), input[channel].begin()));
    const Channels mono = test::NoiseChannels(1, 2000);
    EXPECT_TRUE(test::Processed(*Prepared({}, 48000, 1), mono) == mono);
}

} // namespace
