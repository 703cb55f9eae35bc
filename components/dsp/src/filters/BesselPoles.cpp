#include "qoc/dsp/filters/BesselPoles.h"

#include "qoc/components/ScientificFilterSettings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace qoc::dsp {

namespace {

constexpr int kHighestOrder = components::ScientificFilterSettings::kHighestOrder;

using Real = long double;
using Complex = std::complex<Real>;

struct Polynomial {
    Complex value;
    Complex slope;
};

// The reverse Bessel polynomial of an order and its derivative, by the recurrence
// q[n] = (2n - 1) q[n - 1] + s^2 q[n - 2], q[0] = 1, q[1] = 1 + s (E. Grosswald, "Bessel Polynomials", Springer 1978).
// Its roots are ill-conditioned: with 64 bits those of order 20 come out to 2e-9.
Polynomial ReverseBessel(int order, Complex s) {
    Polynomial before{1, 0};
    Polynomial last{Real(1) + s, 1};
    for (int n = 2; n <= order; ++n) {
        const Real factor = 2 * n - 1;
        const Polynomial next{factor * last.value + s * s * before.value,
                              factor * last.slope + Real(2) * s * before.value + s * s * before.slope};
        before = last;
        last = next;
    }
    return last;
}

// All roots at once (O. Aberth, "Iteration methods for finding all zeros of a polynomial simultaneously", Math. Comp.
// 27, 1973), from points on a circle a little turned, so that none lies on an axis of symmetry.
std::vector<Complex> Roots(int order) {
    constexpr int kMostIterations = 100;
    constexpr Real kLastStep = 1e-7L; // the next one would be its cube
    constexpr Real kTurn = 0.4L;
    std::vector<Complex> roots;
    roots.reserve(static_cast<std::size_t>(order));
    for (int i = 0; i < order; ++i)
        roots.push_back(std::polar(Real(order), 2 * std::numbers::pi_v<Real> * i / order + kTurn));
    Real step = 1;
    for (int iteration = 0; iteration < kMostIterations && step > kLastStep; ++iteration) {
        step = 0;
        for (Complex& root : roots) {
            const Polynomial at = ReverseBessel(order, root);
            Complex repulsion = 0;
            for (const Complex& other : roots) {
                if (&other != &root) repulsion += Real(1) / (root - other);
            }
            const Complex correction = at.value / (at.slope - at.value * repulsion);
            root -= correction;
            step = std::max(step, std::abs(correction) / std::abs(root));
        }
    }
    return roots;
}

// Where the filter with these poles, and a gain of 1 at 0, has lost half of its power, in rad/s.
Real HalfPowerFrequency(const std::vector<Complex>& poles) {
    const auto loss = [&](Real frequency) { // of power, as a factor: grows with the frequency
        Real product = 1;
        for (const Complex& pole : poles)
            product *= std::norm(Complex(0, frequency) - pole) / std::norm(pole);
        return product;
    };
    Real low = 0;
    Real high = kHighestOrder;
    for (int i = 0; i < std::numeric_limits<Real>::digits; ++i) {
        const Real middle = (low + high) / 2;
        (loss(middle) < 2 ? low : high) = middle;
    }
    return low;
}

std::vector<std::complex<double>> NormalisedUpperPoles(int order) {
    const std::vector<Complex> roots = Roots(order);
    const Real scale = 1 / HalfPowerFrequency(roots);
    const Real axis = Real(order) * 1e-12L;
    std::vector<std::complex<double>> upper;
    for (const Complex& root : roots) {
        const std::complex<double> pole(root * scale);
        if (std::abs(root.imag()) < axis) {
            upper.emplace_back(pole.real());
        } else if (root.imag() > 0) {
            upper.push_back(pole);
        }
    }
    std::ranges::sort(upper, std::ranges::greater(), [](const auto& pole) { return pole.imag(); });
    return upper;
}

} // namespace

std::span<const std::complex<double>> BesselPoles(int order) noexcept {
    static const auto sPoles = [] {
        std::array<std::vector<std::complex<double>>, kHighestOrder> all;
        for (int n = 1; n <= kHighestOrder; ++n)
            all[static_cast<std::size_t>(n - 1)] = NormalisedUpperPoles(n);
        return all;
    }();
    return sPoles[static_cast<std::size_t>(order - 1)];
}

} // namespace qoc::dsp
