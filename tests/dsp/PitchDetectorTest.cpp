#include "qoc/dsp/pitch/PitchDetector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

using namespace qoc::dsp;

namespace {

struct Voice {
    const char* name;
    std::vector<double> harmonics; // amplitudes from the fundamental on
    double noise = 0;              // standard deviation
    double offset = 0;
};

const Voice kVoices[] = {
    {"sine", {1}},
    {"quiet sine", {0.001}},
    {"fundamental missing", {0, 0.5, 0.4, 0.3, 0.2}},
    {"bright", {1, 0.9, 0.8, 0.7, 0.6, 0.5, 0.4, 0.3}},
    {"weak fundamental", {0.1, 1, 0.5, 0.7}},
    {"offset", {0.1}, 0, 0.9},
};

std::vector<float> Sound(const Voice& voice, double frequency, double sampleRate, std::size_t frames) {
    std::mt19937 generator(3);
    std::normal_distribution<double> noise(0, 1);
    std::vector<float> sound(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        double sample = voice.offset + voice.noise * noise(generator);
        for (std::size_t h = 0; h < voice.harmonics.size(); ++h) {
            const double harmonic = static_cast<double>(h + 1);
            const double phase = harmonic * harmonic; // no two alike
            sample +=
                voice.harmonics[h] *
                std::sin(2 * std::numbers::pi * harmonic * frequency * static_cast<double>(i) / sampleRate + phase);
        }
        sound[i] = static_cast<float>(sample);
    }
    return sound;
}

double Cents(double a, double b) {
    return 1200 * std::log2(a / b);
}

TEST(PitchDetector, FindsThePitchOfAnyVoiceWithinACent) {
    for (const std::size_t size : {1024, 2048, 4096}) {
        PitchDetector detector(size);
        for (const double sampleRate : {32000.0, 44100.0, 96000.0}) {
            // From a little above the lowest pitch of the frame up to that of a high voice.
            for (double f = 2.1 * sampleRate / static_cast<double>(size); f < 1500; f *= 1.37) {
                for (const Voice& voice : kVoices) {
                    const auto pitch = detector.Detect(Sound(voice, f, sampleRate, size), sampleRate);
                    ASSERT_TRUE(pitch) << voice.name << " " << f << " Hz in " << size << " at " << sampleRate;
                    EXPECT_NEAR(Cents(sampleRate / pitch->period, f), 0, 1)
                        << voice.name << " " << f << " Hz in " << size << " at " << sampleRate;
                }
            }
        }
    }
}

TEST(PitchDetector, HearsAVoiceThroughNoiseTwentyDecibelsBelow) {
    PitchDetector detector(2048);
    for (const double f : {80.0, 220.0, 700.0}) {
        const auto pitch = detector.Detect(Sound({"", {1, 0.5}, 0.08}, f, 44100, 2048), 44100);
        ASSERT_TRUE(pitch) << f;
        EXPECT_NEAR(Cents(44100 / pitch->period, f), 0, 10);
    }
}

TEST(PitchDetector, FindsNoPitchWhereThereIsNone) {
    PitchDetector detector(2048);
    EXPECT_FALSE(detector.Detect(std::vector<float>(2048, 0.0F), 44100));
    EXPECT_FALSE(detector.Detect(std::vector<float>(2048, 0.7F), 44100));
    EXPECT_FALSE(detector.Detect(Sound({"noise", {}, 0.3}, 1, 44100, 2048), 44100));
    EXPECT_FALSE(detector.Detect(Sound({"-100 dB", {1e-5}}, 440, 44100, 2048), 44100));
    EXPECT_FALSE(detector.Detect(Sound({"too low", {0.5}}, 15, 44100, 2048), 44100));
    EXPECT_FALSE(detector.Detect(std::vector<float>(2048, 3e38F), 44100));
    EXPECT_TRUE(detector.Detect(Sound({"voice", {0.5}}, 440, 44100, 2048), 44100));
}

} // namespace
