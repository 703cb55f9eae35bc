#include "qoc/dsp/spectrum/WindowFunction.h"

#include <cmath>
#include <numbers>

namespace qoc::dsp {

namespace {

constexpr double kGaussianDeviations = 3.5;

double CosineSum(double place, double a0, double a1, double a2, double a3) noexcept {
    const double angle = std::numbers::pi * place;
    return a0 + a1 * std::cos(angle) + a2 * std::cos(2 * angle) + a3 * std::cos(3 * angle);
}

// Kaiser, "Nonrecursive digital filter design using the I0-sinh window function" (1974), with his estimate of beta for
// the attenuation of the filter made with it.
double Kaiser(double place, double decibels) noexcept {
    const double beta = 0.1102 * (decibels - 8.7);
    return std::cyl_bessel_i(0, beta * std::sqrt(1 - place * place)) / std::cyl_bessel_i(0, beta);
}

} // namespace

double WindowAt(WindowKind kind, double place) noexcept {
    switch (kind) {
    case WindowKind::kTriangular: return 1 - std::abs(place);
    case WindowKind::kHann: return CosineSum(place, 0.5, 0.5, 0, 0);
    case WindowKind::kHamming: return CosineSum(place, 0.54, 0.46, 0, 0);
    case WindowKind::kBlackman: return CosineSum(place, 0.42, 0.5, 0.08, 0);
    case WindowKind::kGaussian: return std::exp(-0.5 * std::pow(kGaussianDeviations * place, 2));
    case WindowKind::kBlackmanHarris: return CosineSum(place, 0.35875, 0.48829, 0.14128, 0.01168);
    case WindowKind::kKaiser140: return Kaiser(place, 140);
    case WindowKind::kKaiser180: return Kaiser(place, 180);
    }
    return 0;
}

} // namespace qoc::dsp
