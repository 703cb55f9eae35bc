#pragma once

#include <cstdint>

namespace qoc::dsp {

// The bell shapes that sound and filters are weighted with, in the order in which panels list them. Harris, "On the use
// of windows for harmonic analysis with the discrete Fourier transform" (1978), has them all.
enum class WindowKind : std::uint8_t {
    kTriangular,
    kHann,
    kHamming,
    kBlackman,
    kGaussian,       // 3.5 standard deviations to either side
    kBlackmanHarris, // four terms, -92 dB
    kKaiser140,      // as a filter's window: 140 dB down beside the passband
    kKaiser180,
};

// The window at a place from -1 to 1: 1 in the middle, even, nearly or quite 0 at the ends.
double WindowAt(WindowKind kind, double place) noexcept;

} // namespace qoc::dsp
