#pragma once

#include "qoc/dsp/spectrum/RealFFT.h"
#include "spectrum/FFTPass.h"

#include <hwy/aligned_allocator.h>

#include <complex>
#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// The transform of real sound whose length is a power of two, by the complex transform of half the size. That one is
// Stockham's, which needs no bit reversal (Cochran et al., "What is the fast Fourier transform?", 1967; Van Loan,
// "Computational Frameworks for the Fast Fourier Transform", 1992, section 1.7), in steps of radix 4 and 8. What comes
// out has the same bits on every processor.
class PowerOfTwoFFT {
public:
    static constexpr std::size_t kSmallest = 64;
    static bool Takes(std::size_t size) noexcept;

    // Allocates.
    explicit PowerOfTwoFFT(std::size_t size);

    void Forward(std::span<const float> time, std::span<std::complex<float>> spectrum, RealFFT::Part part) noexcept;
    void Inverse(std::span<const std::complex<float>> spectrum, std::span<float> time, RealFFT::Part part) noexcept;

private:
    struct Stage {
        std::size_t radix;
        std::size_t length; // of the transforms that are left
        std::size_t stride; // how many they are
        std::size_t twiddles;
    };

    void AddStages();
    void AddTwiddles(const Stage& stage);
    void AddRealTwiddles();
    void AddForward();
    void AddInverse();
    FFTPass PassOf(const Stage& stage, std::size_t from, std::size_t to, bool isInverse);
    float* Reals(std::size_t buffer) noexcept { return fBuffers.get() + 2 * buffer * fHalf; }
    float* Imaginaries(std::size_t buffer) noexcept { return Reals(buffer) + fHalf; }
    void Run(std::span<const FFTPass> passes, const FFTEnds& ends, RealFFT::Part part) noexcept;

    std::size_t fHalf; // the size of the complex transform
    std::vector<Stage> fStages;
    std::vector<float> fTwiddles;
    std::size_t fRealTwiddles = 0;
    hwy::AlignedFreeUniquePtr<float[]> fBuffers; // two, of complex values
    std::vector<FFTPass> fForward;
    std::vector<FFTPass> fInverse;
};

} // namespace qoc::dsp
