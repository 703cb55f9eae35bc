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
    // From now on the other sound's frames are read that many samples later than the reference's. The closer to the
    // delay, the more of a frame do both have, and the finer the delay is told.
    void SetOrigin(std::ptrdiff_t origin) noexcept;
    std::ptrdiff_t Origin() const noexcept { return fOrigin; }
    // In samples, at most `longest` to either side and a quarter of the size. Nothing when the sounds have too little
    // in common.
    std::optional<double> Find(double longest) noexcept;
    // How much of both is the same sound, weighted by power (-1...1): as they are, and after the delay is taken out and
    // every octave turned in phase.
    struct Likeness {
        double untreated = 0;
        double treated = 0;
    };
    Likeness LikenessAt(double delay) const noexcept;
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
    double Peak(double lag) const noexcept;
    Slope SlopeAt(double delay) const noexcept;
    double AngularStep() const noexcept; // of a bin, for a sample

    std::optional<RealFFT> fTransform;
    std::vector<std::complex<float>> fCross;
    std::vector<float> fReferencePower;
    std::vector<float> fOtherPower;
    std::vector<std::complex<float>> fWhite;
    std::vector<float> fCorrelation;
    std::size_t fUsedBins = 0;
    std::ptrdiff_t fOrigin = 0;
};

} // namespace qoc::dsp
