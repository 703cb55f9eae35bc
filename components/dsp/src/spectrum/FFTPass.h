#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>

namespace qoc::dsp {

// One way through all values of a transform by PowerOfTwoFFT. Complex values lie as all real parts and all imaginary
// parts, half the transform's size of each; `real` and `imaginary` of what is read don't overlap what is written.
struct FFTPass {
    enum class Kind : std::uint8_t {
        kFirst,             // radix 4, values side by side
        kFirstOfSound,      // the same; even samples of `sound` are the real parts, odd ones the imaginary parts
        kSecond,            // radix 4, runs of four values
        kMiddle,            // any radix, runs of 16 values or more
        kLast,              // a middle one without twiddle factors
        kLastToSound,       // the same; samples of `sound` are imaginary and real parts by turns
        kSpectrumOfComplex, // the real transform out of the complex one of half the size
        kComplexOfSpectrum, // back, divided by the real transform's size
    };

    // Values are taken in groups of so many, whatever the lanes of the processor.
    static constexpr std::size_t kGroup = 8;

    Kind kind = Kind::kFirst;
    std::size_t radix = 4;
    std::size_t stride = 1; // how long the runs are: of the transforms that are done by turns
    std::size_t count = 0;  // butterflies; half the real size for the two that are none
    std::size_t groups = 0; // what the pass has to do
    const float* twiddles = nullptr;
    const float* fromReal = nullptr;
    const float* fromImaginary = nullptr;
    float* toReal = nullptr;
    float* toImaginary = nullptr;
};

// Where sound and spectrum are.
struct FFTEnds {
    const float* soundIn = nullptr;
    const float* spectrumIn = nullptr;
    float* soundOut = nullptr;
    float* spectrumOut = nullptr;
};

// Does the groups from `begin` to below `end` with the best vectors that the processor has; the bits of the results are
// the same on all.
void RunFFTPass(const FFTPass& pass, const FFTEnds& ends, std::size_t begin, std::size_t end) noexcept;

} // namespace qoc::dsp
