#pragma once

#include <cmath>

namespace qoc::dsp {

// A gain as it is stored may miss 0 dB by a step of the float: anything this near is meant to be 0 dB, at which effects
// let the sound through bit by bit.
inline double ZeroIfNear(double decibels) noexcept {
    constexpr double kWindow = 2e-5; // dB
    return std::abs(decibels) < kWindow ? 0 : decibels;
}

// What to multiply an amplitude with: 20 dB are a factor of 10. 1 for what is meant to be 0 dB.
inline double ToFactor(double decibels) noexcept {
    const double meant = ZeroIfNear(decibels);
    return meant == 0 ? 1 : std::pow(10.0, meant / 20);
}

} // namespace qoc::dsp
