#include "qoc/components/FilterSections.h"

#include "qoc/components/AnalogPrototype.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace qoc::components {

namespace {

using Complex = std::complex<double>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A point of the unit circle and its square: one and two samples of delay at a frequency.
struct Delays {
    Delays(double hertz, double sampleRate) noexcept
        : one(std::polar(1.0, -2 * std::numbers::pi * hertz / sampleRate)), two(one * one) {}

    Complex one;
    Complex two;
};

// All zeros lie on the unit circle, where each delays by half a sample.
double ZerosDelay(const BiquadCoefficients& section) noexcept {
    if (section.b2 != 0) return 1;
    return section.b1 != 0 ? 0.5 : 0;
}

// Of 1 / (1 + a1 / z + a2 / z^2), in samples: the derivative of its phase.
double PolesDelay(const BiquadCoefficients& section, const Delays& delays) noexcept {
    const Complex first = section.a1 * delays.one;
    const Complex second = section.a2 * delays.two;
    return -((first + 2.0 * second) / (1.0 + first + second)).real();
}

} // namespace

// (n2 s^2 + n1 s + n0) / (d2 s^2 + d1 s + d0); d2 is 0 for a section of the first order.
struct FilterSections::AnalogSection {
    double n2, n1, n0;
    double d2, d1, d0;

    // The magnitude at `frequency` rad/s, infinity included.
    double Gain(double frequency) const noexcept {
        if (frequency == kInfinity) return d2 != 0 ? n2 / d2 : n1 / d1;
        const Complex s(0, frequency);
        return std::abs(((n2 * s + n1) * s + n0) / ((d2 * s + d1) * s + d0));
    }
    // s = (1 - 1/z) / (1 + 1/z).
    BiquadCoefficients Digital(double gain) const noexcept {
        if (d2 == 0) {
            const double a0 = d1 + d0;
            return {gain * (n1 + n0) / a0, gain * (n0 - n1) / a0, 0, (d0 - d1) / a0, 0};
        }
        const double a0 = d2 + d1 + d0;
        return {gain * (n2 + n1 + n0) / a0, gain * 2 * (n0 - n2) / a0, gain * (n2 - n1 + n0) / a0, 2 * (d0 - d2) / a0,
                (d2 - d1 + d0) / a0};
    }
};

FilterSections::FilterSections(const ScientificFilterSettings& settings, double sampleRate) noexcept
    : fSampleRate(sampleRate) {
    const AnalogPrototype prototype = AnalogPrototype::Of(settings);
    const WarpedEdges edges(settings, sampleRate);
    if (prototype.realPole != 0) AddReal(settings, edges, prototype.realPole);
    for (const AnalogPrototype::Pair& pair : prototype.Pairs())
        settings.IsBand() ? AddBandPair(settings, edges, pair.pole, pair.zero)
                          : AddPair(settings, edges, pair.pole, pair.zero);
    const auto sections = std::span(fSections).first(static_cast<std::size_t>(fCount));
    std::ranges::sort(sections, {}, &BiquadCoefficients::PoleRadius);
    for (double* const coefficient : {&fSections[0].b0, &fSections[0].b1, &fSections[0].b2})
        *coefficient *= prototype.gainAtZero;
}

Complex FilterSections::Response(double hertz) const noexcept {
    const Delays delays(hertz, fSampleRate);
    Complex response = 1;
    for (const BiquadCoefficients& section : Sections()) {
        const Complex zeros = section.b0 + section.b1 * delays.one + section.b2 * delays.two;
        const Complex poles = 1.0 + section.a1 * delays.one + section.a2 * delays.two;
        response *= zeros * std::conj(poles) / std::norm(poles);
    }
    return response;
}

double FilterSections::GroupDelay(double hertz) const noexcept {
    const Delays delays(hertz, fSampleRate);
    double samples = 0;
    for (const BiquadCoefficients& section : Sections())
        samples += ZerosDelay(section) + PolesDelay(section, delays);
    return samples / fSampleRate;
}

