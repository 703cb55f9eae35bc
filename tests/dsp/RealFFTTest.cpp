#include "qoc/dsp/spectrum/RealFFT.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

using namespace qoc::dsp;

namespace {

TEST(RealFFT, TransformsACosineIntoItsBinAndBack) {
    constexpr std::size_t kSize = 64;
    const RealFFT fft(kSize);
    std::vector<float> time(kSize);
    for (std::size_t i = 0; i < kSize; ++i)
        time[i] = static_cast<float>(0.25 + std::cos(2 * std::numbers::pi * 5 * static_cast<double>(i) / kSize + 0.5));
    std::vector<std::complex<float>> spectrum(fft.Bins());
    fft.Forward(time, spectrum);
    // Half the size times the amplitude, at the cosine's angle; the mean times the size at bin 0.
    for (std::size_t bin = 0; bin < spectrum.size(); ++bin) {
        const std::complex<double> expected = bin == 5 ? std::polar(32.0, 0.5) : bin == 0 ? 16.0 : 0.0;
        EXPECT_NEAR(spectrum[bin].real(), expected.real(), 1e-5) << bin;
        EXPECT_NEAR(spectrum[bin].imag(), expected.imag(), 1e-5) << bin;
    }
    std::vector<float> back(kSize);
    fft.Inverse(spectrum, back);
    for (std::size_t i = 0; i < kSize; ++i)
        EXPECT_NEAR(back[i], time[i], 1e-6);
}

} // namespace
