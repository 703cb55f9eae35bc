#include "qoc/dsp/restoration/LinearPrediction.h"

#include "restoration/PredictionErrors.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qoc::dsp {

namespace {

// Noise 70 dB below the sound, added to the autocorrelation, keeps the recursion well behaved where parts of the
// spectrum are empty and the transform's rounding is all that is there.
constexpr double kWhiteNoise = 1e-7;

} // namespace

void LinearPrediction::Prepare(std::size_t frame, std::size_t largestOrder) {
    fTransform.emplace(2 * frame);
    fWindow.resize(frame);
    for (std::size_t i = 0; i < frame; ++i) {
        const double angle = 2 * std::numbers::pi * (static_cast<double>(i) + 0.5) / static_cast<double>(frame);
        fWindow[i] = static_cast<float>(0.5 - 0.5 * std::cos(angle));
    }
    fTime.assign(2 * frame, 0.0F);
    fSpectrum.assign(fTransform->Bins(), {});
    fCorrelation.assign(largestOrder + 1, 0.0);
    fCoefficients.assign(largestOrder + 1, 0.0);
    fBefore.assign(largestOrder + 1, 0.0);
    fCoefficients[0] = 1;
    fOrder = 0;
}

void LinearPrediction::Fit(std::span<const double> sound, std::size_t order) noexcept {
    for (std::size_t step = 0; step < kFitSteps; ++step)
        Fit(sound, order, step);
}

void LinearPrediction::Fit(std::span<const double> sound, std::size_t order, std::size_t step) noexcept {
    switch (step) {
    case 0: return FindScale(sound);
    case 1: return Window(sound);
    case 2:
    case 3: return fTransform->Forward(fTime, fSpectrum, {step - 2, 2});
    case 4: return TakePowers();
    case 5:
    case 6: return fTransform->Inverse(fSpectrum, fTime, {step - 5, 2});
    default: return Recurse(order);
    }
}

// The sound is brought to a peak of 1 first, so that its level does not matter to single precision.
void LinearPrediction::FindScale(std::span<const double> sound) noexcept {
    double peak = 0;
    for (const double sample : sound)
        peak = std::max(peak, std::abs(sample));
    fScale = peak > 0 ? 1 / peak : 0;
}

void LinearPrediction::Window(std::span<const double> sound) noexcept {
    for (std::size_t i = 0; i < sound.size(); ++i)
        fTime[i] = static_cast<float>(sound[i] * fScale) * fWindow[i];
    std::fill(fTime.begin() + static_cast<std::ptrdiff_t>(sound.size()), fTime.end(), 0.0F);
}

void LinearPrediction::TakePowers() noexcept {
    for (std::complex<float>& bin : fSpectrum)
        bin = std::norm(bin);
}

void LinearPrediction::Recurse(std::size_t order) noexcept {
    std::copy_n(fTime.begin(), fCorrelation.size(), fCorrelation.begin());
    fCorrelation[0] *= 1 + kWhiteNoise;
    std::ranges::fill(fCoefficients, 0.0);
    fCoefficients[0] = 1;
    fOrder = order;
    double error = fCorrelation[0];
    for (std::size_t i = 1; i <= order && error > 0; ++i) {
        double sum = 0;
        for (std::size_t k = 0; k < i; ++k)
            sum += fCoefficients[k] * fCorrelation[i - k];
        const double reflection = -sum / error;
        std::copy_n(fCoefficients.begin(), i, fBefore.begin());
        for (std::size_t k = 1; k < i; ++k)
            fCoefficients[k] = fBefore[k] + reflection * fBefore[i - k];
        fCoefficients[i] = reflection;
        error *= 1 - reflection * reflection;
    }
}

void LinearPrediction::ForwardErrors(std::span<const double> sound, std::span<double> errors,
                                     StepRange samples) const noexcept {
    ComputeErrors(sound, errors, samples, -1);
}

void LinearPrediction::BackwardErrors(std::span<const double> sound, std::span<double> errors,
                                      StepRange samples) const noexcept {
    ComputeErrors(sound, errors, samples, 1);
}

void LinearPrediction::ComputeErrors(std::span<const double> sound, std::span<double> errors, StepRange samples,
                                     std::ptrdiff_t step) const noexcept {
    std::ranges::fill(errors.subspan(samples.begin, samples.end - samples.begin), 0.0);
    ComputePredictionErrors(Coefficients(), sound.data(), errors.data(), std::max(samples.begin, fOrder),
                            std::min(samples.end, sound.size() - fOrder), step);
}

} // namespace qoc::dsp