std::size_t FilterSections::Zeros(std::span<double, kMostSections> hertz) const noexcept {
    std::size_t count = 0;
    for (const BiquadCoefficients& section : Sections()) {
        const double cosine = -section.b1 / (2 * section.b0);
        if (section.b2 == section.b0 && std::abs(cosine) < 1)
            hertz[count++] = std::acos(cosine) / (2 * std::numbers::pi) * fSampleRate;
    }
    return count;
}

double FilterSections::DecaySamples() const noexcept {
    constexpr double kDecay = 1e-6; // 120 dB
    return BiquadCoefficients::DecaySamples(Sections(), kDecay);
}

void FilterSections::AddPair(const ScientificFilterSettings& settings, const WarpedEdges& edges, Complex pole,
                             double zero) noexcept {
    const bool isHighPass = settings.mode == FilterMode::kHighPass;
    const Complex moved = isHighPass ? edges.low / pole : edges.low * pole;
    AnalogSection section{0, 0, 0, 1, -2 * moved.real(), std::norm(moved)};
    if (zero == 0) {
        (isHighPass ? section.n2 : section.n0) = 1;
    } else {
        const double movedZero = isHighPass ? edges.low / zero : edges.low * zero;
        section.n2 = 1;
        section.n0 = movedZero * movedZero;
    }
    Add(section, isHighPass ? kInfinity : 0);
}

void FilterSections::AddReal(const ScientificFilterSettings& settings, const WarpedEdges& edges, double pole) noexcept {
    const double centre = edges.CentreSquared();
    switch (settings.mode) {
    case FilterMode::kLowPass: Add({0, 0, 1, 0, 1, -pole * edges.low}, 0); break;
    case FilterMode::kHighPass: Add({0, 1, 0, 0, 1, -edges.low / pole}, kInfinity); break;
    case FilterMode::kBandPass: Add({0, 1, 0, 1, -pole * edges.Width(), centre}, std::sqrt(centre)); break;
    case FilterMode::kBandStop: Add({1, 0, centre, 1, -edges.Width() / pole, centre}, 0); break;
    }
}

// A pole of the prototype becomes two, on both sides of the band's centre. So does a zero; the outer pole is paired
// with the outer zero, which is the nearer one.
void FilterSections::AddBandPair(const ScientificFilterSettings& settings, const WarpedEdges& edges, Complex pole,
                                 double zero) noexcept {
    const bool isBandPass = settings.mode == FilterMode::kBandPass;
    const double centre = edges.CentreSquared();
    const double reference = isBandPass ? std::sqrt(centre) : 0;
    const Complex moved = isBandPass ? edges.Width() * pole : edges.Width() / pole;
    const Complex root = std::sqrt(moved * moved - 4 * centre);
    // The larger of the two solutions without cancellation, the smaller one from their product.
    const bool isSameDirection = moved.real() * root.real() + moved.imag() * root.imag() >= 0;
    const Complex outer = (moved + (isSameDirection ? root : -root)) / 2.0;
    const Complex inner = centre / outer;

    double outerZero = std::sqrt(centre); // of a band stop whose prototype has its zeros at infinity
    if (zero != 0) {
        const double half = (isBandPass ? edges.Width() * zero : edges.Width() / zero) / 2;
        outerZero = half + std::sqrt(half * half + centre);
    }
    for (const auto& [movedPole, movedZero] : {std::pair(outer, outerZero), std::pair(inner, centre / outerZero)}) {
        AnalogSection section{1, 0, movedZero * movedZero, 1, -2 * movedPole.real(), std::norm(movedPole)};
        if (zero == 0 && isBandPass) section = {0, 1, 0, 1, section.d1, section.d0};
        Add(section, reference);
    }
}

void FilterSections::Add(const AnalogSection& section, double referenceFrequency) noexcept {
    fSections[static_cast<std::size_t>(fCount++)] = section.Digital(1 / section.Gain(referenceFrequency));
}

} // namespace qoc::components
