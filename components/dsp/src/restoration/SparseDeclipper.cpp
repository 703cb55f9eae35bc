#include "qoc/dsp/restoration/SparseDeclipper.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qoc::dsp {

namespace {

// The threshold's way, from the loudest bin down.
constexpr double kFirst = 0.1;
constexpr double kRange = 0.00316; // -50 dB
// How many bins of a frame are as good as the lowest; a bin's weight grows with the square root of its number there.
constexpr double kFlatBins = 40;
// Above that part of the bins a sound is no longer sparse, and where all pass, half of a peak is restored.
constexpr double kSparse = 0.9;
constexpr double kLeastTrust = 0.5;

} // namespace

void SparseDeclipper::Prepare(std::size_t frame) {
    fTransform.emplace(frame);
    fWindow.resize(frame);
    for (std::size_t i = 0; i < frame; ++i)
        fWindow[i] = static_cast<float>(
            std::sin(std::numbers::pi * (static_cast<double>(i) + 0.5) / static_cast<double>(frame)));
    const std::size_t bins = fTransform->Bins();
    fWeights.resize(bins);
    for (std::size_t k = 0; k < bins; ++k)
        fWeights[k] = static_cast<float>(1 + static_cast<double>(k) / kFlatBins);
    fSound.assign(frame, 0.0F);
    fTime.assign(frame, 0.0F);
    fSpectrum.assign(bins, {});
    fSparse.assign(bins, {});
    fDual.assign(bins, {});
}

void SparseDeclipper::Begin(std::span<const double> sound, std::span<const std::size_t> unknown,
                            std::span<const double> ceilings) noexcept {
    fKnown = sound;
    fUnknown = unknown;
    fCeilings = ceilings;
    fDensity = 0;
    for (std::size_t i = 0; i < sound.size(); ++i)
        fSound[i] = static_cast<float>(sound[i]) * fWindow[i];
    std::ranges::fill(fDual, std::complex<float>{});
    std::ranges::fill(fSparse, std::complex<float>{});
}

void SparseDeclipper::Iterate(std::size_t round, std::size_t rounds) noexcept {
    fTransform->Forward(fSound, fSpectrum);
    if (round == 0) {
        float loudest = 0;
        for (std::size_t k = 0; k < fSpectrum.size(); ++k)
            loudest = std::max(loudest, std::norm(fSpectrum[k]) / fWeights[k]);
        fLoudest = std::sqrt(loudest);
    } else {
        for (std::size_t k = 0; k < fDual.size(); ++k)
            fDual[k] += fSpectrum[k] - fSparse[k];
    }
    const double way = static_cast<double>(round) / static_cast<double>(rounds);
    Threshold(fLoudest * kFirst * std::pow(kRange, way));
    if (2 * round >= rounds && fDensity == 0)
        fDensity = static_cast<double>(fKept) / static_cast<double>(fSpectrum.size());
    Project();
}

void SparseDeclipper::Threshold(double threshold) noexcept {
    const auto power = static_cast<float>(threshold * threshold);
    fKept = 0;
    for (std::size_t k = 0; k < fSpectrum.size(); ++k) {
        const float re = fSpectrum[k].real() + fDual[k].real();
        const float im = fSpectrum[k].imag() + fDual[k].imag();
        const float present = re * re + im * im;
        const float least = power * fWeights[k];
        const float gain = present > least ? 1 - least / present : 0;
        fKept += present > least ? 1 : 0;
        fSparse[k] = {gain * re, gain * im};
        fSpectrum[k] = {gain * re - fDual[k].real(), gain * im - fDual[k].imag()};
    }
}

// To the nearest sound that agrees with what is known.
void SparseDeclipper::Project() noexcept {
    fTransform->Inverse(fSpectrum, fTime);
    for (std::size_t i = 0; i < fUnknown.size(); ++i) {
        const std::size_t place = fUnknown[i];
        const auto clipped = static_cast<float>(fKnown[place]);
        const float sign = clipped < 0 ? -1.0F : 1.0F;
        const float lowest = std::abs(clipped) * fWindow[place];
        const float highest = static_cast<float>(fCeilings[i]) * fWindow[place];
        fSound[place] = sign * std::clamp(sign * fTime[place], lowest, std::max(lowest, highest));
    }
}

void SparseDeclipper::Finish(std::span<double> sound) const noexcept {
    const double doubt = std::max(0.0, (fDensity - kSparse) / (1 - kSparse));
    const double trust = 1 - (1 - kLeastTrust) * doubt;
    for (const std::size_t place : fUnknown) {
        const double found = fSound[place] / fWindow[place];
        sound[place] = fKnown[place] + trust * (found - fKnown[place]);
    }
}

} // namespace qoc::dsp
