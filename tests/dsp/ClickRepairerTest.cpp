#include "qoc/dsp/restoration/ClickRepairer.h"

#include "MeasureSound.h"

#include <gtest/gtest.h>

using namespace qoc::dsp;

namespace {

constexpr RepairStream::Layout kLayout = {.before = 1024, .hop = 1024, .after = 1024};
constexpr double kRate = 48000;

// A tone with a little noise, and clicks of three samples.
std::vector<float> Crackling(const std::vector<std::size_t>& clicks) {
    std::vector<float> sound = test::Noise(kLayout.Frame(), 3);
    for (std::size_t i = 0; i < sound.size(); ++i)
        sound[i] = 0.001F * sound[i] + 0.3F * std::sin(0.05F * static_cast<float>(i));
    for (const std::size_t click : clicks) {
        for (std::size_t i = click; i < click + 3; ++i)
            sound[i] += click % 2 == 0 ? 0.5F : -0.4F;
    }
    return sound;
}

struct Work {
    double cost = 0;
    double dearest = 0; // piece
    double expectedOfLooking = 0;
    double looked = 0;
    std::size_t repairs = 0;
};

Work Repaired(const std::vector<std::size_t>& clicks) {
    ClickRepairer::Filler filler;
    filler.Prepare(kLayout.Frame(), 2 * kLayout.hop, 64);
    ClickRepairer repairer;
    repairer.Prepare(kLayout, kRate, 64, filler);
    std::vector<float> sound = Crackling(clicks);
    repairer.Begin(sound, {.order = 24, .detection = {.threshold = 6, .longest = 62}});
    Work run;
    run.expectedOfLooking = repairer.CostOfLooking();
    while (!repairer.IsDone()) {
        const bool isLooking = repairer.IsLooking();
        const double cost = repairer.Work();
        run.cost += cost;
        run.dearest = std::max(run.dearest, cost);
        if (isLooking) run.looked += cost;
    }
    EXPECT_EQ(repairer.CostLeft(), 0);
    run.repairs = repairer.Repairs();
    return run;
}

// What is to be spread evenly has to come in small pieces, and what it takes to be known beforehand.
TEST(ClickRepairer, WorksInSmallPiecesOfWhichItKnowsHowManyThereAre) {
    const std::vector<std::size_t> cases[] = {{}, {1500}, {1101, 1204, 1379, 1633, 1710, 1928}};
    for (const auto& clicks : cases) {
        const Work work = Repaired(clicks);
        EXPECT_LT(work.dearest, 0.1 * work.cost) << clicks.size();
        EXPECT_NEAR(work.looked, work.expectedOfLooking, 0.02 * work.looked) << clicks.size();
        EXPECT_EQ(work.repairs, clicks.size());
    }
}

} // namespace
