#include "qoc/dsp/delay/TapRow.h"

#include "MeasureSound.h"

#include <gtest/gtest.h>

#include <random>

using qoc::dsp::DelayLine;
using qoc::dsp::TapRow;
using qoc::dsp::TapWeights;

namespace {

// Delays that glide, jump and stand still, through the end of the ring and over it, of rows of every length, those of
// samples that are yet to be written too.
TEST(TapRow, ReadsWhatOnePlaceAfterTheOtherReads) {
    constexpr std::size_t kLongest = 150;
    std::mt19937 random(5);
    const auto among = [&](double lo, double hi) { return std::uniform_real_distribution(lo, hi)(random); };
    const std::vector<float> sound = test::Noise(20000, 3);
    DelayLine line;
    line.Prepare(kLongest + TapRow::kMost);
    TapRow row;
    for (std::size_t now = 0; now + TapRow::kMost < sound.size();) {
        const auto count = static_cast<std::size_t>(among(1, TapRow::kMost + 0.99));
        const bool isWritten = among(0, 1) < 0.5;
        const bool isFine = among(0, 1) < 0.5;
        const double shortest = TapWeights::kAhead + (isWritten ? 0 : static_cast<double>(count));
        std::vector<double> delays(count, among(shortest + 20, kLongest - 30));
        const double glide = among(-0.3, 0.3);
        for (std::size_t i = 1; i < count; ++i)
            delays[i] = among(0, 1) < 0.05 ? among(shortest, kLongest - 4) : std::max(shortest, delays[i - 1] + glide);
        row.Set(delays, isFine);
        std::vector<float> read(count);
        std::vector<float> expected(count);
        if (isWritten) line.Write(std::span(sound).subspan(now, count));
        const auto age = isWritten ? static_cast<std::ptrdiff_t>(count) - 1 : -1;
        row.Read(line, age, read.data());
        for (std::size_t i = 0; i < count; ++i) {
            const double before = delays[i] + static_cast<double>(age) - static_cast<double>(i);
            const auto weights = isFine ? TapWeights(before) : TapWeights::Linear(before);
            expected[i] = line.At(weights);
            ASSERT_NEAR(read[i], expected[i], 2e-5) << now << " " << i << " " << delays[i];
        }
        if (!isWritten) line.Write(std::span(sound).subspan(now, count));
        now += count;
    }
}

} // namespace
