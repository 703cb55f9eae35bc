#include "host/OfflineRenderer.h"

#include "EchoFilter.h"
#include "host/TestSignal.h"

#include <gtest/gtest.h>

using namespace qohost;

namespace {

// By the definition of EchoFilter, its latency taken out.
Sound Expected(const Sound& input) {
    Sound expected = Sound::Silent(input.sampleRate, input.layout, input.Frames() + EchoFilter::kEcho);
    for (std::size_t channel = 0; channel < input.channels.size(); ++channel) {
        for (std::size_t i = 0; i < expected.Frames(); ++i) {
            const float direct = i < input.Frames() ? input.channels[channel][i] : 0;
            const float echo = i >= EchoFilter::kEcho ? input.channels[channel][i - EchoFilter::kEcho] : 0;
            expected.channels[channel][i] = direct + 0.5F * echo;
        }
    }
    return expected;
}

TEST(OfflineRenderer, TakesLatencyOutAndKeepsTheTail) {
    const Sound input = MakeTestSignal(0.02);
    for (const std::size_t latency : {0, 7, 64, 1000}) {
        for (const std::size_t block : {1, 64, 4096}) {
            const boost::intrusive_ptr<EchoFilter> filter(new EchoFilter(latency));
            const auto output = RenderOffline(*filter, input, {.blockFrames = block, .progress = {}});
            ASSERT_TRUE(output);
            EXPECT_TRUE(output->channels == Expected(input).channels) << latency << " " << block;
        }
    }
}

TEST(OfflineRenderer, WithoutTailTheLengthIsKept) {
    const Sound input = MakeTestSignal(0.02);
    const boost::intrusive_ptr<EchoFilter> filter(new EchoFilter(10));
    EXPECT_EQ(RenderOffline(*filter, input, {.keepTail = false, .progress = {}})->Frames(), input.Frames());
    EXPECT_EQ(RenderOffline(*filter, Sound::Silent(44100, input.layout, 0))->Frames(), EchoFilter::kEcho);
}

TEST(OfflineRenderer, ReportsProgressAndCancels) {
    const Sound input = MakeTestSignal(0.1); // 4410 frames, 4460 with the tail
    const boost::intrusive_ptr<EchoFilter> filter(new EchoFilter(0));
    std::vector<double> progress;
    const auto note = [&](double done) {
        progress.push_back(done);
        EXPECT_FALSE(filter->IsSuspended());
        return done < 0.4;
    };
    EXPECT_FALSE(RenderOffline(*filter, input, {.blockFrames = 1115, .progress = note}));
    EXPECT_EQ(progress, (std::vector<double>{0.25, 0.5}));
    EXPECT_TRUE(filter->IsSuspended());
}

} // namespace
