#pragma once

#include <complex>

namespace qoc::dsp {

// Written out: the operator takes care of infinite values, which costs time.
inline std::complex<float> Product(std::complex<float> one, std::complex<float> other) noexcept {
    return {one.real() * other.real() - one.imag() * other.imag(),
            one.real() * other.imag() + one.imag() * other.real()};
}

// Of the conjugate of the first.
inline std::complex<float> ConjugateProduct(std::complex<float> one, std::complex<float> other) noexcept {
    return {one.real() * other.real() + one.imag() * other.imag(),
            one.real() * other.imag() - one.imag() * other.real()};
}

} // namespace qoc::dsp
