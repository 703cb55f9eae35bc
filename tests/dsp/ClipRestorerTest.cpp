#include "qoc/dsp/restoration/ClipRestorer.h"

#include "MeasureSound.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace qoc::dsp;

namespace {

constexpr ClipRestorer::Layout kLayout = {.frame = 2048, .first = 512, .largestOrder = 72, .rounds = 20};
constexpr float kLevel = 0.5F;

// Tones, or noise, whose peaks are cut off at the level.
std::vector<float> Clipped(bool isNoise) {
    std::vector<float> sound = test::Noise(kLayout.frame, 3);
    for (std::size_t i = 0; i < sound.size(); ++i) {
        const auto time = static_cast<float>(i);
        if (!isNoise) sound[i] = 0.5F * std::sin(0.031F * time) + 0.3F * std::sin(0.097F * time);
        sound[i] = std::clamp(sound[i], -kLevel, kLevel);
    }
    return sound;
}

// What is to be spread evenly has to come in small pieces, and what it takes to be known beforehand: at most that at
// first, and rather well once it has seen such sound, unless the prediction is given up, as for noise.
TEST(ClipRestorer, WorksInSmallPiecesOfWhichItKnowsHowManyThereAre) {
    for (const bool isNoise : {false, true}) {
        const std::vector<float> original = Clipped(isNoise);
        std::vector<float> repaired;
        ClipDetector detector;
        detector.Prepare(kLayout.frame);
        ClipDetector::Levels levels;
        const auto runs = detector.Find(original, {.level = kLevel}, levels);
        ClipRestorer restorer;
        restorer.Prepare(kLayout);
        double expected = 0;
        double cost = 0;
        for (int frame = 0; frame < 4; ++frame) {
            repaired = original;
            restorer.Begin(original, repaired, runs, {});
            expected = restorer.CostLeft();
            cost = 0;
            double dearest = 0;
            while (!restorer.IsDone()) {
                const double piece = restorer.Work();
                cost += piece;
                dearest = std::max(dearest, piece);
            }
            EXPECT_EQ(restorer.CostLeft(), 0);
            EXPECT_LT(dearest, 0.05 * cost) << isNoise;
            EXPECT_LE(cost, 1.1 * expected) << isNoise;
        }
        EXPECT_EQ(restorer.CostOf(runs, {}), (restorer.Begin(original, repaired, runs, {}), restorer.CostLeft()));
        EXPECT_GE(cost, (isNoise ? 0.1 : 0.6) * expected) << isNoise;
        for (const ClipDetector::Run& run : runs) {
            const std::size_t middle = (run.begin + run.end) / 2;
            if (run.begin < kLayout.first || isNoise) continue;
            EXPECT_GT(std::abs(repaired[middle]), kLevel) << middle;
        }
    }
}

// What it was about to restore is forgotten.
TEST(ClipRestorer, WritesNothingOnceItIsStopped) {
    const std::vector<float> original = Clipped(false);
    std::vector<float> repaired = original;
    ClipDetector detector;
    detector.Prepare(kLayout.frame);
    ClipDetector::Levels levels;
    const auto runs = detector.Find(original, {.level = kLevel}, levels);
    ClipRestorer restorer;
    restorer.Prepare(kLayout);
    restorer.Begin(original, repaired, runs, {});
    for (int piece = 0; piece < 30; ++piece)
        restorer.Work();
    restorer.Stop();
    EXPECT_TRUE(restorer.IsDone());
    EXPECT_EQ(restorer.Work(), 0);
    EXPECT_EQ(restorer.CostLeft(), 0);
    EXPECT_EQ(repaired, original);
}

} // namespace
