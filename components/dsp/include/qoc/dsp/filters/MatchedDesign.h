#pragma once

#include "qoc/dsp/filters/Biquad.h"

#include <array>
#include <cstddef>

namespace qoc::dsp {

// Sections whose magnitude is that of analogue filters, not of their bilinear transforms, which are squeezed towards
// half the sample rate. Up to kHighest of the rate they lie within 0.2 dB of the analogue curve (a bell of 20 dB within
// 0.25); the lower the frequency, the nearer they come. Frequencies in hertz, above 0; those above kHighest are held
// there. Gains in decibels; one of 0 lets the sound through. Real time safe; some 50 microseconds a section.
class MatchedDesign {
public:
    static constexpr double kHighest = 0.4538; // of the sample rate: 20 kHz at 44.1 kHz
    static constexpr int kMostOrder = 8;
    using Pass = std::array<BiquadCoefficients, kMostOrder / 2>;

    // `gain` at the frequency; half of its decibels where the band that q = frequency / width means begins and ends.
    static BiquadCoefficients Bell(double sampleRate, double frequency, double q, double gain) noexcept;
    // `gain` below, or above, the frequency; half of its decibels at it. A steep one is of the second order, as steep
    // as goes without overshoot, the other of the first.
    static BiquadCoefficients LowShelf(double sampleRate, double frequency, double gain, bool isSteep) noexcept;
    static BiquadCoefficients HighShelf(double sampleRate, double frequency, double gain, bool isSteep) noexcept;
    // Butterworth filters, 3 dB down at the frequency, of orders from 1; sections that are not needed let the sound
    // through.
    static Pass LowPass(double sampleRate, double frequency, int order) noexcept;
    static Pass HighPass(double sampleRate, double frequency, int order) noexcept;
};

} // namespace qoc::dsp
