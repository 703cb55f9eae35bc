#include "qoc/dsp/filters/Biquad.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

using qoc::dsp::BiquadCoefficients;
using qoc::dsp::ResponsePoint;

namespace {

using Complex = std::complex<double>;
constexpr double kPi = std::numbers::pi;
constexpr double kQ = 1.7;
constexpr double kGain = -15; // dB

double Decibels(Complex response) {
    return 20 * std::log10(std::abs(response));
}

double Decibels(const BiquadCoefficients& filter, double rate, double hertz) {
    return 10 * std::log10(filter.MagnitudeSquared(ResponsePoint(rate, hertz)));
}

// The design is the bilinear transform of an analogue filter whose frequency is 1: at w the digital filter does what
// the analogue one does at tan(w / 2) / tan(w0 / 2).
Complex Warped(double rate, double hertz, double centre) {
    return {0, std::tan(kPi * hertz / rate) / std::tan(kPi * centre / rate)};
}

TEST(Biquad, ThePeakingEqualiserHasTheResponseOfItsAnalogueFilter) {
    const double a = std::pow(10.0, kGain / 40);
    for (const double centre : {20.0, 1000.0, 21000.0}) {
        const BiquadCoefficients filter = BiquadCoefficients::Peaking(44100, centre, kQ, kGain);
        for (const double hertz : {15.0, 20.0, 400.0, 1000.0, 1100.0, 9000.0, 21000.0, 22000.0}) {
            const Complex s = Warped(44100, hertz, centre);
            const double expected = Decibels((s * s + s * a / kQ + 1.0) / (s * s + s / (a * kQ) + 1.0));
            EXPECT_NEAR(Decibels(filter, 44100, hertz), expected, 1e-5 * (1 + std::abs(expected)))
                << centre << ", asked at " << hertz;
        }
    }
}

TEST(Biquad, TellsTheBottomOfADeepNarrowNotchAtALowFrequency) {
    const double q = 100 / std::pow(10.0, -96.0 / 40);
    EXPECT_NEAR(Decibels(BiquadCoefficients::Peaking(192000, 20, q, -96), 192000, 20), -96, 0.001);
}

} // namespace
