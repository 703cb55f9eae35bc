#include "qoc/dsp/spectrum/OverlapAdd.h"

#include "MeasureSound.h"

#include <gtest/gtest.h>

using namespace qoc::dsp;

namespace {

constexpr std::size_t kFrame = 512;

// Leaves the spectra alone, but for a gain.
class Gain : public SpectrumProcessor {
public:
    void ProcessSpectra(std::span<const Spectrum> spectra) noexcept override {
        for (std::size_t channel = 0; channel < spectra.size(); ++channel) {
            for (std::complex<float>& bin : spectra[channel])
                bin *= static_cast<float>(channel + 1);
        }
    }
};

std::vector<float> RootHann() {
    std::vector<float> window(kFrame);
    for (std::size_t i = 0; i < kFrame; ++i)
        window[i] = static_cast<float>(std::sin(std::numbers::pi * static_cast<double>(i) / kFrame));
    return window;
}

// The squares of root Hann windows add up to half as many as there are hops in a frame.
TEST(OverlapAdd, WhatIsNotTouchedComesBackAFrameLater) {
    struct {
        std::size_t hop;
        float sum;
    } const cases[] = {{kFrame / 2, 1}, {kFrame / 4, 2}, {kFrame / 8, 4}};
    for (const auto& each : cases) {
        OverlapAdd stream;
        stream.Prepare(2, {.transform = kFrame, .frame = kFrame, .hop = each.hop}, RootHann(), RootHann());
        EXPECT_EQ(stream.Latency(), kFrame);
        Gain gain;
        test::Channels sound = test::NoiseChannels(2, 5000);
        const test::Channels input = sound;
        for (std::size_t done = 0; done < 5000; done += 100) {
            float* const outputs[] = {sound[0].data() + done, sound[1].data() + done};
            const float* const inputs[] = {outputs[0], outputs[1]};
            stream.Process({inputs, outputs, 100}, gain);
        }
        for (std::size_t i = 0; i < kFrame; ++i)
            ASSERT_NEAR(sound[0][i], 0, 1e-6) << i;
        for (std::size_t i = kFrame; i < 5000; ++i) {
            ASSERT_NEAR(sound[0][i], each.sum * input[0][i - kFrame], 1e-5) << i;
            ASSERT_NEAR(sound[1][i], 2 * each.sum * input[1][i - kFrame], 2e-5) << i;
        }
    }
}

} // namespace
