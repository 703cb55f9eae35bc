#include "qoc/dsp/restoration/PulseTrain.h"

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
    fAlike.clear();
    fAlike.reserve(frame);
}

bool PulseTrain::Contains(std::span<const double> errors, std::size_t place) noexcept {
    if (place < fHalfWidth || place + fHalfWidth >= errors.size()) return false;
    FindAlike(errors, place);
    const auto here = static_cast<double>(place);
    return std::ranges::any_of(fAlike, [&](std::size_t other) {
        const double period = static_cast<double>(other) - here;
        return HasAlikeAt(here - period, kLargestStep * std::abs(period)) ||
               HasAlikeAt(here + 2 * period, 2 * std::max(kLeastTolerance, kTolerance * std::abs(period)));
    });
}

void PulseTrain::FindAlike(std::span<const double> errors, std::size_t place) noexcept {
    fAlike.clear();
    const double least = kLeastPeak * std::abs(errors[place]);
    for (std::size_t other = fHalfWidth; other + fHalfWidth < errors.size(); ++other) {
        const std::size_t distance = other > place ? other - place : place - other;
        if (distance <= 2 * fHalfWidth || std::abs(errors[other]) < least) continue;
        if (IsAlike(errors, place, other)) fAlike.push_back(other);
    }
}

bool PulseTrain::IsAlike(std::span<const double> errors, std::size_t place, std::size_t other) const noexcept {
    double product = 0;
    double here = 0;
    double there = 0;
    for (std::size_t i = 0; i <= 2 * fHalfWidth; ++i) {
        const double a = errors[place - fHalfWidth + i];
        const double b = errors[other - fHalfWidth + i];
        product += a * b;
        here += a * a;
        there += b * b;
    }
    return product > kLeastCorrelation * std::sqrt(here * there) && there > kLeastSize * kLeastSize * here;
}

bool PulseTrain::HasAlikeAt(double place, double tolerance) const noexcept {
    const auto found = std::ranges::lower_bound(fAlike, place - tolerance, {},
                                                [](std::size_t other) { return static_cast<double>(other); });
    return found != fAlike.end() && static_cast<double>(*found) <= place + tolerance;
}

} // namespace qoc::dsp
