#include "qoc/dsp/restoration/LinearPrediction.h"

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
    Correlate(sound);
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

void LinearPrediction::ForwardErrors(std::span<const double> sound, std::span<double> errors) const noexcept {
    std::ranges::fill(errors, 0.0);
    for (std::size_t k = 0; k <= fOrder; ++k) {
        const double weight = fCoefficients[k];
        for (std::size_t i = fOrder; i < sound.size() - fOrder; ++i)
            errors[i] += weight * sound[i - k];
    }
}

void LinearPrediction::BackwardErrors(std::span<const double> sound, std::span<double> errors) const noexcept {
    std::ranges::fill(errors, 0.0);
    for (std::size_t k = 0; k <= fOrder; ++k) {
        const double weight = fCoefficients[k];
        for (std::size_t i = fOrder; i < sound.size() - fOrder; ++i)
            errors[i] += weight * sound[i + k];
    }
}

// The sound is brought to a peak of 1 first, so that its level does not matter to single precision.
void LinearPrediction::Correlate(std::span<const double> sound) noexcept {
    double peak = 0;
    for (const double sample : sound)
        peak = std::max(peak, std::abs(sample));
    const double scale = peak > 0 ? 1 / peak : 0;
    for (std::size_t i = 0; i < sound.size(); ++i)
        fTime[i] = static_cast<float>(sound[i] * scale) * fWindow[i];
    std::fill(fTime.begin() + static_cast<std::ptrdiff_t>(sound.size()), fTime.end(), 0.0F);
    fTransform->Forward(fTime, fSpectrum);
    for (std::complex<float>& bin : fSpectrum)
        bin = std::norm(bin);
    fTransform->Inverse(fSpectrum, fTime);
    std::copy_n(fTime.begin(), fCorrelation.size(), fCorrelation.begin());
    fCorrelation[0] *= 1 + kWhiteNoise;
}

} // namespace qoc::dsp
