#pragma once

#include "qoc/dsp/stream/PacedSteps.h"

#include <complex>
#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// Turns the phases of one channel's spectra towards those of another, as far as the two have kept a phase difference
// over the last frames: not at all where the coherence of the two is below 0.3, fully from 0.7 on (G. C. Carter,
// "Coherence and time delay estimation", Proc. IEEE 75, 1987). Magnitudes stay. Owned by its effect; all but Prepare is
// real time safe.
class PhaseAligner {
public:
    struct Settings {
        float kept = 0;     // weight (0...1) that the frames before keep
        float strength = 1; // share (0...1) of the difference that is taken out
        float octaves = 0;  // width over which differences are averaged
    };

    // For spectra of so many bins, the first one at 0 Hz. Allocates, and resets.
    void Prepare(std::size_t bins);
    // Forgets all frames.
    void Reset() noexcept;
    // Takes the next frame of both, as many bins as prepared, and turns the bins of `other`. It takes passes over all
    // bins, so that the work can be cut: pass 0 over the bins in order, then pass 1.
    static constexpr std::size_t kPasses = 2;
    void Align(std::span<const std::complex<float>> reference, std::span<std::complex<float>> other,
               const Settings& settings, std::size_t pass, StepRange bins) noexcept;

private:
    // Sums from bin 0 up to a bin, so that any band's sum is one difference.
    struct Sums {
        std::complex<double> cross;
        double reference = 0;
        double other = 0;
    };

    void Add(std::span<const std::complex<float>> reference, std::span<const std::complex<float>> other, float kept,
             StepRange bins) noexcept;
    std::complex<float> TurnFor(std::size_t bin, const Settings& settings, float reach) const noexcept;

    std::vector<std::complex<float>> fCross;
    std::vector<float> fReferencePower;
    std::vector<float> fOtherPower;
    std::vector<Sums> fSums; // one more than bins
    float fFrames = 0;       // so far, as far as they are remembered
};

} // namespace qoc::dsp
