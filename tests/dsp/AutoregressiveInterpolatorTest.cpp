#include "qoc/dsp/restoration/AutoregressiveInterpolator.h"

#include "EveryVectorTarget.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

using qoc::dsp::AutoregressiveInterpolator;

namespace {

// A model that keeps the third difference's changes small goes on with the slope of 2 a sample at which the known sound
// ends on either side: without a bound the middle of the gap would come to about 15.
TEST(AutoregressiveInterpolator, StaysWithinTheReachOfTheSoundAround) {
    constexpr std::size_t kBegin = 50;
    constexpr std::size_t kLength = 30;
    const std::vector<double> coefficients = {1, -4, 6, -4, 1};
    std::vector<double> sound(130);
    sound[kBegin - 2] = sound[kBegin + kLength + 1] = -1;
    sound[kBegin - 1] = sound[kBegin + kLength] = 1;
    std::vector<std::size_t> unknown(kLength);
    std::iota(unknown.begin(), unknown.end(), kBegin);
    AutoregressiveInterpolator interpolator;
    interpolator.Prepare(kLength, coefficients.size() - 1);
    interpolator.Restore(coefficients, unknown, sound);
    const auto [lo, hi] = std::ranges::minmax(sound);
    EXPECT_GE(lo, -2) << "half of what it swings by more than there is";
    EXPECT_LE(hi, 2);
    EXPECT_GT(hi, 1) << "the slope goes on";
}

// What it fills in makes the sum of the squared errors least: with every place the errors that it takes part in,
// weighed as it is in them, add up to nothing. With the same bits on every kind of processor.
TEST(AutoregressiveInterpolator, MakesTheErrorsAsSmallAsTheyCanBe) {
    for (const std::size_t order : {3U, 8U, 13U, 48U}) {
        std::vector<double> coefficients(order + 1);
        for (std::size_t k = 0; k <= order; ++k)
            coefficients[k] = std::pow(0.9, k) * std::cos(0.7 * static_cast<double>(k));
        std::vector<double> known(600);
        for (std::size_t i = 0; i < known.size(); ++i)
            known[i] = std::sin(0.01 * static_cast<double>(i * i % 1000));
        std::vector<std::size_t> unknown; // gaps alone, the longest not first, and nearby
        for (std::size_t place = 100; place < 500; ++place) {
            if (place < 161 || (place > 170 && place < 175) || (place > 180 && place < 300 && place % 3 == 0) ||
                place == 380 || (place > 440 && place < 470))
                unknown.push_back(place);
        }
        AutoregressiveInterpolator interpolator;
        interpolator.Prepare(unknown.size(), 64);
        std::vector<std::size_t> others(unknown.size()); // leave something behind
        std::iota(others.begin(), others.end(), 90);
        std::vector<double> other = known;
        interpolator.Restore(coefficients, others, other);
        std::vector<double> first;
        test::WithEveryVectorTarget([&](const std::string& target) {
            std::vector<double> sound = known;
            interpolator.BeginUnbounded(coefficients, unknown, sound);
            while (!interpolator.IsDone())
                interpolator.Work();
            std::vector<double> errors(sound.size());
            for (std::size_t i = order; i < sound.size(); ++i)
                for (std::size_t k = 0; k <= order; ++k)
                    errors[i] += coefficients[k] * sound[i - k];
            for (const std::size_t place : unknown) {
                double sum = 0;
                for (std::size_t k = 0; k <= order; ++k)
                    sum += coefficients[k] * errors[place + k];
                EXPECT_NEAR(sum, 0, 1e-10) << place << " order " << order << " with " << target;
            }
            EXPECT_NE(sound, known);
            if (first.empty()) first = sound;
            EXPECT_EQ(sound, first) << target;
        });
    }
}

} // namespace
