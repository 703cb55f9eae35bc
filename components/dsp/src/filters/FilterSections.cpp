#include "qoc/dsp/filters/FilterSections.h"

#include "qoc/dsp/filters/AnalogPrototype.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace qoc::dsp {

using components::FilterMode;
using components::ScientificFilterSettings;
using components::WarpedEdges;

namespace {

using Complex = std::complex<double>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Of a + c s + b s^2 at s = j `frequency`: the derivative of its phase by the frequency. Where it is 0, the limit.
double PhaseSlope(double a, double b, double c, double frequency) noexcept {
    if (c == 0) return 0;
    const double squared = frequency * frequency;
    const double real = a - b * squared;
    return c * (a + b * squared) / (real * real + c * c * squared);
}

// The less resonant of two pairs comes first.
bool IsTamer(const AnalogPrototype::Pair& one, const AnalogPrototype::Pair& other) noexcept {
    return one.pole.real() * std::abs(other.pole) < other.pole.real() * std::abs(one.pole);
}

double HertzOf(double frequency, double sampleRate) noexcept {
    return std::atan(frequency) / std::numbers::pi * sampleRate;
}

double FrequencyOf(double hertz, double sampleRate) noexcept {
    return std::tan(std::numbers::pi * hertz / sampleRate);
}

} // namespace

Complex FilterSection::Response(double frequency) const noexcept {
    const double squared = frequency * frequency;
    const Complex zeros(low * tuning * tuning - high * squared, band * tuning * frequency);
    // As a product, for near a resonance the difference is small.
    const Complex poles((tuning - frequency) * (tuning + frequency), damping * tuning * frequency);
    return zeros * std::conj(poles) / std::norm(poles);
}

double FilterSection::GroupDelay(double frequency) const noexcept {
    const double poles = PhaseSlope(tuning * tuning, 1, damping * tuning, frequency);
    const double zeros = PhaseSlope(low * tuning * tuning, high, band * tuning, frequency);
    return (poles - zeros) * (1 + frequency * frequency) / 2;
}

double FilterSection::Zero() const noexcept {
    return band == 0 && high != 0 ? tuning * std::sqrt(low / high) : 0;
}

double FilterSection::LogarithmOfPoleRadius() const noexcept {
    if (damping < 2) {
        const double sum = 1 + tuning * (tuning + damping);
        return std::log1p(-2 * damping * tuning / sum) / 2;
    }
    // Two real poles, whose product is g^2; that of s becomes (1 + s) / (1 - s).
    const double fast = tuning * (damping / 2 + std::sqrt(damping * damping / 4 - 1));
    const double slow = tuning * tuning / fast;
    const auto logarithm = [](double pole) { return std::log1p(-2 * std::min(pole, 1.0) / (1 + pole)); };
    return std::max(logarithm(slow), fast > 1 ? std::log1p(-2 / (1 + fast)) : logarithm(fast));
}

StateVariableFilter FilterSection::Step() const noexcept {
    // What is high is the input less the damped band and the low.
    return {tuning, damping, high, band - damping * high, low - high};
}

// (n2 s^2 + n1 s + n0) / (s^2 + d1 s + d0)
struct FilterSections::AnalogSection {
    double n2, n1, n0;
    double d1, d0;

    // s / (s + edge) or, with `high` 0 and `low` 1, edge / (s + edge).
    static AnalogSection OfFirstOrder(double edge, double high, double low) noexcept {
        return {high, (high + low) * edge, low * edge * edge, 2 * edge, edge * edge};
    }
    // The magnitude at `frequency` rad/s, infinity included.
    double Gain(double frequency) const noexcept {
        if (frequency == kInfinity) return n2;
        const Complex s(0, frequency);
        return std::abs(((n2 * s + n1) * s + n0) / ((s + d1) * s + d0));
    }
    FilterSection Normalised(double gain) const noexcept {
        const double g = std::sqrt(d0);
        return {g, d1 / g, gain * n2, gain * n1 / g, gain * n0 / d0};
    }
};

FilterSections::FilterSections(const ScientificFilterSettings& settings, double sampleRate) noexcept
    : fSampleRate(sampleRate) {
    AnalogPrototype prototype = AnalogPrototype::Of(settings);
    const WarpedEdges edges(settings, sampleRate);
    if (prototype.realPole != 0) AddReal(settings, edges, prototype.realPole);
    std::ranges::sort(prototype.pairs.begin(), prototype.pairs.begin() + prototype.pairCount, IsTamer);
    for (const AnalogPrototype::Pair& pair : prototype.Pairs())
        settings.IsBand() ? AddBandPair(settings, edges, pair.pole, pair.zero)
                          : AddPair(settings, edges, pair.pole, pair.zero);
    for (double* const share : {&fSections[0].high, &fSections[0].band, &fSections[0].low})
        *share *= prototype.gainAtZero;
}

Complex FilterSections::Response(double hertz) const noexcept {
    const double frequency = FrequencyOf(hertz, fSampleRate);
    Complex response = 1;
    for (const FilterSection& section : Sections())
        response *= section.Response(frequency);
    return response;
}

double FilterSections::GroupDelay(double hertz) const noexcept {
    const double frequency = FrequencyOf(hertz, fSampleRate);
    double samples = 0;
    for (const FilterSection& section : Sections())
        samples += section.GroupDelay(frequency);
    return samples / fSampleRate;
}

std::size_t FilterSections::Zeros(std::span<double, kMostSections> hertz) const noexcept {
    std::size_t count = 0;
    for (const FilterSection& section : Sections()) {
        if (const double zero = section.Zero(); zero > 0) hertz[count++] = HertzOf(zero, fSampleRate);
    }
    return count;
}

double FilterSections::DecaySamples() const noexcept {
    const double kDecay = std::log(1e-6); // 120 dB
    double slowest = -kInfinity;
    for (const FilterSection& section : Sections())
        slowest = std::max(slowest, section.LogarithmOfPoleRadius());
    return kDecay / slowest;
}

void FilterSections::AddPair(const ScientificFilterSettings& settings, const WarpedEdges& edges, Complex pole,
                             double zero) noexcept {
    const bool isHighPass = settings.mode == FilterMode::kHighPass;
    const Complex moved = isHighPass ? edges.low / pole : edges.low * pole;
    AnalogSection section{0, 0, 0, -2 * moved.real(), std::norm(moved)};
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
    case FilterMode::kLowPass: Add(AnalogSection::OfFirstOrder(-pole * edges.low, 0, 1), 0); break;
    case FilterMode::kHighPass: Add(AnalogSection::OfFirstOrder(-edges.low / pole, 1, 0), kInfinity); break;
    case FilterMode::kBandPass: Add({0, 1, 0, -pole * edges.Width(), centre}, std::sqrt(centre)); break;
    case FilterMode::kBandStop: Add({1, 0, centre, -edges.Width() / pole, centre}, 0); break;
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
        AnalogSection section{1, 0, movedZero * movedZero, -2 * movedPole.real(), std::norm(movedPole)};
        if (zero == 0 && isBandPass) section = {0, 1, 0, section.d1, section.d0};
        Add(section, reference);
    }
}

void FilterSections::Add(const AnalogSection& section, double referenceFrequency) noexcept {
    fSections[static_cast<std::size_t>(fCount++)] = section.Normalised(1 / section.Gain(referenceFrequency));
}

} // namespace qoc::dsp
