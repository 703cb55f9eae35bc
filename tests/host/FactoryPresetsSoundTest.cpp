#include "MeasureLoudness.h"
#include "SoundMaterial.h"
#include "host/FactoryPresets.h"
#include "qoc/components/ComponentIDs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <random>
#include <set>
#include <string>

using namespace qohost;
using kroaudiofilterhost::AudioFilter;
using qoc::components::AllEffects;
using test::Channels;
using test::Material;

namespace {

constexpr double kRate = 48000;
constexpr std::size_t kFrames = 50000; // 1.04 s

Channels Sound(Material kind) {
    return test::MakeMaterial(kind, kFrames, kRate, 3);
}

Channels WithNoise() {
    Channels sound = Sound(Material::kSpeech);
    std::mt19937 random(1);
    for (auto& channel : sound)
        for (float& sample : channel)
            sample += 0.02F * (static_cast<float>(random()) / 4294967296.0F - 0.5F);
    return sound;
}

Channels WithClicks() {
    Channels sound = Sound(Material::kMelody);
    for (std::size_t i = 5000; i + 3 < kFrames; i += 7919)
        for (std::size_t k = 0; k < 3; ++k)
            sound[0][i + k] += k == 1 ? 0.5F : -0.4F;
    return sound;
}

// Long enough for the slowest response.
Channels OneChannelLate() {
    Channels sound = test::MakeMaterial(Material::kVowels, 4 * kFrames, kRate, 3);
    std::rotate(sound[1].begin(), sound[1].end() - 12, sound[1].end());
    return sound;
}

// By 6 dB, at full scale.
Channels Clipped() {
    Channels sound = Sound(Material::kMusic);
    for (auto& channel : sound)
        for (float& sample : channel)
            sample = std::clamp(4 * sample, -1.0F, 1.0F);
    return sound;
}

Channels WithHum(double hertz) {
    Channels sound = Sound(Material::kMusic);
    for (auto& channel : sound)
        for (std::size_t i = 0; i < kFrames; ++i)
            for (int harmonic = 1; harmonic <= 6; ++harmonic)
                channel[i] += static_cast<float>(
                    0.03 / harmonic *
                    std::sin(2 * std::numbers::pi * hertz * harmonic * static_cast<double>(i) / kRate));
    return sound;
}

bool Has(std::string_view name, std::initializer_list<std::string_view> words) {
    return std::ranges::any_of(words, [&](std::string_view word) { return name.find(word) != name.npos; });
}

// What an effect, or a preset by its name, is for; a mix with its loudest sample at -6 dB otherwise.
std::string KindFor(std::string_view effect, std::string_view preset) {
    if (effect == "adaptivenoisereduction") return "noisy";
    if (effect == "autoclickremover") return "clicks";
    if (effect == "autophasecorrection") return "late";
    if (effect == "intraclip") return "clipped";
    if (effect == "notch") return Has(preset, {"60"}) ? "hum 60" : "hum 50";
    if (effect == "pitchcorrect") return "vowels";
    if (effect != "centerchannelextract" && Has(preset, {"Vocal", "Voice", "Speech", "Telephone", "Gate"}))
        return "speech";
    return Has(preset, {"Drum"}) ? "drums" : "music";
}

const Channels& SoundOf(const std::string& kind) {
    static const std::map<std::string, Channels> sounds = {{"noisy", WithNoise()},
                                                           {"clicks", WithClicks()},
                                                           {"late", OneChannelLate()},
                                                           {"clipped", Clipped()},
                                                           {"hum 50", WithHum(50)},
                                                           {"hum 60", WithHum(60)},
                                                           {"vowels", Sound(Material::kVowels)},
                                                           {"speech", Sound(Material::kSpeech)},
                                                           {"drums", Sound(Material::kDrums)},
                                                           {"music", Sound(Material::kMusic)}};
    return sounds.at(kind);
}

// As a render has it: the latency is taken off.
Channels Rendered(AudioFilter& filter, Channels sound) {
    const std::size_t frames = sound[0].size();
    filter.Prepare(kRate, 512, kromediatypes::AudioChannelLayout::ForChannelCount(sound.size()));
    if (filter.WantsToListen()) {
        const std::vector<const float*> inputs = {sound[0].data(), sound[1].data()};
        filter.Listen(inputs, frames);
    }
    for (auto& channel : sound)
        channel.resize(frames + filter.Latency());
    Channels output = test::Processed(filter, sound);
    for (auto& channel : output)
        channel.erase(channel.begin(), channel.end() - static_cast<std::ptrdiff_t>(frames));
    return output;
}

// In decibels, of the sound.
double Change(const Channels& before, const Channels& after) {
    double change = 0;
    double sound = 0;
    for (std::size_t channel = 0; channel < before.size(); ++channel) {
        for (std::size_t i = 0; i < before[channel].size(); ++i) {
            change += std::pow(double{after[channel][i]} - before[channel][i], 2);
            sound += std::pow(double{before[channel][i]}, 2);
        }
    }
    return 10 * std::log10(change / sound + 1e-30);
}

// Effects whose defaults are where one begins: nothing is done yet.
const std::set<std::string_view> kNeutralDefaults = {
    "amplify",          "channelmixer",     "dynamics",         "fftfilter",           "hardlimiter",    "parametriceq",
    "graphiceq10bands", "graphiceq20bands", "graphiceq30bands", "graphicphaseshifter", "stereoexpander", "pitchshift"};

// That another loudness is what the preset is for: less of the sound, or other of it. What moves past comes from afar.
bool NameTellsLoudness(std::string_view effect, std::string_view preset) {
    return effect == "doppler" || Has(preset, {"dB", "Only", "Solo", "Remove", "Mid and Side", "Telephone"});
}

TEST(Loudness, IsThatOfTheRecommendationsTones) {
    const auto tone = [](double level, std::size_t frames) {
        std::vector<float> sound(frames);
        for (std::size_t i = 0; i < frames; ++i)
            sound[i] =
                static_cast<float>(level * std::sin(2 * std::numbers::pi * 997 * static_cast<double>(i) / kRate));
        return sound;
    };
    EXPECT_NEAR(test::Loudness({tone(1, 96000), std::vector<float>(96000)}), -3.01, 0.02);
    EXPECT_NEAR(test::Loudness({tone(0.1, 96000), tone(0.1, 96000)}), -20, 0.02);
    auto pausing = tone(0.1, 96000);
    pausing.resize(480000); // 8 s of silence, which are gated, but for the blocks that hold the end
    EXPECT_NEAR(test::Loudness({pausing, pausing}), -20, 0.4);
}

TEST(FactoryPresets, AreHeardAndStayAsLoudAsTheSoundOnWhatTheyAreFor) {
    constexpr double kAudible = -40; // decibels, of the sound
    constexpr double kMost = 3;      // LU
    std::map<std::string, double> loudness;
    for (const auto& effect : AllEffects()) {
        if (effect.create == nullptr) continue;
        for (const Preset& preset : FactoryPresets(effect)) {
            const std::string kind = KindFor(effect.shortName, preset.name);
            SCOPED_TRACE(std::string(effect.shortName) + ", " + preset.name + ", " + kind);
            const auto filter = effect.create();
            ASSERT_THAT(ApplyPreset(*filter, preset), testing::IsEmpty());
            const Channels& sound = SoundOf(kind);
            const Channels output = Rendered(*filter, sound);
            if (!loudness.contains(kind)) loudness[kind] = test::Loudness(sound);
            const bool isNeutral = preset.name == "Default" && kNeutralDefaults.contains(effect.shortName);
            if (!isNeutral) {
                EXPECT_GT(Change(sound, output), kAudible);
            }
            if (!NameTellsLoudness(effect.shortName, preset.name)) {
                EXPECT_NEAR(test::Loudness(output) - loudness[kind], 0, kMost);
            }
        }
    }
}

} // namespace
