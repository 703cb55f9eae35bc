#include "qoc/dsp/stream/PacedSteps.h"

#include <gtest/gtest.h>

using namespace qoc::dsp;

namespace {

// By hand: ten cheap steps take the first half of the hop, two dear ones a quarter each.
TEST(PacedSteps, FallDueAsTheirCostsAddUp) {
    PacedSteps pace;
    pace.Add(10, 10);
    pace.Add(2, 10);
    pace.SpreadOver(400);
    std::vector<std::size_t> done;
    const auto note = [&](std::size_t step) { done.push_back(step); };
    struct {
        std::size_t position;
        std::size_t steps;
    } const cases[] = {{0, 0}, {1, 1}, {20, 1}, {21, 2}, {200, 10}, {201, 11}, {300, 11}, {301, 12}, {400, 12}};
    for (const auto& each : cases) {
        pace.RunUntil(each.position, note);
        EXPECT_EQ(done.size(), each.steps) << each.position;
        EXPECT_EQ(pace.IsDone(), each.steps == 12) << each.position;
    }
    for (std::size_t step = 0; step < done.size(); ++step)
        EXPECT_EQ(done[step], step);
    pace.Restart();
    pace.RunUntil(400, note);
    EXPECT_EQ(done.size(), 24U);
}

TEST(PacedSteps, MoreStepsThanSamplesAreAllDoneByTheEnd) {
    PacedSteps pace;
    pace.Add(100, 3);
    pace.SpreadOver(7);
    std::size_t most = 0;
    std::size_t done = 0;
    for (std::size_t position = 1; position <= 7; ++position) {
        const std::size_t before = done;
        pace.RunUntil(position, [&](std::size_t) { ++done; });
        most = std::max(most, done - before);
    }
    EXPECT_EQ(done, 100U);
    EXPECT_LE(most, 15U); // a seventh, rounded up
}

} // namespace
