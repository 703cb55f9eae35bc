#pragma once

#include <cstddef>

namespace qoc::dsp {

// How many values lie from one column of a band to the next: the columns are so much longer than they need, with zeros,
// that their ends can be read in whole vectors.
constexpr std::size_t BandStride(std::size_t width) noexcept {
    constexpr std::size_t kSlack = 6;
    constexpr std::size_t kVector = 4;
    return (width + kSlack + kVector - 1) / kVector * kVector;
}

// Cholesky's factorisation of a symmetric matrix, of which the lower half is a band of columns, each from its diagonal
// on: takes away from column `index` what the columns before it bring there, from `first` on, and scales it. False when
// the matrix turns out not to be positive. With the best vectors that the processor has; the bits of the result are the
// same on all.
bool FactoriseColumn(double* band, std::size_t width, std::size_t first, std::size_t index) noexcept;

// values[k] -= column[k] * factor for all k below `count`, likewise.
void SubtractScaled(const double* column, double factor, double* values, std::size_t count) noexcept;

} // namespace qoc::dsp
