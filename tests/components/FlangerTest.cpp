#include "qoc/components/Flanger.h"

#include "MeasureSound.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;

namespace {

// In the parameters' natural units.
struct Setting {
    double initial = 1; // ms
    double final = 1;
    double phase = 0;
    double feedback = 0;
    double rate = 1;
    bool inverted = false;
    bool throughZero = false;
    bool sinusoidal = true;
    double mix = 50;
};

boost::intrusive_ptr<AudioFilter> Prepared(const Setting& setting, std::size_t channels = 1, float rate = 44100) {
    boost::intrusive_ptr<AudioFilter> filter(new Flanger);
    const double stored[] = {setting.initial / 20,
                             setting.final / 20,
                             setting.phase / 360,
                             (setting.feedback + 95) / 190,
                             (setting.rate - 0.01) / 9.99,
                             setting.inverted ? 1.0 : 0.0,
                             setting.throughZero ? 1.0 : 0.0,
                             setting.sinusoidal ? 1.0 : 0.0,
                             setting.mix / 100};
    for (int index = kFlangerInitialDelay; index <= kFlangerMix; ++index)
        filter->SetParameterValue(index, static_cast<float>(stored[index]));
    filter->Prepare(rate, 8192, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

double AmplitudeAt(const std::vector<float>& response, double hertz, double rate) {
    return std::abs(test::ResponseAt(response, hertz, rate));
}

// The frequency near `hertz` where the response is least, or greatest, by golden sections.
double ExtremumNear(const std::vector<float>& response, double hertz, double rate, bool isGreatest) {
    const double golden = (std::sqrt(5.0) - 1) / 2;
    double low = hertz * 0.99;
    double high = hertz * 1.01;
    for (int i = 0; i < 40; ++i) {
        const double a = high - golden * (high - low);
        const double b = low + golden * (high - low);
        const bool isInLow = (AmplitudeAt(response, a, rate) < AmplitudeAt(response, b, rate)) != isGreatest;
        (isInLow ? high : low) = isInLow ? b : a;
    }
    return (low + high) / 2;
}

// An original and one at a delay d cancel out at odd multiples of 1 / (2 d), at all if one of them is inverted. Up to
// half of the Nyquist frequency, where music has its notches.
TEST(Flanger, NotchesStandWhereTheDelayPutsThem) {
    for (const float rate : {44100.0F, 48000.0F, 96000.0F, 192000.0F}) {
        for (const double milliseconds : {0.1, 0.37, 1.234, 7.3, 20.0}) {
            for (const bool inverted : {false, true}) {
                const auto filter =
                    Prepared({.initial = milliseconds, .final = milliseconds, .inverted = inverted}, 1, rate);
                const auto response = test::ImpulseResponse(*filter, 8000)[0];
                for (const int number : {1, 2, 5}) {
                    const double notch = (inverted ? number : number - 0.5) / milliseconds * 1000;
                    if (notch > rate / 4) continue;
                    EXPECT_NEAR(ExtremumNear(response, notch, rate, false), notch, 0.001 * notch)
                        << milliseconds << " at " << rate;
                    EXPECT_LT(AmplitudeAt(response, notch, rate), 0.02 * std::numbers::sqrt2);
                }
            }
        }
    }
}

// 1 / (1 - feedback) at multiples of 1 / d, and for a negative one half way between.
TEST(Flanger, TheFeedbackRaisesThePeaks) {
    for (const double feedback : {80.0, -80.0}) {
        const auto filter = Prepared({.initial = 2, .final = 2, .feedback = feedback, .mix = 100}, 1, 48000);
        const auto response = test::ImpulseResponse(*filter, 20000)[0];
        for (const int number : {1, 3}) {
            const double peak = (feedback > 0 ? number : number - 0.5) * 500;
            EXPECT_NEAR(ExtremumNear(response, peak, 48000, true), peak, 0.001 * peak);
            EXPECT_NEAR(AmplitudeAt(response, peak, 48000), 5, 0.05);
        }
    }
}

// The place of a click in what comes of it: its moment.
double DelayOf(const std::vector<float>& output, std::size_t click) {
    double sum = 0;
    double moment = 0;
    for (std::size_t i = click; i < std::min(output.size(), click + 1100); ++i) {
        sum += output[i];
        moment += output[i] * static_cast<double>(i - click);
    }
    return moment / sum - 2; // the latency
}

// Clicks ever 25 ms, against the sweep's formula.
TEST(Flanger, TheDelaySweepsBetweenItsEndsInTheRoundOfTheRate) {
    for (const bool sinusoidal : {true, false}) {
        const auto filter =
            Prepared({.initial = 2, .final = 12, .phase = 90, .rate = 0.5, .sinusoidal = sinusoidal, .mix = 100}, 2);
        EXPECT_EQ(filter->Latency(), 2U);
        test::Channels input(2, std::vector<float>(5 * 44100));
        for (std::size_t click = 0; click < 4 * 44100; click += 1103)
            input[0][click] = input[1][click] = 1;
        const auto output = test::Processed(*filter, input);
        for (std::size_t click = 0; click < 4 * 44100; click += 1103) {
            for (std::size_t channel = 0; channel < 2; ++channel) {
                const double delay = DelayOf(output[channel], click);
                const double seconds = (static_cast<double>(click) + delay) / 44100; // when it was heard
                const double phase = 0.5 * seconds + (channel == 1 ? 0.25 : 0);
                const double place = sinusoidal ? (1 - std::cos(2 * std::numbers::pi * phase)) / 2
                                                : 1 - std::abs(2 * (phase - std::floor(phase)) - 1);
                // The sweep goes on while a click's samples are heard.
                ASSERT_NEAR(delay, (2 + 10 * place) * 44.1, 1) << click << " " << channel;
            }
        }
    }
}

TEST(Flanger, ThroughZeroTheOriginalWaitsInTheMiddle) {
    const auto filter = Prepared({.initial = 1, .final = 9, .throughZero = true, .mix = 0}, 1, 48000);
    const auto response = test::ImpulseResponse(*filter, 2000)[0];
    EXPECT_NEAR(response[240 + 2], 1, 1e-5);
}

TEST(Flanger, WithoutAMixTheSoundIsBitExactButLater) {
    const auto input = test::NoiseChannels(2, 5000);
    const auto output =
        test::Processed(*Prepared({.initial = 0, .final = 20, .phase = 77, .feedback = 90, .mix = 0}, 2), input);
    for (std::size_t channel = 0; channel < 2; ++channel)
        EXPECT_TRUE(std::equal(output[channel].begin() + 2, output[channel].end(), input[channel].begin()));
}

} // namespace
