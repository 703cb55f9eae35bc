#pragma once

#include <complex>
#include <cstddef>
#include <memory>
#include <span>

namespace qoc::dsp {

// The discrete Fourier transform of real sound, one size an object; the only place that knows which library does the
// work. Owned by whoever transforms. The transforms neither allocate nor lock; one object serves one thread at a time.
class RealFFT {
public:
    // `size` is even and at least 2; sizes made of the factors 2, 3 and 5 are fast. Allocates.
    explicit RealFFT(std::size_t size);
    ~RealFFT();
    RealFFT(RealFFT&& other) noexcept;
    RealFFT& operator=(RealFFT&& other) noexcept;

    std::size_t Size() const noexcept { return fSize; }
    // Size() / 2 + 1: from 0 Hz to half the sample rate, both of them real.
    std::size_t Bins() const noexcept { return fSize / 2 + 1; }

    // `time` has Size() samples, `spectrum` Bins() values; they don't overlap. Forward leaves the sum over the samples
    // as it is; Inverse divides by Size(), so that one undoes the other.
    void Forward(std::span<const float> time, std::span<std::complex<float>> spectrum) const noexcept;
    void Inverse(std::span<const std::complex<float>> spectrum, std::span<float> time) const noexcept;

private:
    struct Plans;

    std::size_t fSize;
    std::unique_ptr<Plans> fPlans;
};

} // namespace qoc::dsp
