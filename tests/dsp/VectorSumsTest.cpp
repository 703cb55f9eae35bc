#include "qoc/dsp/math/DotProduct.h"
#include "qoc/dsp/math/MedianMagnitude.h"

#include "EveryVectorTarget.h"
#include "MeasureSound.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

using namespace qoc::dsp;

namespace {

std::vector<double> Doubles(std::size_t count, unsigned seed) {
    const std::vector<float> noise = test::Noise(count, seed);
    return {noise.begin(), noise.end()};
}

// Whole numbers, so that every order of the sum gives the same, and others, of which the bits are compared.
TEST(DotProduct, IsTheSumOfTheProductsWithTheSameBitsOnEveryProcessor) {
    for (const std::size_t count : {0U, 1U, 7U, 8U, 23U, 64U, 1001U}) {
        std::vector<float> whole(count);
        std::iota(whole.begin(), whole.end(), 1.0F);
        const std::vector<double> wholeDoubles(whole.begin(), whole.end());
        const auto n = static_cast<double>(count);
        const double squares = n * (n + 1) * (2 * n + 1) / 6;
        const std::vector<double> one = Doubles(count, 1);
        const std::vector<double> other = Doubles(count, 2);
        std::optional<double> first;
        test::WithEveryVectorTarget([&](const std::string& target) {
            EXPECT_EQ(DotProduct(whole.data(), whole.data(), count), squares) << count << target;
            EXPECT_EQ(DotProduct(wholeDoubles.data(), wholeDoubles.data(), count), squares) << count << target;
            const double product = DotProduct(one.data(), other.data(), count);
            EXPECT_EQ(product, first.value_or(product)) << count << target;
            first = product;
        });
    }
}

// Few values and many, in an order that has nothing to do with their size, in one that has, and all alike.
TEST(MedianMagnitude, IsTheOneInTheMiddleOfTheSorted) {
    for (const std::size_t count : {1U, 2U, 5U, 300U, 511U, 512U, 513U, 4096U}) {
        std::vector<double> sorted = Doubles(count, 5);
        std::ranges::sort(sorted);
        std::vector<double> waves(count);
        for (std::size_t i = 0; i < count; ++i)
            waves[i] = std::sin(0.7853981633974483 * static_cast<double>(i));
        for (const auto& values : {Doubles(count, 4), sorted, waves, std::vector<double>(count, -0.25)}) {
            std::vector<double> expected(count);
            std::ranges::transform(values, expected.begin(), [](double value) { return std::abs(value); });
            std::ranges::sort(expected);
            const double median = expected[count / 2];
            std::vector<double> scratch(count);
            EXPECT_EQ(MedianMagnitude(values, scratch), median) << count;
            EXPECT_FALSE(IsMedianMagnitudeBelow(median, values)) << count;
            EXPECT_TRUE(IsMedianMagnitudeBelow(std::nextafter(median, 2), values)) << count;
        }
    }
    EXPECT_EQ(MedianMagnitude({}, {}), 0);
    EXPECT_TRUE(IsMedianMagnitudeBelow(1e-9, {}));
    EXPECT_FALSE(IsMedianMagnitudeBelow(0, {}));
}

} // namespace
