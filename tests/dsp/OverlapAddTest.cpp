#include "qoc/dsp/spectrum/OverlapAdd.h"

#include "MeasureSound.h"

#include <gtest/gtest.h>

using namespace qoc::dsp;

namespace {

constexpr std::size_t kFrame = 512;
constexpr std::size_t kFrames = 5000;

// Leaves the spectra alone, but for a gain that is taken over with the frame, and counts its steps.
class Gain : public SpectrumProcessor {
public:
    explicit Gain(std::size_t steps) : fSteps(steps) {}

    std::size_t done = 0;

    void BeginFrame() noexcept override {
        EXPECT_EQ(done % fSteps, 0U);
        fIsLouder = !fIsLouder;
    }
    void ProcessSpectra(std::span<const Spectrum> spectra, std::size_t step) noexcept override {
        EXPECT_EQ(done % fSteps, step);
        ++done;
        for (std::size_t channel = 0; channel < spectra.size(); ++channel) {
            const auto [begin, end] = StepRange::Of(step, fSteps, spectra[channel].size());
            for (std::size_t bin = begin; bin < end; ++bin)
                spectra[channel][bin] *= static_cast<float>(channel + 1) * (isSteady || fIsLouder ? 1.0F : 0.5F);
        }
    }

    bool isSteady = true;

private:
    std::size_t fSteps;
    bool fIsLouder = false;
};

std::vector<float> RootHann() {
    std::vector<float> window(kFrame);
    for (std::size_t i = 0; i < kFrame; ++i)
        window[i] = static_cast<float>(std::sin(std::numbers::pi * static_cast<double>(i) / kFrame));
    return window;
}

struct Run {
    test::Channels sound;
    std::size_t mostSteps = 0; // in a block
};

Run InBlocksOf(std::size_t frames, std::size_t hop, std::size_t steps, bool isSteady = true) {
    OverlapAdd stream;
    stream.Prepare(2, {.transform = kFrame, .frame = kFrame, .hop = hop},
                   std::array{OverlapAdd::Work{.steps = steps, .cost = 40}}, RootHann(), RootHann());
    EXPECT_EQ(stream.Latency(), kFrame + hop);
    Gain gain(steps);
    gain.isSteady = isSteady;
    Run run = {test::NoiseChannels(2, kFrames)};
    for (std::size_t done = 0; done < kFrames; done += frames) {
        float* const outputs[] = {run.sound[0].data() + done, run.sound[1].data() + done};
        const float* const inputs[] = {outputs[0], outputs[1]};
        const std::size_t before = gain.done;
        stream.Process({inputs, outputs, std::min(frames, kFrames - done)}, gain);
        run.mostSteps = std::max(run.mostSteps, gain.done - before);
    }
    return run;
}

// The squares of root Hann windows add up to half as many as there are hops in a frame.
TEST(OverlapAdd, WhatIsNotTouchedComesBackAFrameAndAHopLater) {
    struct {
        std::size_t hop;
        float sum;
    } const cases[] = {{kFrame / 2, 1}, {kFrame / 4, 2}, {kFrame / 8, 4}};
    const test::Channels input = test::NoiseChannels(2, kFrames);
    for (const auto& each : cases) {
        const test::Channels sound = InBlocksOf(100, each.hop, 7).sound;
        const std::size_t latency = kFrame + each.hop;
        for (std::size_t i = 0; i < latency; ++i)
            ASSERT_NEAR(sound[0][i], 0, 1e-6) << i;
        for (std::size_t i = latency; i < kFrames; ++i) {
            ASSERT_NEAR(sound[0][i], each.sum * input[0][i - latency], 1e-5) << i;
            ASSERT_NEAR(sound[1][i], 2 * each.sum * input[1][i - latency], 2e-5) << i;
        }
    }
}

TEST(OverlapAdd, HowTheStepsFallIsNotHeard) {
    const test::Channels whole = InBlocksOf(kFrames, kFrame / 4, 1, false).sound;
    for (const std::size_t frames : {1U, 64U, 100U, 1000U}) {
        for (const std::size_t steps : {1U, 10U, 300U})
            EXPECT_EQ(InBlocksOf(frames, kFrame / 4, steps, false).sound, whole) << frames << " " << steps;
    }
}

// Transforms, windows and sums of two channels cost as much as six transforms, the steps as much as forty: a hop of 256
// is 46 of such, and a block of 16 is 2.9, or 36 of 576 steps.
TEST(OverlapAdd, SpreadsTheStepsEvenlyOverTheBlocksOfAHop) {
    EXPECT_LE(InBlocksOf(16, 256, 576).mostSteps, 43U);
    EXPECT_LE(InBlocksOf(64, 256, 576).mostSteps, 4 * 42U);
    EXPECT_EQ(InBlocksOf(256, 256, 576).mostSteps, 576U);
}

} // namespace
