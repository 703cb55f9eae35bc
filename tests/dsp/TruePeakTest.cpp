#include "qoc/dsp/dynamics/TruePeak.h"

#include "EveryVectorTarget.h"
#include "MeasureSound.h"

#include <gtest/gtest.h>

#include <algorithm>

using qoc::dsp::TruePeak;

namespace {

std::vector<float> Peaks(const std::vector<float>& sound, const std::vector<std::size_t>& rows) {
    TruePeak meter;
    meter.Reset();
    std::vector<float> peaks;
    for (std::size_t begin = 0, turn = 0; begin < sound.size(); ++turn) {
        const std::size_t count = std::min(sound.size() - begin, rows[turn % rows.size()]);
        TruePeak::Row row;
        meter.Next(std::span(sound).subspan(begin, count), row);
        peaks.insert(peaks.end(), row.begin(), row.begin() + static_cast<std::ptrdiff_t>(count));
        begin += count;
    }
    return peaks;
}

TEST(TruePeak, IsTheSameInRowsOfAnyLengthAndWithVectorsOfEveryKind) {
    const std::vector<float> noise = test::Noise(5000, 4, 2);
    const std::vector<float> expected = Peaks(noise, {64});
    EXPECT_EQ(Peaks(noise, {1, 7, 64, 33, 8, 25}), expected);
    test::WithEveryVectorTarget([&](const std::string& target) {
        const std::vector<float> peaks = Peaks(noise, {64});
        for (std::size_t i = 0; i < peaks.size(); ++i)
            ASSERT_NEAR(peaks[i], expected[i], 1e-5) << target << " " << i;
    });
}

// A tone of a quarter of the rate, whose samples all lie 45 degrees beside its peaks and show 3 dB too little. There is
// a peak between two samples and none between the next two.
TEST(TruePeak, IsThatBetweenTheSamples) {
    std::vector<float> tone(4000);
    for (std::size_t i = 0; i < tone.size(); ++i)
        tone[i] = i % 4 < 2 ? std::sqrt(0.5F) : -std::sqrt(0.5F);
    const std::vector<float> peaks = Peaks(tone, {64});
    for (std::size_t i = 2000; i + 1 < peaks.size(); ++i)
        ASSERT_NEAR(std::max(peaks[i], peaks[i + 1]), 1.0075, 0.0075) << i; // up to 0.13 dB more is said
}

} // namespace
