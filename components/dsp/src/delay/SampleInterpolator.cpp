#include "qoc/dsp/delay/SampleInterpolator.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <vector>

namespace qoc::dsp {

namespace {

// Modified Bessel function of the first kind and order 0 (Abramowitz and Stegun, 9.6.12).
double BesselI0(double x) {
    double sum = 1;
    double term = 1;
    for (int k = 1; term > 1e-15 * sum; ++k) {
        term *= (x / 2) * (x / 2) / (static_cast<double>(k) * k);
        sum += term;
    }
    return sum;
}

// Catmull-Rom's cubic through four points (Catmull and Rom 1974), whose slopes are Hermite's.
std::array<double, 4> CubicWeights(double x) noexcept {
    const double x2 = x * x;
    const double x3 = x2 * x;
    return {-0.5 * x + x2 - 0.5 * x3, 1 - 2.5 * x2 + 1.5 * x3, 0.5 * x + 2 * x2 - 1.5 * x3, -0.5 * x2 + 0.5 * x3};
}

// Lagrange's polynomial of order five through the samples -2...3.
std::array<double, 6> LagrangeWeights(double x) noexcept {
    std::array<double, 6> weights{};
    for (int i = 0; i < 6; ++i) {
        double weight = 1;
        for (int j = 0; j < 6; ++j) {
            if (j != i) weight *= (x - (j - 2)) / (i - j);
        }
        weights[static_cast<std::size_t>(i)] = weight;
    }
    return weights;
}

template <std::size_t Count>
void Take(const std::array<double, Count>& values, SampleInterpolator::Weights& weights) noexcept {
    weights.first = 1 - static_cast<std::ptrdiff_t>(Count / 2);
    weights.count = Count;
    std::transform(values.begin(), values.end(), weights.values.begin(),
                   [](double value) { return static_cast<float>(value); });
}

} // namespace

// Half of a windowed sinc, kSteps values from zero to zero.
struct SampleInterpolator::Sinc {
    static constexpr int kSteps = 512;

    Sinc(int halfWidth, double kaiserBeta);
    float At(double place) const noexcept; // place in samples from the middle, 0...halfWidth

    int halfWidth;
    std::vector<float> values;
};

SampleInterpolator::Sinc::Sinc(int width, double kaiserBeta)
    : halfWidth(width), values(static_cast<std::size_t>(width * kSteps + 2)) {
    values[0] = 1;
    for (int i = 1; i < halfWidth * kSteps; ++i) {
        const double place = static_cast<double>(i) / kSteps;
        const double angle = std::numbers::pi * place;
        const double part = place / halfWidth;
        // The window of Kaiser 1974.
        const double window = BesselI0(kaiserBeta * std::sqrt(1 - part * part)) / BesselI0(kaiserBeta);
        values[static_cast<std::size_t>(i)] = static_cast<float>(std::sin(angle) / angle * window);
    }
}

float SampleInterpolator::Sinc::At(double place) const noexcept {
    const double step = std::min(place, static_cast<double>(halfWidth)) * kSteps;
    const auto index = static_cast<std::size_t>(step);
    const auto part = static_cast<float>(step - static_cast<double>(index));
    return values[index] + part * (values[index + 1] - values[index]);
}

SampleInterpolator::SampleInterpolator() : fSincs(Sincs()) {
}

void SampleInterpolator::Compute(Kind kind, double fraction, double speed, double ahead,
                                 Weights& weights) const noexcept {
    switch (kind) {
    case Kind::kLinear: Take(std::array<double, 2>{1 - fraction, fraction}, weights); return;
    case Kind::kCubic: Take(CubicWeights(fraction), weights); return;
    case Kind::kLagrange: Take(LagrangeWeights(fraction), weights); return;
    default: break;
    }
    const Sinc& sinc = fSincs[static_cast<std::size_t>(kind) - static_cast<std::size_t>(Kind::kSinc8)];
    const double widest = std::min(kGreatestStretch, ahead / sinc.halfWidth);
    ComputeSinc(sinc, fraction, std::clamp(speed, 1.0, std::max(1.0, widest)), weights);
}

void SampleInterpolator::ComputeSinc(const Sinc& sinc, double fraction, double stretch,
                                     Weights& weights) const noexcept {
    const double halfWidth = sinc.halfWidth * stretch;
    const auto first = static_cast<std::ptrdiff_t>(std::ceil(fraction - halfWidth));
    const auto last = static_cast<std::ptrdiff_t>(std::floor(fraction + halfWidth));
    weights.first = first;
    weights.count = static_cast<std::size_t>(last - first + 1);
    const double shrink = 1 / stretch;
    for (std::size_t i = 0; i < weights.count; ++i)
        weights.values[i] =
            sinc.At(std::abs(static_cast<double>(first + static_cast<std::ptrdiff_t>(i)) - fraction) * shrink);
    // A constant stays what it is wherever it is read.
    const float sum = std::accumulate(weights.values.begin(),
                                      weights.values.begin() + static_cast<std::ptrdiff_t>(weights.count), 0.0F);
    for (std::size_t i = 0; i < weights.count; ++i)
        weights.values[i] /= sum;
}

const std::array<SampleInterpolator::Sinc, 3>& SampleInterpolator::Sincs() {
    // The more samples, the more of the window's width goes into keeping out what is folded back.
    static const std::array<Sinc, 3> sSincs = {Sinc(4, 6), Sinc(8, 8), Sinc(kLargestHalfWidth, 10)};
    return sSincs;
}

} // namespace qoc::dsp
