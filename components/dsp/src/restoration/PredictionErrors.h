#pragma once

#include <cstddef>
#include <span>

namespace qoc::dsp {

// errors[i] = the sum of coefficients[k] * sound[i + step * k] over all k, for i from `begin` to below `end`, with the
// best vectors that the processor has; the bits of the results are the same on all. `step`: 1 or -1.
void ComputePredictionErrors(std::span<const double> coefficients, const double* sound, double* errors,
                             std::size_t begin, std::size_t end, std::ptrdiff_t step) noexcept;

} // namespace qoc::dsp
