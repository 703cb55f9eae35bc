#pragma once

#include <complex>
#include <span>

namespace qoc::dsp {

// The poles of the analogue Bessel low-pass filter of an order of 1...20 that has lost half of its power at 1 rad/s:
// those on and above the real axis, the real one of odd orders last. All orders are computed at the first call, which
// is therefore not real time safe; later ones are.
std::span<const std::complex<double>> BesselPoles(int order) noexcept;

} // namespace qoc::dsp
