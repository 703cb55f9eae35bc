#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace qoc::dsp {

// Reads a sound between its samples, at another speed than it was written, and lets nothing fold back: the stop band
// begins at half of the lower of the two sample rates, so that neither what lies above half of the new rate nor the
// images of what lies below half of the old one are heard. Gives the weights of the samples around a place, so that
// several channels are read at one cost. Real time safe; an object belongs to one thread.
//
// The weights are a sinc under Kaiser's window (J. F. Kaiser, "Nonrecursive digital filter design using the I0-sinh
// window function", 1974). While the speed stays they are taken from a table of places between two samples (a polyphase
// filter), whose rows are made when they are needed first: the width follows the speed without steps, and tables of all
// widths would not fit the cache. While the speed glides they are computed for every place.
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
        std::size_t fCount = 0;
        float fScale = 1;
        alignas(16) std::array<float, kMost> fValues{};
    };

    // Allocates the table.
    BandLimitedInterpolator();

    // As new.
    void Reset() noexcept;
    // Speeds beyond the highest count as that.
    void Set(Precision precision, double speed) noexcept;
    // For the place `fraction` (0...1, below 1) behind a sample.
    void Compute(double fraction, Weights& weights) noexcept;

private:
    static constexpr std::size_t kLanes = 4; // computed at once
    // A straight line between two of so many places is off by less than -100 dB: (pi / 256)^2 / 24.
    static constexpr std::size_t kPlaces = 256;
    struct Kernel;

    static const Kernel& KernelOf(Precision precision) noexcept;
    const float* Row(std::size_t place) noexcept;
    void ComputeAt(double fraction, Weights& weights) const noexcept;
    void Fill(double fraction, Weights& weights) const noexcept;

    const Kernel* fKernel = nullptr;
    double fStretch = 0;                    // of the kernel, against that for reading at the sound's own speed
    float fPerWidth = 0;                    // 1 / half of the width in samples
    double fFirst = 0;                      // sample of a place
    std::size_t fCount = 0;                 // of weights: a multiple of the lanes
    double fAngle = 0;                      // of the sinc, from one sample to the next
    std::array<float, kLanes> fLaneSines{}; // of the first samples, for a place half way between two
    std::array<float, kLanes> fLaneCosines{};
    float fTurnSine = 0; // of the angle from one register to the next
    float fTurnCosine = 1;

    bool fIsSteady = false;              // the speed has been the same twice
    std::uint32_t fTable = 0;            // which speed's rows count
    std::vector<std::uint32_t> fRowsFor; // which one each row was made for
    std::vector<float> fRows;
    Weights fMade;
};

} // namespace qoc::dsp
