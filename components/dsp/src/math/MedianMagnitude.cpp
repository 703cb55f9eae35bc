#include "qoc/dsp/math/MedianMagnitude.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace qoc::dsp {

namespace {

double Select(std::span<double> values, std::size_t rank) noexcept {
    const auto place = values.begin() + static_cast<std::ptrdiff_t>(rank);
    std::nth_element(values.begin(), place, values.end());
    return *place;
}

struct Range {
    double lo;
    double hi;
};

// Of the magnitude: in the order of the values.
std::uint64_t BitsOf(double value) noexcept {
    return std::bit_cast<std::uint64_t>(std::abs(value));
}

// Where the median of many values most likely lies, by that of some of them: their ranks next to the middle are four
// deviations of its rank apart.
Range RangeOfMedian(std::span<const double> values) noexcept {
    constexpr std::size_t kSample = 128;
    constexpr std::size_t kDeviation = 6; // sqrt(kSample) / 2
    std::array<double, kSample> sample;
    const std::size_t step = values.size() / kSample;
    for (std::size_t i = 0; i < kSample; ++i)
        sample[i] = std::abs(values[i * step]);
    const double lo = Select(sample, kSample / 2 - 2 * kDeviation);
    const double hi = Select(std::span(sample).subspan(kSample / 2 - 2 * kDeviation), 4 * kDeviation);
    return {lo, hi};
}

} // namespace

// Of many values only those near the median are sorted.
double MedianMagnitude(std::span<const double> values, std::span<double> scratch) noexcept {
    constexpr std::size_t kMany = 512;
    if (values.empty()) return 0;
    const std::size_t middle = values.size() / 2;
    if (values.size() >= kMany) {
        const auto [lo, hi] = RangeOfMedian(values);
        const std::uint64_t first = BitsOf(lo);
        const std::uint64_t range = BitsOf(hi) - first;
        std::size_t below = 0;
        std::size_t near = 0;
        for (const double value : values) {
            const std::uint64_t bits = BitsOf(value);
            scratch[near] = std::bit_cast<double>(bits);
            below += bits < first ? 1 : 0;
            near += bits - first <= range ? 1 : 0;
        }
        if (middle >= below && middle < below + near) return Select(scratch.first(near), middle - below);
    }
    std::ranges::transform(values, scratch.begin(), [](double value) { return std::abs(value); });
    return Select(scratch.first(values.size()), middle);
}

bool IsMedianMagnitudeBelow(double limit, std::span<const double> values) noexcept {
    if (values.empty()) return limit > 0;
    const auto below = std::ranges::count_if(values, [limit](double value) { return std::abs(value) < limit; });
    return static_cast<std::size_t>(below) > values.size() / 2;
}

} // namespace qoc::dsp
