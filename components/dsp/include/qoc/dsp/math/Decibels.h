#pragma once

#include <cmath>
#include <span>

namespace qoc::dsp {

// A gain as it is stored may miss 0 dB by a step of the float: anything this near is meant to be 0 dB, at which effects
// let the sound through bit by bit.
inline constexpr double kMeantToBeZero = 2e-5; // dB
inline double ZeroIfNear(double decibels) noexcept {
    return std::abs(decibels) < kMeantToBeZero ? 0 : decibels;
}

// What to multiply an amplitude with: 20 dB are a factor of 10. 1 for what is meant to be 0 dB.
inline double ToFactor(double decibels) noexcept {
    const double meant = ZeroIfNear(decibels);
    return meant == 0 ? 1 : std::pow(10.0, meant / 20);
}

// For many values at once, in their stead, with the best vectors that the processor has: exact but for a share of 2e-14
// at most, which differs between processors.
void ToFactors(std::span<double> decibels) noexcept;
// 10 log10 of each, above 0.
void ToDecibels(std::span<double> powers) noexcept;

} // namespace qoc::dsp
