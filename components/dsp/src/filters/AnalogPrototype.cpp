#include "qoc/dsp/filters/AnalogPrototype.h"

#include "qoc/dsp/filters/BesselPoles.h"

#include <cmath>
#include <numbers>

namespace qoc::dsp {

using components::FilterFamily;
using components::ScientificFilterSettings;

namespace {

// The poles of both Chebyshev families lie on the ellipse with these half axes, at the angles of the Butterworth poles.
struct Ellipse {
    Ellipse(int order, double epsilon) noexcept {
        const double flatness = std::asinh(1 / epsilon) / order;
        minor = std::sinh(flatness);
        major = std::cosh(flatness);
    }
    std::complex<double> Point(double angle) const noexcept {
        return {-minor * std::sin(angle), major * std::cos(angle)};
    }

    double minor;
    double major;
};

// From the imaginary axis to pole `index`, counted from the one nearest to that axis.
double AngleOf(int index, int order) noexcept {
    return std::numbers::pi * (2 * index + 1) / (2 * order);
}

// `pairAt` gives a pair for an angle, `realPole` the pole of odd orders.
template <class PairAt>
AnalogPrototype Assembled(int order, const PairAt& pairAt, double realPole) noexcept {
    AnalogPrototype prototype;
    prototype.pairCount = order / 2;
    for (int i = 0; i < prototype.pairCount; ++i)
        prototype.pairs[static_cast<std::size_t>(i)] = pairAt(AngleOf(i, order));
    if (order % 2 != 0) prototype.realPole = realPole;
    return prototype;
}

} // namespace

AnalogPrototype AnalogPrototype::Bessel(int order) noexcept {
    AnalogPrototype prototype;
    for (const std::complex<double>& pole : BesselPoles(order)) {
        if (pole.imag() == 0) {
            prototype.realPole = pole.real();
        } else {
            prototype.pairs[static_cast<std::size_t>(prototype.pairCount++)].pole = pole;
        }
    }
    return prototype;
}

AnalogPrototype AnalogPrototype::Butterworth(int order) noexcept {
    return Assembled(
        order,
        [](double angle) {
            return Pair{{-std::sin(angle), std::cos(angle)}};
        },
        -1);
}

AnalogPrototype AnalogPrototype::Chebyshev1(int order, double passRipple) noexcept {
    const Ellipse ellipse(order, std::sqrt(std::pow(10.0, passRipple / 10) - 1));
    AnalogPrototype prototype = Assembled(
        order, [&](double angle) { return Pair{ellipse.Point(angle)}; }, -ellipse.minor);
    // The ripples reach 0 dB; even orders begin in a valley.
    if (order % 2 == 0) prototype.gainAtZero = std::pow(10.0, -passRipple / 20);
    return prototype;
}

AnalogPrototype AnalogPrototype::Chebyshev2(int order, double stopAttenuation) noexcept {
    const Ellipse ellipse(order, 1 / std::sqrt(std::pow(10.0, stopAttenuation / 10) - 1));
    const double edge = components::Chebyshev2StopEdge(order, stopAttenuation);
    return Assembled(
        order,
        [&](double angle) {
            // 1 / p lies below the real axis: its conjugate stands for both.
            return Pair{edge / std::conj(ellipse.Point(angle)), edge / std::cos(angle)};
        },
        -edge / ellipse.minor);
}

AnalogPrototype AnalogPrototype::Of(const ScientificFilterSettings& settings) noexcept {
    switch (settings.family) {
    case FilterFamily::kBessel: return Bessel(settings.order);
    case FilterFamily::kButterworth: break;
    case FilterFamily::kChebyshev1: return Chebyshev1(settings.order, settings.passRipple);
    case FilterFamily::kChebyshev2: return Chebyshev2(settings.order, settings.stopAttenuation);
    }
    return Butterworth(settings.order);
}

} // namespace qoc::dsp
