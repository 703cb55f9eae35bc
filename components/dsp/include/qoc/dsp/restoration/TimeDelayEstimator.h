#pragma once

#include "qoc/dsp/spectrum/RealFFT.h"

#include <complex>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace qoc::dsp {

// Finds by how much one sound is later than another, to a small part of a sample, from their spectra of the same
// frames: the peak of the generalised cross-correlation with phase transform (Knapp and Carter, "The generalized
// correlation method for estimation of time delay", 1976), weighted by the coherence over the frames so far. A sound of
// opposite polarity is found as well. Owned by its effect; all but Prepare is real time safe.
class TimeDelayEstimator {
public:
    // For spectra of transforms of `size` samples. Allocates, and resets.
    void Prepare(std::size_t size);
    void Reset() noexcept;

    // Takes the next frame; `kept` (0...1) is the weight that all frames before keep.
    void Add(std::span<const std::complex<float>> reference, std::span<const std::complex<float>> other,
             float kept) noexcept;
    // In samples, at most `longest` to either side and a quarter of the size. Nothing when the sounds have too little
    // in common.
    std::optional<double> Find(double longest) noexcept;
    // What to multiply the other sound with to make it as loud as the reference; 1 in silence.
    float LevelRatio() const noexcept;

private:
    struct Slope {
        double value = 0; // of the correlation
        double first = 0; // derivatives by the delay
        double second = 0;
    };

    void Whiten() noexcept;
    std::ptrdiff_t PeakLag(std::ptrdiff_t reach) noexcept;
    Slope SlopeAt(double delay) const noexcept;

    std::optional<RealFFT> fTransform;
    std::vector<std::complex<float>> fCross;
    std::vector<float> fReferencePower;
    std::vector<float> fOtherPower;
    std::vector<std::complex<float>> fWhite;
    std::vector<float> fCorrelation;
    std::size_t fUsedBins = 0;
};

} // namespace qoc::dsp
