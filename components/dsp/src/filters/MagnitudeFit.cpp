#include "filters/MagnitudeFit.h"

#include "filters/PositiveSystem.h"
#include "qoc/dsp/filters/MatchedDesign.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

namespace qoc::dsp {

namespace {

double Square(double x) noexcept {
    return x * x;
}

// Where a deviation is large, the next look at it counts for more.
template <class Curve>
void EmphasiseLargest(const Curve& deviations, Curve& emphasis) noexcept {
    constexpr double kLeast = 1e-3;
    const double largest = *std::ranges::max_element(deviations);
    if (!(largest > 0)) return;
    for (std::size_t i = 0; i < emphasis.size(); ++i)
        emphasis[i] *= deviations[i] / largest + kLeast;
    const double most = *std::ranges::max_element(emphasis);
    for (double& value : emphasis)
        value /= most;
}

// A squared magnitude (p0 + p1 u + p2 u^2) / (q0 + q1 u + u^2), which is linear in its coefficients once the
// denominator's former values divide. p0 is q0 times the gain at 0 Hz.
template <class Curve>
class RationalFit {
public:
    enum { kQ0, kQ1, kP2, kP1, kTerms };
    using Row = std::array<double, kTerms>;

    // `gain`: squared; `hasMiddle`: whether p1 may be other than 0.
    RationalFit(const Curve& places, const Curve& logarithms, const Curve& weights, double gain,
                bool hasMiddle) noexcept
        : fPlaces(places), fWeights(weights), fGain(gain), fTerms(hasMiddle ? kTerms : kP1) {
        std::ranges::transform(logarithms, fPowers.begin(), [](double logarithm) { return std::exp(logarithm); });
        std::ranges::transform(fPlaces, fDenominator.begin(), [](double u) { return Square(1 + u); });
    }

    const Row& Coefficients() const noexcept { return fCoefficients; }
    void Improve() noexcept {
        constexpr double kLeastQ0 = 1e-3; // lower poles would cancel zeros, and may come out below 0
        constexpr double kSolid = 1e-13;  // against terms that do the same
        constexpr double kHeld = 1e6;
        const Row lengths = Lengths();
        PositiveSystem<kTerms> system(fTerms);
        for (std::size_t i = 0; i < fPlaces.size(); ++i) {
            Row row = RowAt(i);
            std::ranges::transform(row, lengths, row.begin(), std::divides<>());
            system.Add(row, fPowers[i] * Square(fPlaces[i]) * ScaleAt(i), 1);
        }
        for (std::size_t term = 0; term < fTerms; ++term)
            system.Diagonal(term) += kSolid;
        fCoefficients = system.Solved();
        if (fCoefficients[kQ0] < kLeastQ0 * lengths[kQ0]) {
            system.Diagonal(kQ0) += kHeld;
            system.Right(kQ0) += kHeld * kLeastQ0 * lengths[kQ0];
            fCoefficients = system.Solved();
        }
        std::ranges::transform(fCoefficients, lengths, fCoefficients.begin(), std::divides<>());
        std::ranges::transform(fPlaces, fDenominator.begin(), [&](double u) { return DenominatorAt(u); });
    }

private:
    double ScaleAt(std::size_t i) const noexcept { return fWeights[i] / (fPowers[i] * fDenominator[i]); }
    Row RowAt(std::size_t i) const noexcept {
        const double u = fPlaces[i];
        const double scale = ScaleAt(i);
        return {(fGain - fPowers[i]) * scale, -fPowers[i] * u * scale, u * u * scale, u * scale};
    }
    Row Lengths() const noexcept {
        Row lengths{};
        for (std::size_t i = 0; i < fPlaces.size(); ++i)
            std::ranges::transform(lengths, RowAt(i), lengths.begin(),
                                   [](double sum, double x) { return sum + x * x; });
        std::ranges::transform(lengths, lengths.begin(), [](double sum) { return std::sqrt(std::max(sum, 1e-300)); });
        return lengths;
    }
    double DenominatorAt(double u) const noexcept {
        return std::max(std::abs(fCoefficients[kQ0] + u * (fCoefficients[kQ1] + u)), 1e-9 * Square(1 + u));
    }

