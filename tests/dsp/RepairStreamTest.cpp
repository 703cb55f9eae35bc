#include "qoc/dsp/restoration/RepairStream.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace qoc::dsp;

namespace {

constexpr std::size_t kSteps = 14;
constexpr RepairStream::Layout kLayout = {.before = 100, .hop = 200, .after = 100};

// Doubles the hop in the last step, and counts the steps.
class Doubler : public FrameRepairer {
public:
    std::size_t steps = 0;

    void Begin(std::span<const Frame> frames) noexcept override { fFrames = frames; }
    void Step(std::size_t step) noexcept override {
        ++steps;
        if (step + 1 < kSteps) return;
        for (const auto& [original, repaired] : fFrames) {
            for (std::size_t i = kLayout.before; i < kLayout.before + kLayout.hop; ++i)
                repaired[i] = 2 * original[i];
        }
    }

private:
    std::span<const Frame> fFrames;
};

struct Run {
    std::vector<float> output;
    std::size_t mostSteps = 0; // in a block
};

Run InBlocksOf(std::size_t frames) {
    RepairStream stream;
    stream.Prepare(2, kLayout, std::vector<double>(kSteps, 1));
    Doubler doubler;
    Run run;
    for (std::size_t at = 0; at < 3000; at += frames) {
        std::vector<float> sound(frames);
        for (std::size_t i = 0; i < frames; ++i)
            sound[i] = static_cast<float>(at + i + 1);
        std::vector<float> other = sound;
        const float* const inputs[] = {sound.data(), other.data()};
        float* const outputs[] = {sound.data(), other.data()};
        const std::size_t before = doubler.steps;
        stream.Process({inputs, outputs, frames}, doubler);
        run.mostSteps = std::max(run.mostSteps, doubler.steps - before);
        EXPECT_EQ(sound, other);
        run.output.insert(run.output.end(), sound.begin(), sound.end());
    }
    EXPECT_EQ(stream.Latency(), 500U);
    return run;
}

// 14 in 200 samples make 1.4 in 20.
TEST(RepairStream, SpreadsAFramesStepsOverTheBlocksOfAHop) {
    EXPECT_EQ(InBlocksOf(20).mostSteps, 2U);
    EXPECT_EQ(InBlocksOf(100).mostSteps, 7U);
}

TEST(RepairStream, EverySampleIsRepairedOnceAndAsLateAsTold) {
    for (const std::size_t frames : {1U, 20U, 600U, 3000U}) {
        const auto output = InBlocksOf(frames).output;
        for (std::size_t i = 500; i < 3000; ++i)
            ASSERT_EQ(output[i], 2 * static_cast<float>(i - 499)) << i << " in blocks of " << frames;
    }
}

} // namespace
