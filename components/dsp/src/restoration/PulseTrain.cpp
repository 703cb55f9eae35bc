#include "qoc/dsp/restoration/PulseTrain.h"

#include "qoc/dsp/math/DotProduct.h"

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

// Nanoseconds, about: a place, a shape and a sample of that.
constexpr double kLookCost = 1;
constexpr double kCompareCost = 6;
constexpr double kProductCost = 0.15;

} // namespace

void PulseTrain::Prepare(std::size_t frame, std::size_t halfWidth) {
    fHalfWidth = halfWidth;
    fEnergies.assign(frame, 0.0);
    fPlaces.clear();
    fPlaces.reserve(frame);
    fAlike.clear();
    fAlike.reserve(frame);
}

void PulseTrain::Take(std::span<const double> errors, double least) noexcept {
    fErrors = errors;
    const std::size_t width = 2 * fHalfWidth + 1;
    double energy = 0;
    for (std::size_t i = 0; i < errors.size(); ++i) {
        energy += errors[i] * errors[i];
        if (i >= width) energy -= errors[i - width] * errors[i - width];
        if (i + 1 >= width) fEnergies[i - fHalfWidth] = energy;
    }
    CollectPlaces(kLeastPeak * least);
}

// Few are that large, and which ones can't be foretold: each is written down, and the next over it if it is too small.
void PulseTrain::CollectPlaces(double least) noexcept {
    fPlaces.resize(fErrors.size());
    std::size_t count = 0;
    for (std::size_t place = fHalfWidth; place + fHalfWidth < fErrors.size(); ++place) {
        fPlaces[count] = place;
        count += std::abs(fErrors[place]) >= least ? 1 : 0;
    }
    fPlaces.resize(count);
}

void PulseTrain::Begin(std::size_t place) noexcept {
    fAlike.clear();
    fPlace = place;
    const bool isWhole = place >= fHalfWidth && place + fHalfWidth < fErrors.size();
    fNext = isWhole ? 0 : fPlaces.size();
}

double PulseTrain::Work() noexcept {
    constexpr std::size_t kMostPlaces = 2048;
    constexpr std::size_t kMostCompared = 256;
    const std::size_t begin = fNext;
    const std::size_t end = std::min(fPlaces.size(), begin + kMostPlaces);
    std::size_t compared = 0;
    for (; fNext < end && compared < kMostCompared; ++fNext) {
        const std::size_t other = fPlaces[fNext];
        if (!MayBeAlike(fPlace, other)) continue;
        ++compared;
        if (IsAlike(other)) fAlike.push_back(other);
    }
    return kLookCost * static_cast<double>(fNext - begin) + CostOfComparing(compared);
}

// By some of the others, evenly among them.
double PulseTrain::CostOf(std::size_t place) const noexcept {
    constexpr std::size_t kSample = 64;
    const std::size_t step = fPlaces.size() / kSample + 1;
    std::size_t compared = 0;
    for (std::size_t i = 0; i < fPlaces.size(); i += step)
        compared += MayBeAlike(place, fPlaces[i]) ? step : 0;
    return kLookCost * static_cast<double>(fPlaces.size()) + CostOfComparing(compared);
}

double PulseTrain::CostOfComparing(std::size_t places) const noexcept {
    return (kCompareCost + kProductCost * static_cast<double>(2 * fHalfWidth + 1)) * static_cast<double>(places);
}

bool PulseTrain::IsPulse() const noexcept {
    const auto here = static_cast<double>(fPlace);
    return std::ranges::any_of(fAlike, [&](std::size_t other) {
        const double period = static_cast<double>(other) - here;
        return HasAlikeAt(here - period, kLargestStep * std::abs(period)) ||
               HasAlikeAt(here + 2 * period, 2 * std::max(kLeastTolerance, kTolerance * std::abs(period)));
    });
}

bool PulseTrain::MayBeAlike(std::size_t place, std::size_t other) const noexcept {
    const std::size_t distance = other > place ? other - place : place - other;
    return std::abs(fErrors[other]) >= kLeastPeak * std::abs(fErrors[place]) &&
           fEnergies[other] > kLeastSize * kLeastSize * fEnergies[place] && distance > 2 * fHalfWidth;
}

bool PulseTrain::IsAlike(std::size_t other) const noexcept {
    const double* const here = fErrors.data() + fPlace - fHalfWidth;
    const double* const there = fErrors.data() + other - fHalfWidth;
    const double product = DotProduct(here, there, 2 * fHalfWidth + 1);
    return product > kLeastCorrelation * std::sqrt(fEnergies[fPlace] * fEnergies[other]);
}

bool PulseTrain::HasAlikeAt(double place, double tolerance) const noexcept {
    const auto found = std::ranges::lower_bound(fAlike, place - tolerance, {},
                                                [](std::size_t other) { return static_cast<double>(other); });
    return found != fAlike.end() && static_cast<double>(*found) <= place + tolerance;
}

} // namespace qoc::dsp
