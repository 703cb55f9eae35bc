#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace qohost {

// How a file stores one sample, where the user asks for it.
enum class SampleFormat : std::uint8_t { k8Bits, k16Bits, k24Bits, k32Bits, kFloat, kDouble };

// What does not fit into a file: samples beyond full scale, which are limited to it when they are written.
struct Clipping {
    std::size_t samples = 0; // of all channels
    double part = 0;         // of all samples, 0...1
    double decibels = 0;     // how far the loudest is beyond full scale
};

// Counts what an encoding (libsndfile's number) clips of the sound that goes by. Nothing in encodings of floating-point
// numbers, which hold everything. A sample at full scale does not count.
class ClippingMeter {
public:
    explicit ClippingMeter(int encoding);

    // A buffer a channel.
    void Measure(std::span<const float* const> channels, std::size_t frames) noexcept;
    Clipping Result() const;

private:
    float fLimit;
    float fPeak = 0;
    std::size_t fClipped = 0;
    std::size_t fAll = 0;
};

// What brings a sound whose largest sample is `peak` to `decibels` from full scale. 1 for silence, and for a peak that
// is no number.
double FactorForPeak(float peak, double decibels);

} // namespace qohost
