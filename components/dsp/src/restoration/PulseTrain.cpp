#include "qoc/dsp/restoration/PulseTrain.h"

#include "qoc/dsp/math/UnrolledSum.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

namespace {

// What counts as alike: the least correlation of the shapes, the least ratio of the peaks and of the sizes.
constexpr double kLeastCorrelation = 0.5;
constexpr double kLeastPeak = 0.3;
constexpr double kLeastSize = 0.35;
// By how much a period may differ from the next: in a glide, with half a sample of rounding at either end, and where
// one tone or syllable follows another.
constexpr double kTolerance = 0.02;
constexpr double kLeastTolerance = 1.5; // samples
constexpr double kLargestStep = 0.5;

} // namespace

void PulseTrain::Prepare(std::size_t frame, std::size_t halfWidth) {
    fHalfWidth = halfWidth;
    fEnergies.assign(frame, 0.0);
    fAlike.clear();
    fAlike.reserve(frame);
}

void PulseTrain::Take(std::span<const double> errors) noexcept {
    fErrors = errors;
    const std::size_t width = 2 * fHalfWidth + 1;
    double energy = 0;
    for (std::size_t i = 0; i < errors.size(); ++i) {
        energy += errors[i] * errors[i];
        if (i >= width) energy -= errors[i - width] * errors[i - width];
        if (i + 1 >= width) fEnergies[i - fHalfWidth] = energy;
    }
}

bool PulseTrain::Contains(std::size_t place) noexcept {
    if (place < fHalfWidth || place + fHalfWidth >= fErrors.size()) return false;
    FindAlike(place);
    const auto here = static_cast<double>(place);
    return std::ranges::any_of(fAlike, [&](std::size_t other) {
        const double period = static_cast<double>(other) - here;
        return HasAlikeAt(here - period, kLargestStep * std::abs(period)) ||
               HasAlikeAt(here + 2 * period, 2 * std::max(kLeastTolerance, kTolerance * std::abs(period)));
    });
}

void PulseTrain::FindAlike(std::size_t place) noexcept {
    fAlike.clear();
    fCompared = 0;
    const double least = kLeastPeak * std::abs(fErrors[place]);
    const double leastEnergy = kLeastSize * kLeastSize * fEnergies[place];
    for (std::size_t other = fHalfWidth; other + fHalfWidth < fErrors.size(); ++other) {
        if (std::abs(fErrors[other]) < least || fEnergies[other] <= leastEnergy) continue;
        const std::size_t distance = other > place ? other - place : place - other;
        if (distance <= 2 * fHalfWidth) continue;
        ++fCompared;
        if (IsAlike(place, other)) fAlike.push_back(other);
    }
}

bool PulseTrain::IsAlike(std::size_t place, std::size_t other) const noexcept {
    const double* const here = fErrors.data() + place - fHalfWidth;
    const double* const there = fErrors.data() + other - fHalfWidth;
    const auto product = UnrolledSum<double>(0, 2 * fHalfWidth + 1, [&](std::size_t i) { return here[i] * there[i]; });
    return product > kLeastCorrelation * std::sqrt(fEnergies[place] * fEnergies[other]);
}

bool PulseTrain::HasAlikeAt(double place, double tolerance) const noexcept {
    const auto found = std::ranges::lower_bound(fAlike, place - tolerance, {},
                                                [](std::size_t other) { return static_cast<double>(other); });
    return found != fAlike.end() && static_cast<double>(*found) <= place + tolerance;
}

} // namespace qoc::dsp
