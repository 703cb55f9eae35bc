#pragma once

#include "MusicSound.h"

#include <array>
#include <string_view>

// The kinds of sound that an effect is judged on: made by formula, the same for a seed on every machine. What holds for
// one kind need not hold for another.
namespace test {

enum class Material { kMelody, kMusic, kDrums, kSpeech, kChords, kPad, kBrass, kBass, kVowels, kNoise, kSilence };

inline constexpr std::array<std::string_view, 11> kMaterialNames = {
    "melody", "music", "drums", "speech", "chords", "pad", "brass", "bass", "vowels", "noise", "silence"};

namespace material {

using Mono = std::vector<float>;

inline constexpr double kTurn = 2 * std::numbers::pi;

inline double Uniform(std::mt19937& random, double lo, double hi) {
    return lo + (hi - lo) * (static_cast<double>(random()) / 4294967296.0);
}

// A key of the major scale above `hertz`.
inline double ScaleNote(std::mt19937& random, double hertz, int octaves = 2) {
    constexpr std::array<int, 7> kScale = {0, 2, 4, 5, 7, 9, 11};
    const int octave = static_cast<int>(random() % static_cast<unsigned>(octaves));
    return hertz * std::exp2(octave + kScale[random() % kScale.size()] / 12.0);
}

// Adds `count` partials of 1 / n from a frame on, below 0.45 of the rate; `phase` of each at the start, in turns.
template <typename Envelope, typename Phase>
void AddPartials(Mono& sound, double rate, std::size_t begin, std::size_t frames, double hertz, int count,
                 const Envelope& envelope, const Phase& phase) {
    frames = std::min(frames, sound.size() - std::min(begin, sound.size()));
    for (int partial = 1; partial <= count && partial * hertz < 0.45 * rate; ++partial) {
        const double start = phase(partial);
        for (std::size_t i = 0; i < frames; ++i) {
            const double time = static_cast<double>(i) / rate;
            sound[begin + i] += static_cast<float>(envelope(time, partial) / partial *
                                                   std::sin(kTurn * (start + partial * hertz * time)));
        }
    }
}

inline void AddDrums(Mono& sound, double rate, std::mt19937& random) {
    const auto step = static_cast<std::size_t>(0.125 * rate);
    double before = 0;
    for (std::size_t beat = 0; beat * step < sound.size(); ++beat) {
        const bool isKick = beat % 4 == 0 || random() % 8 == 0;
        const bool isSnare = beat % 8 == 4;
        const double loudness = Uniform(random, 0.6, 1);
        for (std::size_t i = 0; i < 4 * step && beat * step + i < sound.size(); ++i) {
            const double time = static_cast<double>(i) / rate;
            const double white = Uniform(random, -1, 1);
            double value = 0.25 * loudness * (white - before) * std::exp(-time / 0.02);
            before = white;
            if (isKick)
                value +=
                    0.9 * std::sin(kTurn * (50 * time + 3 * (1 - std::exp(-time / 0.03)))) * std::exp(-time / 0.12);
            if (isSnare)
                value += loudness * (0.35 * white * std::exp(-time / 0.08) +
                                     0.4 * std::sin(kTurn * 190 * time) * std::exp(-time / 0.05));
            sound[beat * step + i] += static_cast<float>(value);
        }
    }
}

// A pulse train or noise through three resonators, the vowels' or a hiss, that move from one sound to the next.
inline Mono Voice(std::size_t frames, double rate, std::mt19937& random, bool speaks) {
    constexpr double kFormants[6][3] = {{730, 1090, 2440}, {530, 1840, 2480}, {270, 2290, 3010},
                                        {570, 840, 2410},  {300, 870, 2240},  {490, 1350, 1690}};
    constexpr double kWidths[3] = {80, 100, 140};
    Mono sound(frames);
    double state[3][2] = {};
    double formant[3] = {500, 1500, 2500};
    double turn = 0;
    double level = 0;
    std::size_t next = 0;
    const double* vowel = kFormants[0];
    int kind = 0; // 0 vowel, 1 hiss, 2 pause
    double pitch = 120;
    for (std::size_t i = 0; i < frames; ++i) {
        if (i == next) {
            vowel = kFormants[random() % 6];
            const unsigned dice = random() % 8;
            kind = !speaks ? 0 : dice < 5 ? 0 : dice < 7 ? 1 : 2;
            pitch = speaks ? Uniform(random, 95, 190) : ScaleNote(random, 110, 2);
            next += static_cast<std::size_t>(rate * (speaks ? Uniform(random, 0.06, 0.2) : Uniform(random, 0.8, 1.4)));
        }
        const double time = static_cast<double>(i) / rate;
        const double vibrato = speaks ? 1 : 1 + 0.006 * std::sin(kTurn * 5.5 * time);
        turn += pitch * vibrato / rate;
        const double white = Uniform(random, -1, 1);
        double source = 0.02 * white;
        if (turn >= 1) {
            turn -= 1;
            source += 6;
        }
        level += ((kind == 0 ? 1.0 : 0.0) - level) * 150 / rate;
        double value = 0;
        for (int f = 0; f < 3; ++f) {
            formant[f] += (vowel[f] - formant[f]) * 60 / rate;
            const double radius = std::exp(-std::numbers::pi * kWidths[f] / rate);
            const double next0 = source * (1 - radius) +
                                 2 * radius * std::cos(kTurn * formant[f] / rate) * state[f][0] -
                                 radius * radius * state[f][1];
            state[f][1] = state[f][0];
            state[f][0] = next0;
            value += next0;
        }
        sound[i] = static_cast<float>(level * value + (kind == 1 ? 0.05 * white : 0));
    }
    return sound;
}

inline Mono PinkNoise(std::size_t frames, std::mt19937& random) {
    // P. Kellet's filter, as published on the musicdsp list in 1999: -3 dB an octave within 0.05 dB.
    std::array<double, 6> b{};
    Mono sound(frames);
    for (float& sample : sound) {
        const double white = Uniform(random, -1, 1);
        b[0] = 0.99886 * b[0] + white * 0.0555179;
        b[1] = 0.99332 * b[1] + white * 0.0750759;
        b[2] = 0.96900 * b[2] + white * 0.1538520;
        b[3] = 0.86650 * b[3] + white * 0.3104856;
        b[4] = 0.55000 * b[4] + white * 0.5329522;
        b[5] = -0.7616 * b[5] - white * 0.0168980;
        sample = static_cast<float>(0.1 * (b[0] + b[1] + b[2] + b[3] + b[4] + b[5] + white * 0.5362));
    }
    return sound;
}

inline void AddChords(Mono& sound, double rate, unsigned seed, unsigned phases, double detune, int voices) {
    std::mt19937 random(seed);
    std::mt19937 phase(phases);
    const auto length = static_cast<std::size_t>(2 * rate);
    for (std::size_t begin = 0; begin < sound.size(); begin += length) {
        const auto envelope = [](double time, int) {
            return 0.12 * (1 - std::exp(-time / 0.05)) * (time < 1.9 ? 1 : std::max(0.0, (2 - time) / 0.1));
        };
        for (int note = 0; note < 4; ++note) {
            const double hertz = ScaleNote(random, 130, 2);
            for (int voice = 0; voice < voices; ++voice) {
                const double cents = voices == 1 ? 0 : detune * (2.0 * voice / (voices - 1) - 1);
                AddPartials(sound, rate, begin, length, hertz * std::exp2(cents / 1200), 40, envelope,
                            [&](int) { return Uniform(phase, 0, 1); });
            }
        }
    }
}

// Notes one after the other; partials start in phase.
inline void AddNotes(Mono& sound, double rate, std::mt19937& random, double lowest, double seconds, int partials,
                     double attack, double decay) {
    const auto length = static_cast<std::size_t>(seconds * rate);
    for (std::size_t begin = 0; begin < sound.size(); begin += length) {
        const auto envelope = [&](double time, int partial) {
            return 0.4 * (1 - std::exp(-time / attack)) * std::exp(-time / (decay * (1 + 1.0 / partial))) *
                   std::min(1.0, std::max(0.0, (seconds - time) / 0.02));
        };
        AddPartials(sound, rate, begin, length, ScaleNote(random, lowest), partials, envelope,
                    [](int) { return 0.25; });
    }
}

} // namespace material

// Stereo, its loudest sample at 0.5; silence is silent.
inline Channels MakeMaterial(Material kind, std::size_t frames, double rate, unsigned seed = 1) {
    using namespace material;
    std::mt19937 random(seed);
    Channels sound(2, Mono(frames));
    const auto addToBoth = [&](const Mono& mono, float left = 1, float right = 1) {
        for (std::size_t i = 0; i < frames; ++i) {
            sound[0][i] += left * mono[i];
            sound[1][i] += right * mono[i];
        }
    };
    Mono mono(frames);
    switch (kind) {
    case Material::kMelody: addToBoth(Melody(frames, rate, seed), 1, 0.8F); break;
    case Material::kMusic:
        AddDrums(mono, rate, random);
        AddNotes(mono, rate, random, 45, 0.5, 12, 0.005, 0.3);
        addToBoth(mono);
        addToBoth(Melody(frames, rate, seed), 0.5F, 1);
        for (unsigned channel = 0; channel < 2; ++channel)
            AddChords(sound[channel], rate, seed, seed + channel, 0, 1);
        break;
    case Material::kDrums:
        AddDrums(mono, rate, random);
        addToBoth(mono);
        break;
    case Material::kSpeech: addToBoth(Voice(frames, rate, random, true)); break;
    case Material::kChords:
        AddChords(mono, rate, seed, seed, 0, 1);
        addToBoth(mono, 1, 0.9F);
        break;
    case Material::kPad:
        for (unsigned channel = 0; channel < 2; ++channel)
            AddChords(sound[channel], rate, seed, 100 * seed + channel, 12, 5);
        break;
    case Material::kBrass:
        AddNotes(mono, rate, random, 110, 0.8, 60, 0.03, 3);
        addToBoth(mono, 0.9F, 1);
        break;
    case Material::kBass:
        AddNotes(mono, rate, random, 41, 0.4, 10, 0.004, 0.25);
        addToBoth(mono);
        break;
    case Material::kVowels: addToBoth(Voice(frames, rate, random, false)); break;
    case Material::kNoise:
        for (Mono& channel : sound)
            channel = PinkNoise(frames, random);
        break;
    case Material::kSilence: return sound;
    }
    float peak = 0;
    for (const Mono& channel : sound)
        for (const float sample : channel)
            peak = std::max(peak, std::abs(sample));
    for (Mono& channel : sound)
        for (float& sample : channel)
            sample *= 0.5F / peak;
    return sound;
}

} // namespace test