    const Curve& fPlaces;
    Curve fWeights;
    Curve fPowers;
    Curve fDenominator;
    double fGain;
    std::size_t fTerms;
    Row fCoefficients{};
};

} // namespace

double AnalogSection::Power(double ratio) const noexcept {
    return (Square(n0 - n2 * ratio) + n1 * n1 * ratio) / (Square(d0 - ratio) + d1 * d1 * ratio);
}

MagnitudeFit::MagnitudeFit(std::span<const AnalogSection> sections, double sampleRate, double frequency,
                           double q) noexcept
    : fSections(sections), fFrequency(frequency), fTuning(std::tan(std::numbers::pi * frequency / sampleRate)) {
    PlacePoints(sampleRate, frequency, q);
    Curve wished{};
    for (std::size_t section = 0; section < fSections.size(); ++section) {
        const Curve own = Wished(section);
        fShapes[section] = Start(section, own);
        std::ranges::transform(wished, own, wished.begin(), std::plus<>());
    }
    Refine(wished);
}

// By the bilinear transform, with s in multiples of tan(w0 / 2).
BiquadCoefficients MagnitudeFit::Section(std::size_t index) const noexcept {
    const Shape& shape = fShapes[index];
    const double poles = std::exp(shape[kPoles]);
    const double n2 = std::exp(shape[kHigh]);
    const double n1 = IsHighPass(index) ? 0 : std::sqrt(std::exp(shape[kMiddle]) * poles) * fTuning;
    const double n0 = GainAtZero(index) * poles * fTuning * fTuning;
    const double d1 = std::sqrt(std::exp(shape[kDamping]) * poles) * fTuning;
    const double d0 = poles * fTuning * fTuning;
    const double a0 = 1 + d1 + d0;
    return {(n2 + n1 + n0) / a0, 2 * (n0 - n2) / a0, (n2 - n1 + n0) / a0, 2 * (d0 - 1) / a0, (1 - d1 + d0) / a0};
}

// Close where the resonance turns, and evenly over the frequencies. Half the sample rate, where a digital filter's
// slope has to be 0, is left to itself; a little weight keeps what lies between in bounds.
void MagnitudeFit::PlacePoints(double sampleRate, double frequency, double q) noexcept {
    // In multiples of the bandwidth.
    constexpr std::array<double, kAround> kDistances = {0.25, 0.5, 0.8, 1.2, 2, 3.5, 6, 12, 25, 60};
    constexpr std::array<double, kBeyond> kBeyondEnd = {0.475, 0.495}; // of the sample rate
    constexpr double kBeyondWeight = 0.02;
    const double end = MatchedDesign::kHighest * sampleRate;
    std::size_t next = 0;
    const auto addAround = [&](double hertz) { AddPoint(next++, sampleRate, std::min(hertz, end), hertz <= end); };
    addAround(frequency);
    for (const double distance : kDistances) {
        const double ratio = std::exp(std::asinh(distance / (2 * q)));
        addAround(frequency / ratio);
        addAround(frequency * ratio);
    }
    for (std::size_t i = 1; i <= kAlong; ++i)
        AddPoint(next++, sampleRate, end * static_cast<double>(i) / kAlong, 1);
    for (const double share : kBeyondEnd)
        AddPoint(next++, sampleRate, share * sampleRate, kBeyondWeight);
}

void MagnitudeFit::AddPoint(std::size_t index, double sampleRate, double hertz, double weight) noexcept {
    fAnalog[index] = Square(hertz / fFrequency);
    fDigital[index] = Square(std::tan(std::numbers::pi * hertz / sampleRate) / fTuning);
    fWeights[index] = weight;
}

// Logarithms of the squared magnitude.
MagnitudeFit::Curve MagnitudeFit::Wished(std::size_t section) const noexcept {
    Curve wished;
    std::ranges::transform(fAnalog, wished.begin(),
                           [&](double ratio) { return std::log(fSections[section].Power(ratio)); });
    return wished;
}

MagnitudeFit::Curve MagnitudeFit::LowWeighsLess(const Curve& logarithms) const noexcept {
    constexpr double kFullAbove = -2 * std::numbers::ln10; // 20 dB down
    constexpr double kPower = 0.12;                        // of the squared magnitude: a third for 40 dB
    Curve weights;
    std::ranges::transform(logarithms, fWeights, weights.begin(), [&](double logarithm, double weight) {
        return weight * std::exp(kPower * std::min(logarithm - kFullAbove, 0.0));
    });
    return weights;
}

MagnitudeFit::Shape MagnitudeFit::Start(std::size_t section, const Curve& wished) const noexcept {
    constexpr int kPasses = 5;
    const double gain = Square(GainAtZero(section));
    RationalFit fit(fDigital, wished, LowWeighsLess(wished), gain, !IsHighPass(section));
    for (int pass = 0; pass < kPasses; ++pass)
        fit.Improve();
    const auto& [q0, q1, p2, p1] = fit.Coefficients();
    const double poles = std::sqrt(std::max(q0, 1e-6));
    const double high = std::sqrt(std::max(p2, 1e-20));
    const double damping = std::max(q1 / poles + 2, 1e-8);
    const double middle = std::max(p1 / poles + 2 * std::sqrt(gain) * high, 1e-12);
    return {std::log(poles), std::log(damping), std::log(high), std::log(middle)};
}

double MagnitudeFit::Deviation::Weighted(const Curve& weights) const noexcept {
    double sum = 0;
    for (std::size_t i = 0; i < kPoints; ++i)
        sum += weights[i] * Square(error[i]);
    return sum;
}

MagnitudeFit::Curve MagnitudeFit::Deviation::Sizes(const Curve& weights) const noexcept {
    Curve sizes;
    std::ranges::transform(error, weights, sizes.begin(), [](double e, double weight) { return std::abs(e) * weight; });
    return sizes;
}

// Keeps the shapes with the least maximum that has come by.
void MagnitudeFit::Refine(const Curve& wished) noexcept {
    constexpr int kPasses = 10;
    constexpr double kFirstDamping = 1e-3, kLeastDamping = 1e-9, kMostDamping = 1e3;
    const Curve weights = LowWeighsLess(wished);
    Curve emphasis;
    emphasis.fill(1);
    Shapes shapes = fShapes;
    Deviation now;
    Evaluate(shapes, wished, now);
    double least = std::ranges::max(now.Sizes(weights));
    double damping = kFirstDamping;
    for (int pass = 0; pass < kPasses; ++pass) {
        Curve squared;
        std::ranges::transform(weights, emphasis, squared.begin(), [](double w, double e) { return w * w * e; });
        const Shapes next = Stepped(shapes, now, squared, damping);
        Deviation there;
        Evaluate(next, wished, there);
        if (!(there.Weighted(squared) < now.Weighted(squared))) {
            damping = std::min(damping * 8, kMostDamping);
            continue;
        }
        damping = std::max(damping / 5, kLeastDamping);
        shapes = next;
        now = there;
        const Curve sizes = now.Sizes(weights);
        if (std::ranges::max(sizes) < least) {
            least = std::ranges::max(sizes);
            fShapes = shapes;
        }
        EmphasiseLargest(sizes, emphasis);
    }
}

void MagnitudeFit::Evaluate(const Shapes& shapes, const Curve& wished, Deviation& deviation) const noexcept {
    std::array<Shape, kMostSections> values{};
    for (std::size_t section = 0; section < fSections.size(); ++section) {
        std::ranges::transform(shapes[section], values[section].begin(), [](double x) { return std::exp(x); });
        if (IsHighPass(section)) values[section][kMiddle] = 0;
    }
    for (std::size_t i = 0; i < kPoints; ++i) {
        const double u = fDigital[i];
        double ratio = 1;
        for (std::size_t section = 0; section < fSections.size(); ++section) {
            const auto& [poles, damping, high, middle] = values[section];
            const double start = GainAtZero(section) * poles;
            const double difference = start - high * u;
            const double across = middle * poles * u;
            const double numerator = Square(difference) + across;
            const double damped = damping * poles * u;
            const double denominator = Square(poles - u) + damped;
            ratio *= numerator / denominator;
            double* const slopes = deviation.slopes[i].data() + kUnknowns * section;
            slopes[kPoles] =
                (2 * difference * start + across) / numerator - (2 * (poles - u) * poles + damped) / denominator;
            slopes[kDamping] = -damped / denominator;
            slopes[kHigh] = -2 * difference * high * u / numerator;
            slopes[kMiddle] = across / numerator;
        }
        deviation.error[i] = std::log(ratio) - wished[i];
    }
}

MagnitudeFit::Shapes MagnitudeFit::Stepped(Shapes shapes, const Deviation& deviation, const Curve& weights,
                                           double damping) const noexcept {
    constexpr double kLongest = 1;  // neper
    constexpr double kShare = 1e-3; // of the largest diagonal, for what hardly matters
    constexpr double kSolid = 1e-12;
    const std::size_t unknowns = kUnknowns * fSections.size();
    PositiveSystem<kMostUnknowns> system(unknowns);
    for (std::size_t i = 0; i < kPoints; ++i)
        system.Add(deviation.slopes[i], -deviation.error[i], weights[i]);
    double largest = 0;
    for (std::size_t i = 0; i < unknowns; ++i)
        largest = std::max(largest, system.Diagonal(i));
    for (std::size_t i = 0; i < unknowns; ++i)
        system.Diagonal(i) += damping * system.Diagonal(i) + (damping * kShare + kSolid) * largest;
    const auto solved = system.Solved();
    for (std::size_t i = 0; i < unknowns; ++i)
        shapes[i / kUnknowns][i % kUnknowns] += std::clamp(solved[i], -kLongest, kLongest);
    return shapes;
}

} // namespace qoc::dsp
