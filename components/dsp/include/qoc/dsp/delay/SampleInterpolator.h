#pragma once

#include <array>
#include <cstddef>

namespace qoc::dsp {

// Reads a sound between its samples. Gives the weights of the samples around a place, so that several channels are read
// at one cost: of the 2 samples around it along a straight line, of 4 along a cubic (E. Catmull, R. Rom, "A class of
// local interpolating splines", 1974), of 6 along Lagrange's polynomial, or of 8, 16 or 32 by a sinc under Kaiser's
// window (J. F. Kaiser, "Nonrecursive digital filter design using the I0-sinh window function", 1974). The sincs get
// wider when the sound is read faster than it was written, so that nothing is folded back from above the Nyquist
// frequency. Their weights add up to 1. Immutable.
class SampleInterpolator {
public:
    enum class Kind { kLinear, kCubic, kLagrange, kSinc8, kSinc16, kSinc32 };
    static constexpr int kKindCount = 6;

    // Samples needed on each side of a place when the sound is read at its own speed, for the widest kind.
    static constexpr int kLargestHalfWidth = 16;
    // How much wider the sincs get at most.
    static constexpr double kGreatestStretch = 8;
    static constexpr std::size_t kMostWeights = 2 * kLargestHalfWidth * static_cast<std::size_t>(kGreatestStretch) + 2;

    // What to multiply `count` samples with, the first of which is `first` samples from the whole place.
    struct Weights {
        std::ptrdiff_t first = 0;
        std::size_t count = 0;
        std::array<float, kMostWeights> values;
    };

    // Makes the tables; they are shared. User-interface thread.
    SampleInterpolator();

    // For the place `fraction` (0...1, below 1) behind a sample. `speed`: samples read for one written. A sinc gets no
    // wider than `ahead` samples on each side, unless it is wider by itself. Any thread; real time safe.
    void Compute(Kind kind, double fraction, double speed, double ahead, Weights& weights) const noexcept;

private:
    struct Sinc;

    void ComputeSinc(const Sinc& sinc, double fraction, double stretch, Weights& weights) const noexcept;
    static const std::array<Sinc, 3>& Sincs();

    const std::array<Sinc, 3>& fSincs;
};

} // namespace qoc::dsp
