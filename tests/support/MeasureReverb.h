#pragma once

#include "MeasureSound.h"

#include <algorithm>

// Measurements of reverberation.
namespace test {

// Seconds in which impulse responses decay by 60 dB: from where backward integration (M. R. Schroeder, "New method of
// measuring reverberation time", JASA 37, 1965) has fallen by `from` to where it has by `to` decibels, by least
// squares. Several responses of one room are averaged before, as ISO 3382 has it.
inline double DecayTime(const Channels& responses, double rate, double from = -5, double to = -35) {
    std::vector<double> left(responses.front().size());
    double sum = 0;
    for (std::size_t i = left.size(); i-- > 0;) {
        for (const auto& response : responses)
            sum += double{response[i]} * response[i];
        left[i] = sum;
    }
    double n = 0, x = 0, y = 0, xx = 0, xy = 0;
    for (std::size_t i = 0; i < left.size(); ++i) {
        const double decibels = 10 * std::log10(left[i] / left[0]);
        if (decibels > from) continue;
        if (decibels < to) break;
        const double seconds = static_cast<double>(i) / rate;
        n += 1;
        x += seconds;
        y += decibels;
        xx += seconds * seconds;
        xy += seconds * decibels;
    }
    return -60 * (n * xx - x * x) / (n * xy - x * y);
}

inline double DecayTime(const std::vector<float>& response, double rate, double from = -5, double to = -35) {
    return DecayTime(Channels{response}, rate, from, to);
}

// The share of samples within 20 ms around a time that lie outside the standard deviation, against that of Gaussian
// noise: 0 for single echoes, 1 when they are too dense to be told apart.
inline double EchoDensity(const std::vector<float>& response, double seconds, double rate) {
    const auto half = static_cast<std::size_t>(0.01 * rate);
    const auto middle = static_cast<std::size_t>(seconds * rate);
    const std::vector<float> window(response.begin() + static_cast<std::ptrdiff_t>(middle - half),
                                    response.begin() + static_cast<std::ptrdiff_t>(middle + half));
    const double deviation = std::sqrt(Energy(window) / static_cast<double>(window.size()));
    const auto outside = std::ranges::count_if(window, [&](float sample) { return std::abs(sample) > deviation; });
    return static_cast<double>(outside) / static_cast<double>(window.size()) / 0.3173;
}

// What of a sound lies in the octave around a frequency: three complex resonances in a row, in double
// precision.
inline std::vector<float> Octave(const std::vector<float>& sound, double hertz, double rate) {
    std::vector<std::complex<double>> band(sound.begin(), sound.end());
    constexpr double kHalfWidth = 0.3; // of the frequency, at each of the resonances
    for (const double centre : {0.84 * hertz, hertz, 1.19 * hertz}) {
        const auto pole = std::exp(std::complex<double>(-kHalfWidth * hertz, centre) * (2 * std::numbers::pi / rate));
        std::complex<double> state;
        for (std::complex<double>& sample : band)
            sample = state = pole * state + (1 - std::abs(pole)) * sample;
    }
    std::vector<float> octave;
    for (const std::complex<double>& sample : band)
        octave.push_back(static_cast<float>(sample.real()));
    return octave;
}

inline Channels Octave(const Channels& sounds, double hertz, double rate) {
    Channels octaves;
    for (const auto& sound : sounds)
        octaves.push_back(Octave(sound, hertz, rate));
    return octaves;
}

} // namespace test
