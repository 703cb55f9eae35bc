#pragma once

#include "qoc/dsp/filters/Biquad.h"

#include <array>
#include <cstddef>
#include <span>

namespace qoc::dsp {

// (n2 s^2 + n1 s + n0) / (s^2 + d1 s + d0), where s = j at the frequency of the filter that it is a part of.
struct AnalogSection {
    double n2, n1, n0;
    double d1, d0;

    // The squared magnitude at the square root of `ratio` times the frequency.
    double Power(double ratio) const noexcept;
};

// Finds sections of a digital filter that together have the magnitude of analogue ones: the largest deviation in
// decibels up to MatchedDesign::kHighest is made small, where the curve lies low with less weight, and the gain at 0 Hz
// is exact.
//
// Where K. Steiglitz and L. E. McBride's iteration ("A technique for the identification of linear systems", IEEE
// Transactions on Automatic Control 10, 1965), here on squared magnitudes as C. K. Sanathanan and J. Koerner have it
// ("Transfer function synthesis as a ratio of two complex polynomials", 1963), brings each section by itself, Levenberg
// and Marquardt's method takes all together, weighted after C. L. Lawson so that least squares become the least
// maximum. Its unknowns are logarithms of what makes a section minimum phase and stable: all values are. Real time
// safe.
class MagnitudeFit {
public:
    static constexpr std::size_t kMostSections = 4;

    // `frequency` and rate in hertz, below half the sample rate; `q`: of the sharpest resonance.
    MagnitudeFit(std::span<const AnalogSection> sections, double sampleRate, double frequency, double q) noexcept;

    BiquadCoefficients Section(std::size_t index) const noexcept;

private:
    // Of a section at u = (tan(w / 2) / tan(w0 / 2))^2, as logarithms: its squared magnitude is
    // ((start poles - high u)^2 + middle poles u) / ((poles - u)^2 + damping poles u), `start` the gain at u = 0.
    enum { kPoles, kDamping, kHigh, kMiddle, kUnknowns };
    using Shape = std::array<double, kUnknowns>;

    static constexpr std::size_t kAround = 10; // points on each side of the frequency
    static constexpr std::size_t kAlong = 32;  // from 0 Hz to the end
    static constexpr std::size_t kBeyond = 2;  // up to half the sample rate
    static constexpr std::size_t kPoints = 2 * kAround + 1 + kAlong + kBeyond;
    static constexpr std::size_t kMostUnknowns = kMostSections * kUnknowns;
    using Curve = std::array<double, kPoints>;
    using Shapes = std::array<Shape, kMostSections>;

    // How the logarithm of the cascade's squared magnitude differs from the wished one, and by what that changes.
    struct Deviation {
        Curve error;
        std::array<std::array<double, kMostUnknowns>, kPoints> slopes;

        double Weighted(const Curve& weights) const noexcept;
        Curve Sizes(const Curve& weights) const noexcept;
    };

    void PlacePoints(double sampleRate, double frequency, double q) noexcept;
    void AddPoint(std::size_t index, double sampleRate, double hertz, double weight) noexcept;
    Curve Wished(std::size_t section) const noexcept;
    Curve LowWeighsLess(const Curve& logarithms) const noexcept;
    Shape Start(std::size_t section, const Curve& wished) const noexcept;
    void Refine(const Curve& wished) noexcept;
    void Evaluate(const Shapes& shapes, const Curve& wished, Deviation& deviation) const noexcept;
    Shapes Stepped(Shapes shapes, const Deviation& deviation, const Curve& weights, double damping) const noexcept;
    double GainAtZero(std::size_t section) const noexcept { return fSections[section].n0 / fSections[section].d0; }
    // Whether both of its zeros lie at 0 Hz, where they have to stay.
    bool IsHighPass(std::size_t section) const noexcept {
        return fSections[section].n0 == 0 && fSections[section].n1 == 0;
    }

    std::span<const AnalogSection> fSections;
    double fFrequency;
    double fTuning;   // tan(w0 / 2)
    Curve fAnalog{};  // (frequency / that of the filter)^2 at the points
    Curve fDigital{}; // u there
    Curve fWeights{};
    Shapes fShapes{};
};

} // namespace qoc::dsp
