#pragma once

#include <span>

namespace qoc::dsp {

// Where a response is asked for, shared by the sections of a cascade: e^(i w) of a frequency in hertz.
struct ResponsePoint {
    ResponsePoint(double sampleRate, double frequency) noexcept;

    double cosine;
    double sine;
};

// Coefficients of a second-order filter section, y = b0 x + b1 x[-1] + b2 x[-2] - a1 y[-1] - a2 y[-2]. A value.
struct BiquadCoefficients {
    double b0 = 1;
    double b1 = 0;
    double b2 = 0;
    double a1 = 0;
    double a2 = 0;

    // The peaking equaliser of R. Bristow-Johnson, "Cookbook formulae for audio equalizer biquad filter coefficients",
    // the bilinear transform of an analogue one: `gain` (decibels) at the frequency (hertz, above 0 and below half the
    // sample rate), half of its decibels where the band that q = frequency / width means begins and ends. Real time
    // safe.
    static BiquadCoefficients Peaking(double sampleRate, double frequency, double q, double gain) noexcept;

    // The squared magnitude of the response, which multiplies along a cascade; exact to some 1e-4 dB even at the bottom
    // of a narrow notch at a low frequency.
    double MagnitudeSquared(const ResponsePoint& point) const noexcept;
    // Of sections in a row.
    static double MagnitudeSquared(std::span<const BiquadCoefficients> sections, const ResponsePoint& point) noexcept;
    // Whether what it divides by is what it multiplies with: the sound goes through.
    bool IsNeutral() const noexcept { return b0 == 1 && b1 == a1 && b2 == a2; }
    // The distance of the outer pole from the middle of the unit circle.
    double PoleRadius() const noexcept;
    // Its direction, in radians from 0 to pi.
    double PoleAngle() const noexcept;
    // How long sections in a row ring until an impulse has decayed to that share: the slowest one, and longer if others
    // ring at its frequency. Neutral ones do not ring.
    static double DecaySamples(std::span<const BiquadCoefficients> sections, double share) noexcept;
};

} // namespace qoc::dsp
