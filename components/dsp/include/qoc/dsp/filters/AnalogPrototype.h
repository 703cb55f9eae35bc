#pragma once

#include "qoc/components/ScientificFilterSettings.h"

#include <array>
#include <complex>
#include <span>

namespace qoc::dsp {

// Poles and zeros of an analogue low-pass filter whose pass band ends at 1 rad/s (see ScientificFilterSettings for what
// that means in each family), with a gain of `gainAtZero` at 0. Poles and zeros off the real axis come with their
// conjugates, which are not listed. A value; real time safe.
//
// Butterworth and Chebyshev after A. V. Oppenheim, R. W. Schafer, "Discrete-Time Signal Processing", appendix B; Bessel
// after W. E. Thomson, "Delay networks having maximally flat frequency characteristics", Proc. IEE 96 (1949).
struct AnalogPrototype {
    struct Pair {
        std::complex<double> pole; // above the real axis
        double zero = 0;           // the zeros lie at +-j zero; 0: at infinity
    };
    static constexpr int kMostPairs = components::ScientificFilterSettings::kHighestOrder / 2;

    std::array<Pair, kMostPairs> pairs;
    int pairCount = 0;
    double realPole = 0; // below 0 in odd orders, with a zero at infinity; 0 in even ones
    double gainAtZero = 1;

    std::span<const Pair> Pairs() const noexcept { return {pairs.data(), static_cast<std::size_t>(pairCount)}; }

    static AnalogPrototype Bessel(int order) noexcept;
    static AnalogPrototype Butterworth(int order) noexcept;
    static AnalogPrototype Chebyshev1(int order, double passRipple) noexcept;
    static AnalogPrototype Chebyshev2(int order, double stopAttenuation) noexcept;
    static AnalogPrototype Of(const components::ScientificFilterSettings& settings) noexcept;
};

} // namespace qoc::dsp
