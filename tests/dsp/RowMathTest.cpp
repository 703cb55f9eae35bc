#include "EveryVectorTarget.h"
#include "qoc/dsp/math/CubicPieces.h"
#include "qoc/dsp/math/Decibels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace qoc::dsp;

namespace {

// As many as fill no whole vectors.
constexpr std::size_t kCount = 1003;

std::vector<double> Spread(double first, double last) {
    std::vector<double> values(kCount);
    for (std::size_t i = 0; i < kCount; ++i)
        values[i] = first + (last - first) * static_cast<double>(i) / (kCount - 1);
    return values;
}

TEST(Decibels, RowsAreThoseOfSingleValues) {
    test::WithEveryVectorTarget([](const std::string& target) {
        const auto decibels = Spread(-230, 230);
        auto factors = decibels;
        ToFactors(factors);
        auto powers = factors;
        ToDecibels(powers);
        for (std::size_t i = 0; i < kCount; ++i) {
            const double expected = std::pow(10, decibels[i] / 20);
            ASSERT_NEAR(factors[i], expected, 2e-14 * expected) << target << " " << decibels[i];
            ASSERT_NEAR(powers[i], decibels[i] / 2, 1e-12) << target;
        }
        std::vector<double> near = {0, 1.9e-5, -1.9e-5, 2.1e-5};
        ToFactors(near);
        EXPECT_EQ(std::vector(near.begin(), near.end() - 1), std::vector(3, 1.0))
            << target << ": what is meant to be 0";
        EXPECT_GT(near[3], 1) << target;
    });
}

// |x| up to 1, then the cube, with a jump at 2.
TEST(CubicPieces, HoldFromTheirPlacesOnWhateverTheVectors) {
    CubicPieces pieces;
    pieces.Begin({0, {0, -1}});
    pieces.Add({0, {0, 1}});
    pieces.Add({1, {1, 3, 3, 1}});
    pieces.Add({2, {100}});
    pieces.Add({2, {-5, 0, 2}});
    const auto valueAt = [](double x) {
        if (x < 1) return std::abs(x);
        return x < 2 ? x * x * x : 2 * (x - 2) * (x - 2) - 5;
    };
    const auto places = Spread(-1.5, 4.5);
    auto rises = places;
    pieces.Rise(rises, 0.3);
    test::WithEveryVectorTarget([&](const std::string& target) {
        auto values = places;
        pieces.At(values);
        auto theirs = places;
        pieces.Rise(theirs, 0.3);
        EXPECT_EQ(theirs, rises) << target << " rounds otherwise";
        for (std::size_t i = 0; i < kCount; ++i) {
            ASSERT_NEAR(values[i], valueAt(places[i]), 1e-12) << target << " " << places[i];
            ASSERT_NEAR(theirs[i], (valueAt(places[i] + 0.15) - valueAt(places[i] - 0.15)) / 0.3, 1e-9) << target;
        }
    });
    EXPECT_EQ(pieces.At(2), -5);
}

} // namespace
