#include "qoc/components/Doppler.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;

namespace {

using Sound = std::vector<float>;
using Channels = std::vector<Sound>;

constexpr double kRate = 44100;
constexpr double kC = 343; // m/s
constexpr std::size_t kLatency = 16;
constexpr double kTurn = 2 * std::numbers::pi;

struct Setting {
    double distance = 100;
    double velocity = 30;
    double angle = 0;
    double front = 0;
    double right = 0;
    bool circular = false;
    bool byDistance = false;
    bool byDirection = false;
    int quality = 5;
};

void Set(AudioFilter& filter, const Setting& s) {
    const double stored[] = {s.quality / 6.0,        (s.distance - 0.01) / 99999.99, (s.velocity - 0.1) / 354.9,
                             s.angle / 360,          (s.front + 10000) / 20000,      (s.right + 10000) / 20000,
                             s.circular ? 1.0 : 0.0, s.byDistance ? 1.0 : 0.0,       s.byDirection ? 1.0 : 0.0};
    for (int i = 0; i < 9; ++i)
        filter.SetParameterValue(i, static_cast<float>(stored[i]));
}

boost::intrusive_ptr<AudioFilter> Prepared(const Setting& setting, double seconds, std::size_t channels = 1) {
    auto filter = CreateEffect(kDopplerComponentID);
    Set(*filter, setting);
    filter->SetDuration(seconds * kRate);
    filter->Prepare(static_cast<float>(kRate), 8192, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

void Process(AudioFilter& filter, const Channels& input, Channels& output, std::size_t begin, std::size_t end,
             std::size_t block) {
    std::vector<const float*> inputs(input.size());
    std::vector<float*> outputs(input.size());
    for (std::size_t start = begin; start < end; start += block) {
        for (std::size_t channel = 0; channel < input.size(); ++channel) {
            inputs[channel] = input[channel].data() + start;
            outputs[channel] = output[channel].data() + start;
        }
        filter.Process({inputs, outputs, std::min(block, end - start)});
    }
}

Channels Processed(AudioFilter& filter, const Channels& input, std::size_t block = 1000) {
    Channels output = input;
    Process(filter, input, output, 0, input[0].size(), block);
    return output;
}

Sound Sine(double hertz, double seconds) {
    Sound sound(static_cast<std::size_t>(seconds * kRate));
    for (std::size_t i = 0; i < sound.size(); ++i)
        sound[i] = static_cast<float>(std::sin(kTurn * hertz * static_cast<double>(i) / kRate));
    return sound;
}

std::size_t SampleAt(double seconds) {
    return kLatency + static_cast<std::size_t>(std::lround(seconds * kRate));
}

// From the first to the last rising zero crossing between two moments.
double FrequencyOf(const Sound& sound, double from, double to) {
    double first = 0;
    double last = 0;
    int periods = -1;
    for (std::size_t i = SampleAt(from); i < SampleAt(to); ++i) {
        if (!(sound[i - 1] < 0 && sound[i] >= 0)) continue;
        last = static_cast<double>(i) - sound[i] / (sound[i] - sound[i - 1]);
        if (++periods == 0) first = last;
    }
    return periods * kRate / (last - first);
}

double Decibels(double sumOfSquares, std::size_t count) {
    return 10 * std::log10(sumOfSquares / static_cast<double>(count) + 1e-30);
}

double Level(const Sound& sound, double from, double to) {
    double sum = 0;
    for (std::size_t i = SampleAt(from); i < SampleAt(to); ++i)
        sum += double{sound[i]} * sound[i];
    return Decibels(sum, SampleAt(to) - SampleAt(from));
}

// The source comes straight at the listener for a second and then goes away. Its distance shrinks by v * 1 s, so it is
// heard coming from v / c to 1 s.
TEST(Doppler, ThePitchOfASourceThatComesAndGoesIsTheFormulas) {
    for (const double velocity : {1.0, 30.0, 150.0, 300.0}) {
        for (int quality = 0; quality < 6; ++quality) {
            const double hertz = 500;
            const auto filter = Prepared({.distance = velocity, .velocity = velocity, .quality = quality}, 3);
            const Channels output = Processed(*filter, {Sine(hertz, 3)});
            const double start = velocity / kC;
            const double coming = FrequencyOf(output[0], start + 0.1 * (1 - start), start + 0.9 * (1 - start));
            const double going = FrequencyOf(output[0], 1.1, 2.9);
            const auto cents = [&](double heard, double expected) { return 1200 * std::log2(heard / expected); };
            EXPECT_NEAR(cents(coming, hertz * kC / (kC - velocity)), 0, 1) << velocity << " quality " << quality;
            EXPECT_NEAR(cents(going, hertz * kC / (kC + velocity)), 0, 1) << velocity << " quality " << quality;
        }
    }
}

TEST(Doppler, ACircleAroundTheListenerKeepsThePitchAndOneBesideBendsIt) {
    const Setting around{.distance = 20, .velocity = 50, .circular = true};
    const Channels input{Sine(1000, 1)};
    const Channels kept = Processed(*Prepared(around, 1), input);
    for (std::size_t i = 100; i < input[0].size(); ++i)
        ASSERT_NEAR(kept[0][i], input[0][i - kLatency], 1e-4) << i;

    // Radius 10 around a centre 1000 m in front: at 90 degrees, going clockwise, the source comes straight at the
    // listener. In 3 ms it turns by 0.015, so the cosine of its heading stays above 0.9996.
    const Setting beside{.distance = 10, .velocity = 50, .angle = 90, .front = 1000, .circular = true};
    const auto filter = Prepared(beside, 2);
    const Channels bent = Processed(*filter, {Sine(4000, 2)});
    // Nearest is 990 m, the start sqrt(1000^2 + 10^2) = 1000.05 m, so the start is heard 10.05 / 343 s late.
    const double start = 10.05 / kC;
    EXPECT_NEAR(FrequencyOf(bent[0], start + 0.0005, start + 0.003), 4000 * kC / (kC - 50), 10);
}

// A click sounded 51.45 m away is heard 0.15 s later than one at the nearest point, where there is no delay.
TEST(Doppler, SoundArrivesWhenTheDistanceLetsIt) {
    Sound input(static_cast<std::size_t>(3 * kRate));
    const std::pair<double, double> clicks[] = {{0.5, 0.5 + 0.15}, {2, 2}, {2.5, 2.5 + 0.05}};
    for (const auto& [emitted, heard] : clicks)
        input[static_cast<std::size_t>(emitted * kRate)] = 1;
    const auto filter = Prepared({.distance = 68.6, .velocity = 34.3, .angle = 120}, 3);
    const Channels output = Processed(*filter, {input});
    for (const auto& [emitted, heard] : clicks) {
        const std::size_t middle = SampleAt(heard);
        const auto peak = std::max_element(output[0].begin() + static_cast<std::ptrdiff_t>(middle) - 500,
                                           output[0].begin() + static_cast<std::ptrdiff_t>(middle) + 500);
        EXPECT_NEAR(static_cast<double>(peak - output[0].begin()), static_cast<double>(middle), 1) << emitted;
        EXPECT_GT(*peak, 0.6);
    }
    EXPECT_EQ(filter->Latency(), kLatency);
    // At its end the source is 34.3 m away.
    EXPECT_NEAR(static_cast<double>(filter->Tail()), kLatency + 0.1 * kRate, 2);
}

// Along a line 10 m in front, from left to right. At 24 m to a side the distance is 26 m.
TEST(Doppler, VolumeFollowsDistanceAndDirection) {
    const Setting setting{
        .distance = 40, .velocity = 20, .angle = 270, .front = 10, .byDistance = true, .byDirection = true};
    const auto filter = Prepared(setting, 5, 2);
    const Channels output = Processed(*filter, Channels(2, Sound(static_cast<std::size_t>(5 * kRate), 1.0F)));
    const double far = 10.0 / 26;
    struct Case {
        double heard;
        double left;
        double right;
    };
    const Case cases[] = {{0.8 + 16 / kC, far * std::sqrt(1 + 24.0 / 26), far * std::sqrt(1 - 24.0 / 26)},
                          {2, 1, 1},
                          {3.2 + 16 / kC, far * std::sqrt(1 - 24.0 / 26), far * std::sqrt(1 + 24.0 / 26)}};
    for (const Case& each : cases) {
        EXPECT_NEAR(output[0][SampleAt(each.heard)], each.left, 2e-4) << each.heard;
        EXPECT_NEAR(output[1][SampleAt(each.heard)], each.right, 2e-4) << each.heard;
    }
    const Channels mono = Processed(*Prepared(setting, 5), {Sound(static_cast<std::size_t>(5 * kRate), 1.0F)});
    EXPECT_NEAR(mono[0][SampleAt(0.8 + 16 / kC)], far, 2e-4) << "a mono sound has no direction";
}

// Going away from where the listener stands, a source sounds at s * c / (c + v) what is heard at s.
TEST(Doppler, EachQualityComesNearerToTheTrueSound) {
    const double hertz = 12000; // where interpolators differ most: polynomials are good at the bottom
    double before = 0;          // dB below the sine
    for (int quality = 0; quality < 6; ++quality) {
        const auto filter = Prepared({.distance = 0.01, .velocity = 50, .quality = quality}, 1.5);
        const double velocity =
            filter->GetParameterInfo(kDopplerVelocity)->ToNatural(filter->GetParameterValue(kDopplerVelocity));
        const double passed = 0.01 / velocity; // it starts 0.01 m in front
        const Channels output = Processed(*filter, {Sine(hertz, 1.5)});
        double sum = 0;
        const std::size_t from = SampleAt(0.2);
        const std::size_t to = SampleAt(1.2);
        for (std::size_t i = from; i < to; ++i) {
            const double heard = static_cast<double>(i - kLatency) / kRate;
            const double emitted = passed + (heard - passed) * kC / (kC + velocity);
            const double error = output[0][i] - std::sin(kTurn * hertz * emitted);
            sum += error * error;
        }
        const double error = Decibels(sum, to - from) - Decibels(0.5, 1);
        EXPECT_LT(error, before - 6) << quality;
        before = error;
    }
    EXPECT_LT(before, -90);
}

// 15 kHz comes out at 26.7 kHz, which the sample rate can't hold: sincs leave it out, a line folds it back.
TEST(Doppler, WhatGoesAboveTheNyquistFrequencyIsNotFoldedBack) {
    const auto level = [](int quality) {
        const auto filter = Prepared({.distance = 150, .velocity = 150, .quality = quality}, 2);
        return Level(Processed(*filter, {Sine(15000, 2)})[0], 0.5, 0.95);
    };
    EXPECT_GT(level(0), -20);
    EXPECT_LT(level(5), -70);
}

TEST(Doppler, AChangeOfThePathIsACrossfade) {
    const auto filter = Prepared({.distance = 50, .velocity = 20}, 4);
    const Channels input{Sine(200, 4)};
    Channels output = input;
    Process(*filter, input, output, 0, 44100, 441);
    Set(*filter, {.distance = 300, .velocity = 100, .front = 20});
    Process(*filter, input, output, 44100, 44541, 441);
    Set(*filter, {.distance = 30, .velocity = 10, .angle = 45, .circular = true}); // in mid-fade
    Process(*filter, input, output, 44541, output[0].size(), 441);
    // The steepest sine at the greatest speed of the three, and a fade of 30 ms between opposite values.
    const double bound = kTurn * 200 / kRate * kC / (kC - 100) + 2 / (0.03 * kRate);
    for (std::size_t i = 20000; i < output[0].size(); ++i)
        ASSERT_LT(std::abs(output[0][i] - output[0][i - 1]), bound) << i;
    const double level = Level(output[0], 2, 3);
    EXPECT_NEAR(level, Decibels(0.5, 1), 0.1) << "the last path is heard alone";
}

TEST(Doppler, EveryCornerOfTheRangesGivesFiniteSound) {
    Channels input(2, Sine(1000, 0.05));
    input[0][1000] = std::numeric_limits<float>::denorm_min();
    for (unsigned corner = 0; corner < 512; ++corner) {
        auto filter = CreateEffect(kDopplerComponentID);
        for (int i = 0; i < 9; ++i)
            filter->SetParameterValue(i, (corner >> i & 1) != 0 ? 1.0F : 0.0F);
        filter->SetDuration(0.05 * kRate);
        filter->Prepare(static_cast<float>(kRate), 8192, AudioChannelLayout::Stereo());
        for (const Sound& channel : Processed(*filter, input)) {
            for (const float sample : channel)
                ASSERT_LT(std::abs(sample), 2.5F) << corner;
        }
    }
}

TEST(Doppler, BadSamplesPass) {
    const auto filter = Prepared({.distance = 10, .velocity = 20}, 1);
    Channels input{Sine(1000, 1)};
    const Channels expected = Processed(*filter, input);
    filter->Reset();
    input[0][20000] = std::numeric_limits<float>::quiet_NaN();
    const Channels output = Processed(*filter, input);
    EXPECT_TRUE(std::equal(output[0].begin() + 22000, output[0].end(), expected[0].begin() + 22000));
}

TEST(Doppler, OnlyTheWayMadeWithinTheSoundIsWaitedFor) {
    // 100 km away and coming at 100 m/s for 10 s: 1000 m nearer at the end, so the start is heard 2.92 s late.
    const auto filter = Prepared({.distance = 100000, .velocity = 100}, 10);
    Sound input(static_cast<std::size_t>(4 * kRate), 1.0F);
    const Channels output = Processed(*filter, {input});
    EXPECT_EQ(output[0][SampleAt(2.9)], 0);
    EXPECT_NEAR(output[0][SampleAt(2.93)], 1, 1e-4);
}

} // namespace
