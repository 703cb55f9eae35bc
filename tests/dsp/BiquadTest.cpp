#include "qoc/dsp/filters/Biquad.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <functional>
#include <numbers>
#include <string>

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

// The designs are bilinear transforms of analogue filters whose frequency is 1: at w the digital filter does what the
// analogue one does at tan(w / 2) / tan(w0 / 2).
Complex Warped(double rate, double hertz, double centre) {
    return {0, std::tan(kPi * hertz / rate) / std::tan(kPi * centre / rate)};
}

TEST(Biquad, EveryDesignHasTheResponseOfItsAnalogueFilter) {
    const double a = std::pow(10.0, kGain / 40);
    const double root = std::sqrt(a) / kQ;
    struct {
        const char* name;
        std::function<BiquadCoefficients(double rate, double centre)> design;
        std::function<Complex(Complex)> analogue;
    } const cases[] = {
        {"low pass", [](double r, double f) { return BiquadCoefficients::LowPass(r, f, kQ); },
         [](Complex s) { return 1.0 / (s * s + s / kQ + 1.0); }},
        {"high pass", [](double r, double f) { return BiquadCoefficients::HighPass(r, f, kQ); },
         [](Complex s) { return s * s / (s * s + s / kQ + 1.0); }},
        {"peaking", [](double r, double f) { return BiquadCoefficients::Peaking(r, f, kQ, kGain); },
         [a](Complex s) { return (s * s + s * a / kQ + 1.0) / (s * s + s / (a * kQ) + 1.0); }},
        {"low shelf", [](double r, double f) { return BiquadCoefficients::LowShelf(r, f, kQ, kGain); },
         [a, root](Complex s) { return a * (s * s + root * s + a) / (a * s * s + root * s + 1.0); }},
        {"high shelf", [](double r, double f) { return BiquadCoefficients::HighShelf(r, f, kQ, kGain); },
         [a, root](Complex s) { return a * (a * s * s + root * s + 1.0) / (s * s + root * s + a); }},
    };
    for (const auto& each : cases) {
        for (const double centre : {20.0, 1000.0, 21000.0}) {
            for (const double hertz : {15.0, 20.0, 400.0, 1000.0, 1100.0, 9000.0, 21000.0, 22000.0}) {
                const double expected = Decibels(each.analogue(Warped(44100, hertz, centre)));
                EXPECT_NEAR(Decibels(each.design(44100, centre), 44100, hertz), expected,
                            1e-5 * (1 + std::abs(expected)))
                    << each.name << " at " << centre << ", asked at " << hertz;
            }
        }
    }
}

TEST(Biquad, TellsTheBottomOfADeepNarrowNotchAtALowFrequency) {
    const double q = 100 / std::pow(10.0, -96.0 / 40);
    EXPECT_NEAR(Decibels(BiquadCoefficients::Peaking(192000, 20, q, -96), 192000, 20), -96, 0.001);
}

} // namespace
