#include "qoc/dsp/filters/MatchedDesign.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

using qoc::dsp::BiquadCoefficients;
using qoc::dsp::MatchedDesign;
using qoc::dsp::ResponsePoint;

namespace {

// Of analogue filters, in decibels, at x times their frequency.
using Analogue = std::function<double(double x)>;

double Quadratic(double s2, double s1, double s0, double x) {
    return std::hypot(s0 - s2 * x * x, s1 * x);
}

double BellDecibels(double x, double q, double gain) {
    const double a = std::pow(10, gain / 40);
    return 20 * std::log10(Quadratic(1, a / q, 1, x) / Quadratic(1, 1 / (a * q), 1, x));
}

double LowShelfDecibels(double x, double gain, bool isSteep) {
    const double a = std::pow(10, gain / 40);
    if (!isSteep) return 20 * std::log10(std::hypot(x, a) / std::hypot(x, 1 / a));
    const double middle = std::sqrt(2 * a);
    return 20 * std::log10(a * Quadratic(1, middle, a, x) / Quadratic(a, middle, 1, x));
}

double LowPassDecibels(double x, int order) {
    return -10 * std::log10(1 + std::pow(x, 2 * order));
}

constexpr double kRates[] = {44100, 48000, 96000};
constexpr double kFrequencies[] = {20, 150, 1000, 3500, 7000, 10000, 12500, 14500, 16000, 18000, 20000};
constexpr double kLowestLooked = -80; // decibels

std::vector<double> PlacesToLook(double frequency, double q) {
    std::vector<double> places = {20, 70, 200};
    for (int i = 1; i <= 25; ++i)
        places.push_back(800 * i);
    for (int i = -6; i <= 6; ++i)
        places.push_back(frequency * std::exp(std::asinh(i / (4 * q))));
    std::erase_if(places, [](double hertz) { return hertz > 20000; });
    return places;
}

// Looks from the bottom to 20 kHz, and sees that the sections stay stable.
template <std::size_t Count>
void ExpectFollows(const std::array<BiquadCoefficients, Count>& sections, double rate, double frequency, double q,
                   const Analogue& analogue, double tolerance, const std::string& what) {
    const std::string where = what + ", " + std::to_string(frequency) + " Hz of " + std::to_string(rate);
    for (const BiquadCoefficients& section : sections)
        ASSERT_LT(section.PoleRadius(), 1) << where;
    for (const double hertz : PlacesToLook(frequency, q)) {
        const double expected = analogue(hertz / frequency);
        if (expected < kLowestLooked) continue;
        const double got = 10 * std::log10(BiquadCoefficients::MagnitudeSquared(sections, ResponsePoint(rate, hertz)));
        ASSERT_NEAR(got, expected, tolerance) << where << " at " << hertz;
    }
}

// The lower, the nearer; the figures are in decibels.
double Tolerance(double frequency, double high, double low) {
    return frequency > 200 ? high : low;
}

TEST(MatchedDesign, BellsFollowTheAnalogueCurveUpTo20Kilohertz) {
    for (const double rate : kRates) {
        for (const double frequency : kFrequencies) {
            for (const double q : {0.1, 0.5, 1.0, 2.0, 3.0, 8.0, 100.0}) {
                for (const double gain : {-20.0, -6.0, 0.1, 12.0, 20.0}) {
                    const std::array bell = {MatchedDesign::Bell(rate, frequency, q, gain)};
                    const double tolerance = std::abs(gain) > 12 ? 0.25 : std::abs(gain) > 6 ? 0.15 : 0.08;
                    ExpectFollows(
                        bell, rate, frequency, q, [&](double x) { return BellDecibels(x, q, gain); },
                        q < 0.5 ? tolerance : Tolerance(frequency, tolerance, 0.01),
                        "q " + std::to_string(q) + ", " + std::to_string(gain) + " dB");
                }
            }
        }
    }
}

TEST(MatchedDesign, ShelvesFollowTheAnalogueCurveUpTo20Kilohertz) {
    for (const double rate : kRates) {
        for (const double frequency : kFrequencies) {
            for (const double gain : {-20.0, -6.0, 0.1, 12.0, 20.0}) {
                for (const bool isSteep : {false, true}) {
                    const std::string what = (isSteep ? "steep, " : "gentle, ") + std::to_string(gain) + " dB";
                    const std::array low = {MatchedDesign::LowShelf(rate, frequency, gain, isSteep)};
                    const auto lowShelf = [&](double x) { return LowShelfDecibels(x, gain, isSteep); };
                    ExpectFollows(low, rate, frequency, 0.7, lowShelf, Tolerance(frequency, 0.1, 0.01), "low " + what);
                    const std::array high = {MatchedDesign::HighShelf(rate, frequency, gain, isSteep)};
                    const auto highShelf = [&](double x) { return LowShelfDecibels(1 / x, gain, isSteep); };
                    ExpectFollows(high, rate, frequency, 0.7, highShelf, Tolerance(frequency, 0.1, 0.01),
                                  "high " + what);
                }
            }
        }
    }
}

TEST(MatchedDesign, PassesFollowTheAnalogueCurveUpTo20Kilohertz) {
    for (const double rate : kRates) {
        for (const double frequency : kFrequencies) {
            for (int order = 1; order <= MatchedDesign::kMostOrder; ++order) {
                const std::string what = "pass of order " + std::to_string(order);
                ExpectFollows(
                    MatchedDesign::LowPass(rate, frequency, order), rate, frequency, 0.7,
                    [&](double x) { return LowPassDecibels(x, order); }, 0.2, "low " + what);
                ExpectFollows(
                    MatchedDesign::HighPass(rate, frequency, order), rate, frequency, 0.7,
                    [&](double x) { return LowPassDecibels(1 / x, order); }, Tolerance(frequency, 0.2, 0.01),
                    "high " + what);
            }
        }
    }
}

TEST(MatchedDesign, AGainOfZeroLetsTheSoundThrough) {
    EXPECT_TRUE(MatchedDesign::Bell(44100, 1000, 1, 0).IsNeutral());
    EXPECT_TRUE(MatchedDesign::LowShelf(44100, 1000, 0, true).IsNeutral());
    EXPECT_TRUE(MatchedDesign::HighShelf(44100, 1000, 0, false).IsNeutral());
}

// At a low sample rate as well, where the frequency lies beyond half of it: no bell, shelf or pass runs away.
TEST(MatchedDesign, FrequenciesBeyondHalfTheSampleRateAreHeldBelow) {
    for (const double rate : {8000.0, 22050.0}) {
        for (int order = 1; order <= MatchedDesign::kMostOrder; ++order) {
            for (const BiquadCoefficients& section : MatchedDesign::HighPass(rate, 20000, order)) {
                EXPECT_LT(section.PoleRadius(), 1) << rate << " " << order;
                EXPECT_LT(section.MagnitudeSquared(ResponsePoint(rate, rate / 2)), 10) << rate << " " << order;
            }
        }
        const BiquadCoefficients bell = MatchedDesign::Bell(rate, 20000, 1, 12);
        EXPECT_NEAR(10 * std::log10(bell.MagnitudeSquared(ResponsePoint(rate, 0.4538 * rate))), 12, 0.2) << rate;
    }
}

} // namespace
