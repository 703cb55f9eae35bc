#include "qoc/dsp/restoration/TimeDelayEstimator.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace qoc::dsp {

void TimeDelayEstimator::Prepare(std::size_t size) {
    fTransform.emplace(size);
    const std::size_t bins = fTransform->Bins();
    fCross.resize(bins);
    fReferencePower.resize(bins);
    fOtherPower.resize(bins);
    fWhite.resize(bins);
    fCorrelation.resize(size);
    Reset();
}

void TimeDelayEstimator::Reset() noexcept {
    std::ranges::fill(fCross, std::complex<float>());
    std::ranges::fill(fReferencePower, 0.0F);
    std::ranges::fill(fOtherPower, 0.0F);
}

void TimeDelayEstimator::Add(std::span<const std::complex<float>> reference, std::span<const std::complex<float>> other,
                             float kept) noexcept {
    for (std::size_t bin = 0; bin < fCross.size(); ++bin) {
        fCross[bin] = fCross[bin] * kept + other[bin] * std::conj(reference[bin]);
        fReferencePower[bin] = fReferencePower[bin] * kept + std::norm(reference[bin]);
        fOtherPower[bin] = fOtherPower[bin] * kept + std::norm(other[bin]);
    }
}

std::optional<double> TimeDelayEstimator::Find(double longest) noexcept {
    // Of sounds that have nothing in common the peak is a few times 1 / sqrt(bins).
    constexpr double kLeastPeak = 0.2;
    constexpr int kSteps = 4; // of Newton's method; each doubles the digits
    Whiten();
    if (fUsedBins == 0) return {};
    const auto size = static_cast<double>(fCorrelation.size());
    const double reach = std::min(longest, size / 4);
    const auto lag = static_cast<double>(PeakLag(static_cast<std::ptrdiff_t>(reach)));
    double delay = lag;
    for (int step = 0; step < kSteps; ++step) {
        const Slope slope = SlopeAt(delay);
        if (slope.value * slope.second >= 0) break;
        delay = std::clamp(delay - slope.first / slope.second, lag - 1, lag + 1);
    }
    if (std::abs(SlopeAt(delay).value) < kLeastPeak * static_cast<double>(fUsedBins)) return {};
    return std::clamp(delay, -reach, reach);
}

float TimeDelayEstimator::LevelRatio() const noexcept {
    const double reference = std::accumulate(fReferencePower.begin(), fReferencePower.end(), 0.0);
    const double other = std::accumulate(fOtherPower.begin(), fOtherPower.end(), 0.0);
    return reference > 0 && other > 0 ? static_cast<float>(std::sqrt(reference / other)) : 1.0F;
}

// Leaves the phase difference, as far as it has been the same over the frames. What is 70 dB below the strongest bin
// is mostly what the window lets through of others.
void TimeDelayEstimator::Whiten() noexcept {
    constexpr double kLeastPower = 1e-14; // of powers times powers
    const auto powerOf = [this](std::size_t bin) { return double{fReferencePower[bin]} * fOtherPower[bin]; };
    double strongest = 0;
    for (std::size_t bin = 0; bin < fCross.size(); ++bin)
        strongest = std::max(strongest, powerOf(bin));
    fUsedBins = 0;
    // Both ends are real and tell no delay.
    for (std::size_t bin = 0; bin < fWhite.size(); ++bin) {
        const double power = powerOf(bin);
        const bool isUsed = bin != 0 && bin + 1 != fWhite.size() && power > strongest * kLeastPower;
        fWhite[bin] = isUsed ? fCross[bin] / static_cast<float>(std::sqrt(power)) : std::complex<float>();
        fUsedBins += isUsed ? 1 : 0;
    }
}

std::ptrdiff_t TimeDelayEstimator::PeakLag(std::ptrdiff_t reach) noexcept {
    fTransform->Inverse(fWhite, fCorrelation);
    const auto size = static_cast<std::ptrdiff_t>(fCorrelation.size());
    const auto magnitudeAt = [&](std::ptrdiff_t lag) {
        return std::abs(fCorrelation[static_cast<std::size_t>(lag < 0 ? lag + size : lag)]);
    };
    std::ptrdiff_t best = 0;
    for (std::ptrdiff_t lag = -reach; lag <= reach; ++lag) {
        if (magnitudeAt(lag) > magnitudeAt(best)) best = lag;
    }
    return best;
}

TimeDelayEstimator::Slope TimeDelayEstimator::SlopeAt(double delay) const noexcept {
    const double step = 2 * std::numbers::pi / static_cast<double>(fCorrelation.size());
    const std::complex<double> turn = std::polar(1.0, step * delay);
    std::complex<double> phase = 1;
    Slope slope;
    for (std::size_t bin = 0; bin < fWhite.size(); ++bin) {
        const std::complex<double> value = std::complex<double>(fWhite[bin]) * phase;
        const double angular = step * static_cast<double>(bin);
        slope.value += value.real();
        slope.first -= angular * value.imag();
        slope.second -= angular * angular * value.real();
        phase *= turn;
    }
    return slope;
}

} // namespace qoc::dsp
