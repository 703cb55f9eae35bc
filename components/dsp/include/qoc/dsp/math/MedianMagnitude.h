#pragma once

#include <span>

namespace qoc::dsp {

// The median of the values without their signs, of an even number the upper one; 0 of none. `scratch` has room for as
// many. Real time safe.
double MedianMagnitude(std::span<const double> values, std::span<double> scratch) noexcept;
// The same as comparing it, but needs no more than counting.
bool IsMedianMagnitudeBelow(double limit, std::span<const double> values) noexcept;

} // namespace qoc::dsp
