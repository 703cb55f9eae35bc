#include "qoc/dsp/restoration/TimeDelayEstimator.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <utility>

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
    fOrigin = 0;
}

double TimeDelayEstimator::AngularStep() const noexcept {
    return 2 * std::numbers::pi / static_cast<double>(fCorrelation.size());
}

void TimeDelayEstimator::Add(std::span<const std::complex<float>> reference, std::span<const std::complex<float>> other,
                             float kept) noexcept {
    for (std::size_t bin = 0; bin < fCross.size(); ++bin) {
        fCross[bin] = fCross[bin] * kept + other[bin] * std::conj(reference[bin]);
        fReferencePower[bin] = fReferencePower[bin] * kept + std::norm(reference[bin]);
        fOtherPower[bin] = fOtherPower[bin] * kept + std::norm(other[bin]);
    }
}

void TimeDelayEstimator::SetOrigin(std::ptrdiff_t origin) noexcept {
    if (origin == fOrigin) return;
    const double angle = AngularStep() * static_cast<double>(origin - fOrigin);
    for (std::size_t bin = 0; bin < fCross.size(); ++bin)
        fCross[bin] *= std::complex<float>(std::polar(1.0, angle * static_cast<double>(bin)));
    fOrigin = origin;
}

std::optional<double> TimeDelayEstimator::Find(double longest) noexcept {
    // Of sounds that have nothing in common the peak is a few times 1 / sqrt(bins).
    constexpr double kLeastPeak = 0.2;
    Whiten();
    if (fUsedBins == 0) return {};
    const auto origin = static_cast<double>(fOrigin);
    const double reach = std::min(longest, static_cast<double>(fCorrelation.size()) / 4);
    const double delay = Peak(static_cast<double>(PeakLag(static_cast<std::ptrdiff_t>(reach))) - origin);
    if (std::abs(SlopeAt(delay).value) < kLeastPeak * static_cast<double>(fUsedBins)) return {};
    return std::clamp(delay + origin, -reach, reach);
}

// The peak beside a whole lag, by Newton's method between bounds that close in: where they are left, by halves.
double TimeDelayEstimator::Peak(double lag) const noexcept {
    constexpr int kMostSteps = 24;
    constexpr double kNear = 1e-6; // samples
    const Slope middle = SlopeAt(lag);
    const double sign = middle.value < 0 ? -1 : 1;
    double lo = middle.first * sign > 0 ? lag : lag - 1;
    double hi = lo + 1;
    double delay = lag;
    Slope slope = middle;
    for (int step = 0; step < kMostSteps && hi - lo > kNear; ++step) {
        const double newton = delay - slope.first / slope.second;
        const bool isPeak = slope.second * sign < 0 && newton > lo && newton < hi;
        const double next = isPeak ? newton : (lo + hi) / 2;
        if (std::abs(next - delay) < kNear) return next;
        delay = next;
        slope = SlopeAt(delay);
        (slope.first * sign > 0 ? lo : hi) = delay;
    }
    return delay;
}

TimeDelayEstimator::Likeness TimeDelayEstimator::LikenessAt(double delay) const noexcept {
    // Of fewer bins a sum does not tell what is common from what is so by chance.
    constexpr std::size_t kLeastBand = 32;
    const double aligned = AngularStep() * (delay - static_cast<double>(fOrigin));
    const double untreated = -AngularStep() * static_cast<double>(fOrigin);
    std::complex<double> band;
    double reference = 0;
    double other = 0;
    double allReference = 0;
    double allOther = 0;
    double common = 0;
    double bands = 0;
    double inPhase = 0;
    std::size_t end = kLeastBand; // of the octave
    for (std::size_t bin = 1; bin < fCross.size(); ++bin) {
        const std::complex<double> cross(fCross[bin]);
        band += cross * std::polar(1.0, aligned * static_cast<double>(bin));
        inPhase += (cross * std::polar(1.0, untreated * static_cast<double>(bin))).real();
        reference += fReferencePower[bin];
        other += fOtherPower[bin];
        if (bin + 1 < end && bin + 1 < fCross.size()) continue;
        common += std::abs(band);
        bands += std::sqrt(reference * other);
        allReference += std::exchange(reference, 0);
        allOther += std::exchange(other, 0);
        band = 0;
        end *= 2;
    }
    if (!(bands > 0)) return {};
    return {.untreated = inPhase / std::sqrt(allReference * allOther), .treated = common / bands};
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
        return std::abs(fCorrelation[static_cast<std::size_t>((lag - fOrigin + size) % size)]);
    };
    std::ptrdiff_t best = 0;
    for (std::ptrdiff_t lag = -reach; lag <= reach; ++lag) {
        if (magnitudeAt(lag) > magnitudeAt(best)) best = lag;
    }
    return best;
}

TimeDelayEstimator::Slope TimeDelayEstimator::SlopeAt(double delay) const noexcept {
    const double step = AngularStep();
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
