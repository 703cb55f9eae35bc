#include "qoc/dsp/filters/Biquad.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qoc::dsp {

namespace {

// A: the square root of the gain as a factor.
double AmplitudeOf(double decibels) noexcept {
    return std::pow(10.0, decibels / 40);
}

BiquadCoefficients Normalised(double b0, double b1, double b2, double a0, double a1, double a2) noexcept {
    return {b0 / a0, b1 / a0, b2 / a0, a1 / a0, a2 / a0};
}

double Square(double x) noexcept {
    return x * x;
}

// |c0 + c1 / z + c2 / z^2|^2
double PolynomialSquared(double c0, double c1, double c2, const ResponsePoint& z) noexcept {
    return Square((c0 + c2) * z.cosine + c1) + Square((c0 - c2) * z.sine);
}

} // namespace

ResponsePoint::ResponsePoint(double sampleRate, double frequency) noexcept
    : cosine(std::cos(2 * std::numbers::pi * frequency / sampleRate)),
      sine(std::sin(2 * std::numbers::pi * frequency / sampleRate)) {
}

BiquadCoefficients BiquadCoefficients::Peaking(double sampleRate, double frequency, double q, double gain) noexcept {
    const double w0 = 2 * std::numbers::pi * frequency / sampleRate;
    const double cosine = std::cos(w0);
    const double alpha = std::sin(w0) / (2 * q);
    const double a = AmplitudeOf(gain);
    return Normalised(1 + alpha * a, -2 * cosine, 1 - alpha * a, 1 + alpha / a, -2 * cosine, 1 - alpha / a);
}

// Straight from the polynomials: the usual form in sin^2(w/2) loses the bottom of narrow notches to cancellation.
double BiquadCoefficients::MagnitudeSquared(const ResponsePoint& point) const noexcept {
    return PolynomialSquared(b0, b1, b2, point) / PolynomialSquared(1, a1, a2, point);
}

double BiquadCoefficients::MagnitudeSquared(std::span<const BiquadCoefficients> sections,
                                            const ResponsePoint& point) noexcept {
    double power = 1;
    for (const BiquadCoefficients& section : sections)
        if (!section.IsNeutral()) power *= section.MagnitudeSquared(point);
    return power;
}

double BiquadCoefficients::PoleRadius() const noexcept {
    const double half = a1 / 2;
    const double discriminant = half * half - a2;
    return discriminant < 0 ? std::sqrt(a2) : std::abs(half) + std::sqrt(discriminant);
}

double BiquadCoefficients::PoleAngle() const noexcept {
    const double cosine = a2 > 0 ? -a1 / (2 * std::sqrt(a2)) : -a1;
    return std::acos(std::clamp(cosine, -1.0, 1.0));
}

double BiquadCoefficients::DecaySamples(std::span<const BiquadCoefficients> sections, double share) noexcept {
    constexpr double kNear = 4;   // times what a section loses in a sample, in radians, and in what it loses
    constexpr double kLonger = 4; // time constants for each section that is fed by the ringing of another
    double longest = 0;
    for (const BiquadCoefficients& section : sections) {
        if (section.IsNeutral() || section.PoleRadius() == 0) continue;
        const double loss = -std::log(section.PoleRadius());
        const auto isNear = [&](const BiquadCoefficients& other) {
            return &other != &section && !other.IsNeutral() && -std::log(other.PoleRadius()) < kNear * loss &&
                   std::abs(other.PoleAngle() - section.PoleAngle()) < kNear * loss;
        };
        const auto others = static_cast<double>(std::ranges::count_if(sections, isNear));
        longest = std::max(longest, (kLonger * others - std::log(share)) / loss);
    }
    return longest;
}

} // namespace qoc::dsp
