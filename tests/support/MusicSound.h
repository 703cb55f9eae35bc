#pragma once

#include "MeasureSound.h"

// A clean sound to spoil and to restore.
namespace test {

// A melody: three notes a second, each with six harmonics, an attack of 8 ms and a decay, every fifth place a rest.
// Peak about 0.5.
inline std::vector<float> Melody(std::size_t frames, double rate, unsigned seed = 1) {
    constexpr double kNotesPerSecond = 3;
    constexpr double kAttack = 0.008;
    constexpr double kDecay = 0.15;
    std::mt19937 generator(seed);
    std::uniform_int_distribution<int> key(0, 24);
    std::uniform_real_distribution<double> phase(0, 2 * std::numbers::pi);
    std::vector<float> sound(frames);
    const auto length = static_cast<std::size_t>(rate / kNotesPerSecond);
    for (std::size_t note = 0; note * length < frames; ++note) {
        const double hertz = 220 * std::exp2(key(generator) / 12.0);
        if (note % 5 == 4) continue;
        for (int harmonic = 1; harmonic <= 6; ++harmonic) {
            const double start = phase(generator);
            // Notes ring on for another length.
            for (std::size_t i = 0; i < 2 * length && note * length + i < frames; ++i) {
                const double time = static_cast<double>(i) / rate;
                const double envelope = (1 - std::exp(-time / kAttack)) * std::exp(-time / kDecay) *
                                        (1 - static_cast<double>(i) / static_cast<double>(2 * length));
                sound[note * length + i] += static_cast<float>(
                    0.2 / harmonic * envelope * std::sin(start + 2 * std::numbers::pi * hertz * harmonic * time));
            }
        }
    }
    return sound;
}

// The ratio of `clean` to what `sound`, `delay` frames later, has besides it, in decibels.
inline double SignalToNoise(const std::vector<float>& clean, const std::vector<float>& sound, std::size_t delay = 0,
                            std::size_t begin = 0) {
    double signal = 0;
    double noise = 0;
    for (std::size_t i = begin; i + delay < sound.size() && i < clean.size(); ++i) {
        signal += double{clean[i]} * clean[i];
        noise += std::pow(double{sound[i + delay]} - clean[i], 2);
    }
    return 10 * std::log10(signal / noise);
}

// `noise` brought to a level at which the sum of both has this ratio, and added.
inline std::vector<float> Spoiled(const std::vector<float>& clean, const std::vector<float>& noise, double decibels) {
    const double scale = std::sqrt(Energy(clean) / Energy(noise)) * std::pow(10, -decibels / 20);
    std::vector<float> sound = clean;
    for (std::size_t i = 0; i < sound.size(); ++i)
        sound[i] += static_cast<float>(scale * noise[i]);
    return sound;
}

} // namespace test
