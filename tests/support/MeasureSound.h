#pragma once

#include "ProcessSound.h"

#include <cmath>
#include <complex>
#include <numbers>
#include <random>

// Measurements of what an effect does to sound.
namespace test {

inline std::vector<float> Noise(std::size_t frames, unsigned seed, float amplitude = 1) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> distribution(-amplitude, amplitude);
    std::vector<float> noise(frames);
    for (float& sample : noise)
        sample = distribution(generator);
    return noise;
}

inline Channels NoiseChannels(std::size_t channels, std::size_t frames, unsigned seed = 1, float amplitude = 1) {
    Channels noise;
    for (std::size_t channel = 0; channel < channels; ++channel)
        noise.push_back(Noise(frames, seed + static_cast<unsigned>(channel), amplitude));
    return noise;
}

inline std::vector<float> Sine(double hertz, std::size_t frames, double rate, double amplitude = 0.5) {
    std::vector<float> sine(frames);
    for (std::size_t i = 0; i < frames; ++i)
        sine[i] =
            static_cast<float>(amplitude * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / rate));
    return sine;
}

// What comes out of each channel for a single 1 in all of them at `at`.
inline Channels ImpulseResponse(kroaudiofilterhost::AudioFilter& filter, std::size_t frames, std::size_t at = 0) {
    Channels impulse(filter.GetNumberOfInputChannels(), std::vector<float>(frames));
    for (auto& channel : impulse)
        channel[at] = 1;
    return Processed(filter, impulse);
}

// The response at a frequency of an impulse response whose impulse came at `at`, summed up directly.
inline std::complex<double> ResponseAt(const std::vector<float>& response, double hertz, double rate, double at = 0) {
    std::complex<double> sum;
    for (std::size_t i = 0; i < response.size(); ++i) {
        if (response[i] == 0) continue;
        sum +=
            double{response[i]} * std::polar(1.0, -2 * std::numbers::pi * hertz * (static_cast<double>(i) - at) / rate);
    }
    return sum;
}

inline double Decibels(double amplitude) {
    return 20 * std::log10(amplitude);
}

inline double Energy(const std::vector<float>& sound) {
    double sum = 0;
    for (const float sample : sound)
        sum += double{sample} * sample;
    return sum;
}

// The level, against the sound, of what is left of `output` when the input that came `delay` frames earlier is taken
// away.
inline double NullDecibels(const std::vector<float>& input, const std::vector<float>& output, std::size_t delay) {
    std::vector<float> left;
    for (std::size_t i = delay; i < output.size(); ++i)
        left.push_back(output[i] - input[i - delay]);
    return 10 * std::log10(Energy(left) / Energy(input));
}

// The largest second difference: what a click raises.
inline double Roughness(const std::vector<float>& sound, std::size_t begin, std::size_t end) {
    double largest = 0;
    for (std::size_t i = begin + 2; i < end; ++i)
        largest = std::max(largest, std::abs(double{sound[i]} - 2.0 * sound[i - 1] + sound[i - 2]));
    return largest;
}

} // namespace test
