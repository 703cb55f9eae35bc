#include "qoc/dsp/filters/MatchedDesign.h"

#include "filters/MagnitudeFit.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

namespace qoc::dsp {

namespace {

// The square root of the gain as a factor.
double AmplitudeOf(double decibels) noexcept {
    return std::pow(10.0, decibels / 40);
}

// (t1 s + t0) / (s + d0). What it has in common with itself, (s + 1) / (s + 1), lets the fit follow it with a section
// of the second order.
AnalogSection OfFirstOrder(double t1, double t0, double d0) noexcept {
    return {t1, t1 + t0, t0, d0 + 1, d0};
}

AnalogSection LowShelfSection(double a, bool isSteep) noexcept {
    const double middle = std::sqrt(2 * a);
    return isSteep ? AnalogSection{1, middle, a, middle / a, 1 / a} : OfFirstOrder(1, a, 1 / a);
}

AnalogSection HighShelfSection(double a, bool isSteep) noexcept {
    const double middle = std::sqrt(2 * a);
    return isSteep ? AnalogSection{a * a, a * middle, a, middle, a} : OfFirstOrder(a * a, a, a);
}

AnalogSection PassSection(double q, bool isHigh) noexcept {
    return {isHigh ? 1.0 : 0.0, 0, isHigh ? 0.0 : 1.0, 1 / q, 1};
}

AnalogSection FirstOrderPassSection(bool isHigh) noexcept {
    return isHigh ? OfFirstOrder(1, 0, 1) : OfFirstOrder(0, 1, 1);
}

// The quality of the pair of poles `pair`, counted from 1, of a Butterworth filter.
double PairQ(int order, int pair) noexcept {
    const double angle = order % 2 != 0 ? pair : pair - 0.5;
    return 0.5 / std::cos(angle * std::numbers::pi / order);
}

double Held(double sampleRate, double frequency) noexcept {
    return std::min(frequency, MatchedDesign::kHighest * sampleRate);
}

BiquadCoefficients Single(double sampleRate, double frequency, double q, const AnalogSection& section) noexcept {
    return MagnitudeFit(std::span(&section, 1), sampleRate, Held(sampleRate, frequency), q).Section(0);
}

constexpr double kSteepestQ = std::numbers::sqrt2 / 2;
constexpr double kGentleQ = 0.5;

MatchedDesign::Pass ButterworthPass(double sampleRate, double frequency, int order, bool isHigh) noexcept {
    std::array<AnalogSection, MagnitudeFit::kMostSections> sections{};
    std::size_t count = 0;
    if (order % 2 != 0) sections[count++] = FirstOrderPassSection(isHigh);
    for (int pair = 1; pair <= order / 2; ++pair)
        sections[count++] = PassSection(PairQ(order, pair), isHigh);
    const double q = order > 1 ? PairQ(order, order / 2) : kGentleQ;
    const MagnitudeFit fit(std::span<const AnalogSection>(sections).first(count), sampleRate,
                           Held(sampleRate, frequency), q);
    MatchedDesign::Pass pass;
    for (std::size_t i = 0; i < count; ++i)
        pass[i] = fit.Section(i);
    return pass;
}

} // namespace

BiquadCoefficients MatchedDesign::Bell(double sampleRate, double frequency, double q, double gain) noexcept {
    if (gain == 0) return {};
    const double a = AmplitudeOf(gain);
    return Single(sampleRate, frequency, q, {1, a / q, 1, 1 / (a * q), 1});
}

BiquadCoefficients MatchedDesign::LowShelf(double sampleRate, double frequency, double gain, bool isSteep) noexcept {
    if (gain == 0) return {};
    return Single(sampleRate, frequency, isSteep ? kSteepestQ : kGentleQ, LowShelfSection(AmplitudeOf(gain), isSteep));
}

BiquadCoefficients MatchedDesign::HighShelf(double sampleRate, double frequency, double gain, bool isSteep) noexcept {
    if (gain == 0) return {};
    return Single(sampleRate, frequency, isSteep ? kSteepestQ : kGentleQ, HighShelfSection(AmplitudeOf(gain), isSteep));
}

MatchedDesign::Pass MatchedDesign::LowPass(double sampleRate, double frequency, int order) noexcept {
    return ButterworthPass(sampleRate, frequency, order, false);
}

MatchedDesign::Pass MatchedDesign::HighPass(double sampleRate, double frequency, int order) noexcept {
    return ButterworthPass(sampleRate, frequency, order, true);
}

} // namespace qoc::dsp
