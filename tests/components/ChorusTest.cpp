#include "qoc/components/Chorus.h"

#include "MeasureLoudness.h"
#include "MeasureSound.h"
#include "SoundMaterial.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

#include <numeric>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;

namespace {

// In the parameters' natural units.
struct Setting {
    int voices = 1;
    double delay = 20;
    double rate = 1;
    double depth = 0;
    double feedback = 0;
    double spread = 0;
    double levelDepth = 0;
    double levelRate = 1;
    bool average = false;
    bool binaural = false;
    double width = 100;
    double mix = 100;
};

boost::intrusive_ptr<AudioFilter> Prepared(const Setting& setting, std::size_t channels = 1, float rate = 44100) {
    boost::intrusive_ptr<AudioFilter> filter(new Chorus);
    const double stored[] = {(setting.voices - 1) / 7.0,
                             setting.delay / 90,
                             (setting.rate - 0.01) / 9.99,
                             setting.depth / 100,
                             setting.feedback / 95,
                             setting.spread / 200,
                             setting.levelDepth / 24,
                             (setting.levelRate - 0.01) / 9.99,
                             1,
                             setting.average ? 1.0 : 0.0,
                             setting.binaural ? 1.0 : 0.0,
                             setting.width / 100,
                             setting.mix / 100};
    for (int index = kChorusVoices; index <= kChorusMix; ++index)
        filter->SetParameterValue(index, static_cast<float>(stored[index]));
    filter->Prepare(rate, 8192, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

// By how many seconds a tone of 1 kHz has been delayed, and its amplitude, ever 10 ms: from its phase against the tone
// that went in, followed from one place to the next. The first 100 ms are left out.
struct Track {
    std::vector<double> seconds;
    std::vector<double> delays;
    std::vector<double> amplitudes;
};

Track Followed(const std::vector<float>& output, double rate, double firstDelay) {
    constexpr double kHertz = 1000;
    const auto window = static_cast<std::size_t>(rate / 100);
    Track track;
    double before = firstDelay;
    for (std::size_t start = 10 * window; start + window <= output.size(); start += window) {
        std::complex<double> sum;
        for (std::size_t i = start; i < start + window; ++i)
            sum += double{output[i]} *
                   std::polar(2.0 / static_cast<double>(window),
                              -2 * std::numbers::pi * kHertz * static_cast<double>(i) / rate + std::numbers::pi / 2);
        const double late = -std::arg(sum) / (2 * std::numbers::pi * kHertz);
        before = late + std::round((before - late) * kHertz) / kHertz;
        track.seconds.push_back((static_cast<double>(start) + static_cast<double>(window - 1) / 2) / rate);
        track.delays.push_back(before);
        track.amplitudes.push_back(std::abs(sum));
    }
    return track;
}

// delay * (1 - depth * (1 - sin) / 2). After 8 s a rate that is off by 1e-4 would be off by 0.5 % of the swing.
TEST(Chorus, AVoiceFollowsItsRateAndDepthExactly) {
    struct Case {
        double delay; // ms
        double rate;
        double depth; // percent
        float sampleRate;
    };
    const Case cases[] = {
        {20, 0.5, 20, 44100}, {90, 0.1, 50, 48000}, {5, 1, 100, 96000}, {3, 1, 40, 192000}, {10, 0.01, 80, 44100}};
    for (const Case& each : cases) {
        const auto filter = Prepared({.delay = each.delay, .rate = each.rate, .depth = each.depth}, 1, each.sampleRate);
        const auto frames = static_cast<std::size_t>((each.rate < 1 ? 8 : 2) * each.sampleRate);
        const auto output = test::Processed(*filter, {test::Sine(1000, frames, each.sampleRate)})[0];
        const double swing = each.delay / 1000 * each.depth / 100;
        const auto expected = [&](double seconds) {
            return each.delay / 1000 - swing * (1 - std::sin(2 * std::numbers::pi * each.rate * seconds)) / 2;
        };
        const Track track = Followed(output, each.sampleRate, expected(0.105));
        for (std::size_t i = 0; i < track.delays.size(); ++i)
            ASSERT_NEAR(track.delays[i], expected(track.seconds[i]), 0.01 * swing) << each.delay << " " << i;
    }
}

TEST(Chorus, TheLevelSwingsByItsDepth) {
    const auto filter = Prepared({.levelDepth = 12, .levelRate = 0.5});
    const Track track = Followed(test::Processed(*filter, {test::Sine(1000, 8 * 44100, 44100)})[0], 44100, 0.02);
    for (std::size_t i = 0; i < track.amplitudes.size(); ++i) {
        const double below = 12 * (1 - std::sin(std::numbers::pi * track.seconds[i])) / 2;
        ASSERT_NEAR(test::Decibels(track.amplitudes[i] / 0.5), -below, 0.05) << track.seconds[i];
    }
}

std::vector<std::size_t> Peaks(const std::vector<float>& response) {
    std::vector<std::size_t> peaks;
    for (std::size_t i = 0; i < response.size(); ++i)
        if (std::abs(response[i]) > 0.1) peaks.push_back(i);
    return peaks;
}

// At 48 kHz 10 ms are 480 samples. The places of the first three voices in the spread are the golden ratio's multiples.
TEST(Chorus, TheSpreadSetsVoicesBack) {
    const auto filter = Prepared({.voices = 3, .delay = 10, .spread = 100}, 1, 48000);
    const auto response = test::ImpulseResponse(*filter, 10000)[0];
    const double golden = (std::sqrt(5.0) - 1) / 2;
    const double expected[] = {480, 480 + 4800 * (2 * golden - 1), 480 + 4800 * golden};
    // Between two samples, a voice has two large values.
    for (const double place : expected) {
        double sum = 0;
        double moment = 0;
        for (auto i = static_cast<std::size_t>(place) - 5; i < static_cast<std::size_t>(place) + 7; ++i) {
            sum += response[i];
            moment += response[i] * static_cast<double>(i);
        }
        EXPECT_NEAR(sum, 1 / std::sqrt(3.0), 1e-4) << place;
        EXPECT_NEAR(moment / sum, place, 0.01);
    }
}

TEST(Chorus, TheFeedbackRepeatsWhatAVoiceSings) {
    const auto filter = Prepared({.delay = 10, .feedback = 50}, 1, 48000);
    const auto response = test::ImpulseResponse(*filter, 3000)[0];
    EXPECT_EQ(Peaks(response), (std::vector<std::size_t>{480, 960, 1440, 1920}));
    EXPECT_NEAR(response[1440], 0.25, 1e-4);
}

TEST(Chorus, VoicesStandFromLeftToRightAndTheFartherEarHearsThemLater) {
    const double lag = 0.0875 / 343 * (std::numbers::pi / 2 + 1) * 48000; // 31.5 samples
    const auto near = static_cast<std::size_t>(480);
    const auto far = static_cast<std::size_t>(480 + lag);
    for (const double width : {0.0, 50.0, 100.0}) {
        const auto response = test::ImpulseResponse(
            *Prepared({.voices = 2, .delay = 10, .binaural = true, .width = width}, 2, 48000), 4000);
        const double side = width / 100;
        if (width == 0) {
            EXPECT_NEAR(response[0][near], std::sqrt(2.0), 1e-4);
        } else {
            EXPECT_NEAR(response[0][near], std::sqrt((1 + side) / 2), 1e-4);
            EXPECT_NEAR(response[1][near], std::sqrt((1 + side) / 2), 1e-4);
        }
        if (width == 50) {
            EXPECT_GT(std::abs(response[0][480 + 15]) + std::abs(response[0][480 + 16]), 0.4);
        }
    }
    EXPECT_EQ(far, 511U);
}

TEST(Chorus, WithTheAverageBothSidesHearTheMean) {
    const auto filter = Prepared({.delay = 10, .average = true}, 2, 48000);
    test::Channels input(2, std::vector<float>(2000));
    input[1][0] = 1;
    const auto output = test::Processed(*filter, input);
    EXPECT_NEAR(output[0][480], 0.5, 1e-5);
    EXPECT_NEAR(output[1][480], 0.5, 1e-5);
}

// What is still to be heard of the mean comes out of both sides when it is left.
TEST(Chorus, TheMeanThatWasTakenGoesOnWhenTheAverageGoesOff) {
    constexpr std::size_t kHalf = 4410;
    constexpr std::size_t kDelay = 882;
    const auto filter = Prepared({.average = true, .width = 0}, 2);
    test::Channels input = {test::Sine(500, kHalf + kDelay, 44100, 0.5), std::vector<float>(kHalf + kDelay)};
    std::fill(input[0].begin() + kHalf, input[0].end(), 0.0F);
    test::Channels output = input;
    test::Process(*filter, input, output, 0, kHalf, 512);
    filter->SetParameterValue(kChorusAverage, 0);
    test::Process(*filter, input, output, kHalf, kHalf + kDelay, 512);
    for (std::size_t i = kHalf; i < kHalf + kDelay; ++i) {
        ASSERT_NEAR(output[1][i], input[0][i - kDelay] / 2, 1e-6) << i;
        ASSERT_EQ(output[0][i], output[1][i]) << i;
    }
}

// At the defaults, of a sound in the middle: its loudness stays, and little is left of the middle.
TEST(Chorus, SpreadsASoundThatIsAsLoudAsBefore) {
    for (const test::Material kind : {test::Material::kMusic, test::Material::kSpeech, test::Material::kVowels}) {
        test::Channels sound = test::MakeMaterial(kind, 192000, 48000);
        sound[1] = sound[0];
        const boost::intrusive_ptr<AudioFilter> filter(new Chorus);
        filter->Prepare(48000, 512, AudioChannelLayout::Stereo());
        const test::Channels output = test::Processed(*filter, sound);
        EXPECT_NEAR(test::Loudness(output), test::Loudness(sound), 1) << static_cast<int>(kind);
        const double across = std::inner_product(output[0].begin(), output[0].end(), output[1].begin(), 0.0);
        EXPECT_LE(across / std::sqrt(test::Energy(output[0]) * test::Energy(output[1])), 0.4) << static_cast<int>(kind);
    }
}

// Of noise, in which voices at delays of their own have nothing in common.
TEST(Chorus, TheWidthTakesTheSidesApartAndKeepsTheirPower) {
    test::Channels noise = test::MakeMaterial(test::Material::kNoise, 48000, 48000);
    noise[1] = noise[0];
    for (const int voices : {2, 3, 4, 8}) {
        for (const double width : {0.0, 50.0, 100.0}) {
            const auto output = test::Processed(
                *Prepared({.voices = voices, .delay = 10, .spread = 200, .width = width}, 2, 48000), noise);
            const double powers = test::Energy(output[0]) + test::Energy(output[1]);
            const double across = std::inner_product(output[0].begin(), output[0].end(), output[1].begin(), 0.0);
            const double sides = (1 - std::sqrt(1 - width * width / 10000)) * (voices > 2 ? 0.6 : 0.5);
            EXPECT_NEAR(2 * across / powers, 1 - 2 * sides, 0.15) << voices << " " << width;
            EXPECT_NEAR(test::Decibels(std::sqrt(powers / 2 / test::Energy(noise[0]))), 0, 1.5)
                << voices << " " << width;
        }
    }
}

TEST(Chorus, WithoutAMixTheSoundIsBitExact) {
    const auto input = test::NoiseChannels(6, 5000);
    EXPECT_TRUE(test::Processed(*Prepared({.voices = 8, .depth = 50, .feedback = 80, .mix = 0}, 6), input) == input);
}

} // namespace
