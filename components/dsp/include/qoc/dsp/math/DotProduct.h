#pragma once

#include <cstddef>

namespace qoc::dsp {

// The sum of one[i] * other[i] over all i below `count`, in double precision, with the best vectors that the processor
// has; the bits of the result are the same on all. Real time safe.
double DotProduct(const double* one, const double* other, std::size_t count) noexcept;
double DotProduct(const float* one, const float* other, std::size_t count) noexcept;

} // namespace qoc::dsp
