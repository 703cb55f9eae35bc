#pragma once

#include "qoc/dsp/spectrum/RealFFT.h"
#include "qoc/dsp/stream/PacedSteps.h"

#include <complex>
#include <optional>
#include <span>
#include <vector>

namespace qoc::dsp {

// An autoregressive model of a frame of sound: each sample is a weighted sum of those before it plus an error that is
// small while the sound is what the model expects. Found by the autocorrelation method, from the power spectrum, with
// the recursion of Levinson and Durbin (Makhoul, "Linear prediction: a tutorial review", 1975). Owned by the effect
// that uses it; nothing but Prepare allocates.
class LinearPrediction {
public:
    // For frames of `frame` samples, an even number, and up to `largestOrder` weights.
    void Prepare(std::size_t frame, std::size_t largestOrder);

    // Fits the model to a frame. A silent one gives a model without weights.
    void Fit(std::span<const double> sound, std::size_t order) noexcept;
    // The same in steps, 0 to one below kFitSteps, in order.
    static constexpr std::size_t kFitSteps = 8;
    void Fit(std::span<const double> sound, std::size_t order, std::size_t step) noexcept;
    // All steps, in nanoseconds, about.
    double CostOfFit() const noexcept { return 4 * static_cast<double>(fWindow.size()); }

    // 1 and the negative weights of the samples before, order + 1 values: their sum of products with the sound,
    // backwards, is the error.
    std::span<const double> Coefficients() const noexcept { return {fCoefficients.data(), fOrder + 1}; }
    std::size_t Order() const noexcept { return fOrder; }

    // What the model does not expect of a sample after those before it, and, with the same weights, before those after
    // it. 0 for the first and last samples, as many as the order. As many values as the sound has.
    void ForwardErrors(std::span<const double> sound, std::span<double> errors) const noexcept {
        ForwardErrors(sound, errors, {0, sound.size()});
    }
    // Only those of some samples.
    void ForwardErrors(std::span<const double> sound, std::span<double> errors, StepRange samples) const noexcept;
    void BackwardErrors(std::span<const double> sound, std::span<double> errors, StepRange samples) const noexcept;

private:
    void FindScale(std::span<const double> sound) noexcept;
    void Window(std::span<const double> sound) noexcept;
    void TakePowers() noexcept;
    void Recurse(std::size_t order) noexcept;
    // `step`: 1 towards the samples after, -1 towards those before.
    void ComputeErrors(std::span<const double> sound, std::span<double> errors, StepRange samples,
                       std::ptrdiff_t step) const noexcept;

    std::optional<RealFFT> fTransform; // of two frames, so that nothing wraps around
    std::vector<float> fWindow;
    double fScale = 0;
    std::vector<float> fTime;
    std::vector<std::complex<float>> fSpectrum;
    std::vector<double> fCorrelation;
    std::vector<double> fCoefficients;
    std::vector<double> fBefore; // the coefficients of one order less
    std::size_t fOrder = 0;
};

} // namespace qoc::dsp
