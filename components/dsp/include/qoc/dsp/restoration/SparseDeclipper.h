#pragma once

#include "qoc/dsp/spectrum/RealFFT.h"

#include <complex>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace qoc::dsp {

// Finds what clipped samples were so that the spectrum of a frame becomes sparse and the sound stays consistent with
// what is known: unclipped samples are as they are, clipped ones no lower than the clipping and no higher than a
// ceiling. Alternating directions as of the analysis declipper A-SPADE (Kitic, Bertin, Gribonval, "Sparsity and
// cosparsity for audio declipping: a flexible non-convex approach", 2015), with a threshold that falls from round to
// round in place of a number of bins that grows; what passes it is weighed as an empirical Wiener filter does it
// (Siedenburg, Kowalski, Doerfler, "Audio declipping with social sparsity", 2014). High frequencies have to be
// somewhat stronger to pass, for clipping makes many of them.
// Owned by who restores; nothing but Prepare allocates.
class SparseDeclipper {
public:
    // For frames of `frame` samples, an even number. Allocates.
    void Prepare(std::size_t frame);

    // Starts with a frame. `sound` is what is known of it, `unknown` the places of the clipped samples, ascending,
    // and `ceilings` the largest amplitude of each. They stay valid until Finish.
    void Begin(std::span<const double> sound, std::span<const std::size_t> unknown,
               std::span<const double> ceilings) noexcept;
    // One of `rounds`, in order; a transform there and back.
    void Iterate(std::size_t round, std::size_t rounds) noexcept;
    // In nanoseconds, about.
    double CostOfRound() const noexcept { return 1.8 * static_cast<double>(fWindow.size()); }
    // Puts the clipped samples that it found into `sound`. Where the sound turned out not to be sparse, as noise, the
    // peaks are restored by half: that is nearer in the mean.
    void Finish(std::span<double> sound) const noexcept;

private:
    void Threshold(double threshold) noexcept;
    void Project() noexcept;

    std::optional<RealFFT> fTransform;
    std::vector<float> fWindow;
    std::vector<float> fWeights; // of a bin's power
    std::span<const double> fKnown;
    std::span<const std::size_t> fUnknown;
    std::span<const double> fCeilings;
    std::vector<float> fSound; // windowed
    std::vector<float> fTime;
    std::vector<std::complex<float>> fSpectrum;
    std::vector<std::complex<float>> fSparse;
    std::vector<std::complex<float>> fDual; // what the sound's spectrum and the sparse one differ by, summed up
    double fLoudest = 0;
    std::size_t fKept = 0; // bins that passed last
    double fDensity = 0;   // part of the bins that pass halfway
};

} // namespace qoc::dsp
