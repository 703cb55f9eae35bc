#pragma once

#include <array>
#include <cstddef>

namespace qoc::dsp {

// Reads a sound between its samples, at another speed than it was written, and lets nothing fold back: the stop band
// begins at half of the lower of the two sample rates, so that neither what lies above half of the new rate nor the
// images of what lies below half of the old one are heard. Gives the weights of the samples around a place, so that
// several channels are read at one cost. Real time safe; an object belongs to one thread.
//
// The weights are a sinc under Kaiser's window (J. F. Kaiser, "Nonrecursive digital filter design using the I0-sinh
// window function", 1974), computed for every place: the width follows the speed without steps, and a table with as
// many widths as that needs would not fit the cache.
class BandLimitedInterpolator {
public:
    // What folds back lies 60, 75 and 90 dB down. The level falls from 0.27, 0.35 and 0.41 of the lower rate on.
    enum class Precision { kLow, kMedium, kHigh };
    // Samples read for one written.
    static constexpr double kHighestSpeed = 2;
    // Samples needed on each side of a place, at any speed and precision.
    static constexpr std::size_t kReach = 68;

    // What to multiply samples with, the first of which is `first` samples from the whole place.
    class Weights {
    public:
        std::ptrdiff_t First() const noexcept { return fFirst; }
        // What is read; `sound` begins at the first sample, and has up to kReach of them behind the place.
        float Apply(const float* sound) const noexcept;

    private:
        friend class BandLimitedInterpolator;
        static constexpr std::size_t kMost = 2 * kReach;

        std::ptrdiff_t fFirst = 0;
        std::size_t fCount = 0; // a multiple of the lanes
        float fScale = 1;
        alignas(16) std::array<float, kMost> fValues{};
    };

    BandLimitedInterpolator() noexcept { Set(Precision::kHigh, 1); }

    // Speeds beyond the highest count as that.
    void Set(Precision precision, double speed) noexcept;
    // For the place `fraction` (0...1, below 1) behind a sample.
    void Compute(double fraction, Weights& weights) const noexcept;

private:
    static constexpr std::size_t kLanes = 4; // computed at once
    struct Kernel;

    static const Kernel& KernelOf(Precision precision) noexcept;
    void Fill(double fraction, Weights& weights) const noexcept;

    const Kernel* fKernel = nullptr;
    double fStretch = 0;                    // of the kernel, against that for reading at the sound's own speed
    float fPerWidth = 0;                    // 1 / half of the width in samples
    double fFirst = 0;                      // sample of a place
    double fAngle = 0;                      // of the sinc, from one sample to the next
    std::array<float, kLanes> fLaneSines{}; // of the first samples, for a place half way between two
    std::array<float, kLanes> fLaneCosines{};
    float fTurnSine = 0; // of the angle from one register to the next
    float fTurnCosine = 1;
};

} // namespace qoc::dsp
