#pragma once

#include <complex>
#include <cstddef>
#include <memory>
#include <span>

namespace qoc::dsp {

// The discrete Fourier transform of real sound, one size an object; the only place that knows who does the work: our
// own vectors for powers of two from 64 on, a library for other sizes. Owned by whoever transforms. The transforms
// neither allocate nor lock; one object serves one thread at a time.
class RealFFT {
public:
    // One of `count` parts of about equal work, so that a long transform can be spread over time. All the parts of a
    // transform together give the bits of the whole; they come in order, with the same spans, and the object does
    // nothing else between the first and the last. Only powers of two from 64 on are spread: of other sizes the last
    // part does everything.
    struct Part {
        std::size_t index = 0;
        std::size_t count = 1;
    };

    // `size` is even and at least 2; powers of two are fastest, sizes made of the factors 2, 3 and 5 are fast.
    // Allocates.
    explicit RealFFT(std::size_t size);
    ~RealFFT();
    RealFFT(RealFFT&& other) noexcept;
    RealFFT& operator=(RealFFT&& other) noexcept;

    std::size_t Size() const noexcept { return fSize; }
    // Size() / 2 + 1: from 0 Hz to half the sample rate, both of them real.
    std::size_t Bins() const noexcept { return fSize / 2 + 1; }

    // `time` has Size() samples, `spectrum` Bins() values; they don't overlap. Forward leaves the sum over the samples
    // as it is; Inverse divides by Size(), so that one undoes the other.
    void Forward(std::span<const float> time, std::span<std::complex<float>> spectrum) const noexcept {
        Forward(time, spectrum, Part{});
    }
    void Inverse(std::span<const std::complex<float>> spectrum, std::span<float> time) const noexcept {
        Inverse(spectrum, time, Part{});
    }
    void Forward(std::span<const float> time, std::span<std::complex<float>> spectrum, Part part) const noexcept;
    void Inverse(std::span<const std::complex<float>> spectrum, std::span<float> time, Part part) const noexcept;

private:
    struct Plans;

    std::size_t fSize;
    std::unique_ptr<Plans> fPlans;
};

} // namespace qoc::dsp
