#pragma once

#include <array>
#include <cstddef>
#include <span>

// What TruePeak does for every sample, with the best vectors that the processor has. Some round a product and a sum at
// once, which makes a difference of 1e-6 of the loudest sample at most; it makes none into how many rows sound is cut.
namespace qoc::dsp {

// What is read behind the sound, and written behind the output, at most.
inline constexpr std::size_t kFilterSlack = 32;

// A long filter over a row of samples: the sum of weight k times sound i + k for each i below `count`. An even number
// of weights.
void FilterRow(std::span<const float> weights, const float* sound, float* output, std::size_t count) noexcept;

// One value between two samples, of some of two sounds, or of two pieces of one; for sample i of a row those from i on.
struct PlaceBetween {
    static constexpr std::size_t kTaps = 6; // of each

    const std::array<float, 2 * kTaps>* weights; // the first sound's first
    const float* first;
    const float* second;
};

// Raises each of a row of peaks to the magnitudes at all of these places.
void RaisePeaks(std::span<const PlaceBetween> places, float* peaks, std::size_t count) noexcept;

} // namespace qoc::dsp
