#include "host/OfflineRenderer.h"

#include "EchoFilter.h"
#include "host/SoundInMemory.h"
#include "host/TestSignal.h"
#include "krocore/config/Error.h"

#include <gtest/gtest.h>

#include <array>

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
    EXPECT_EQ(RenderOffline(*filter, input, {.tailSeconds = 0, .progress = {}})->Frames(), input.Frames());
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

// Takes some frames, then the disk is full.
class FailingWriter final : public SoundWriter {
public:
    void Write(std::span<const float* const> /*channels*/, std::size_t frames) override {
        fLeft -= static_cast<int>(frames);
        if (fLeft < 0) throw krocore::config::Error("full");
    }

private:
    int fLeft = 1000;
};

TEST(OfflineRenderer, AnErrorLeavesTheFilterAsItWas) {
    const Sound sound = MakeTestSignal(0.1);
    for (const bool wasFree : {false, true}) {
        const boost::intrusive_ptr<EchoFilter> filter(new EchoFilter(10));
        filter->SetSuspended(wasFree);
        filter->SetCanChangeNonAutomatableParameters(wasFree);
        SoundInMemoryReader input(sound);
        OfflineRenderer renderer(*filter, input, {.blockFrames = 512, .progress = {}});
        FailingWriter output;
        EXPECT_THROW(renderer.Run(output), krocore::config::Error);
        EXPECT_EQ(filter->IsSuspended(), wasFree);
        EXPECT_EQ(filter->CanChangeNonAutomatableParameters(), wasFree);
    }
}

TEST(OfflineRenderer, APartIsRenderedAsASoundOfItsOwn) {
    const Sound whole = MakeTestSignal(0.1);
    const auto part = [&](std::size_t begin, std::size_t end) {
        Sound copy = Sound::Silent(whole.sampleRate, whole.layout, 0);
        for (std::size_t channel = 0; channel < whole.channels.size(); ++channel)
            copy.channels[channel].assign(whole.channels[channel].begin() + static_cast<std::ptrdiff_t>(begin),
                                          whole.channels[channel].begin() + static_cast<std::ptrdiff_t>(end));
        return copy;
    };
    const std::size_t frames = whole.Frames();
    const std::array<std::size_t, 4> cases[] = {
        {0, 1000, 0, 1000}, {1000, 3000, 1000, 3000}, {4000, 99999, 4000, frames}, {99999, 5, frames, frames}};
    for (const auto& [begin, end, expectedBegin, expectedEnd] : cases) {
        SoundInMemoryReader input(whole, begin, end);
        EXPECT_EQ(input.Frames(), expectedEnd - expectedBegin);
        const boost::intrusive_ptr<EchoFilter> filter(new EchoFilter(10));
        OfflineRenderer renderer(*filter, input);
        Sound result = Sound::Silent(whole.sampleRate, renderer.Layout(), 0);
        SoundInMemoryWriter output(result);
        ASSERT_TRUE(renderer.Run(output));
        EXPECT_EQ(result.Frames(), renderer.Frames());
        EXPECT_TRUE(result.channels == Expected(part(expectedBegin, expectedEnd)).channels) << begin;
    }
}

} // namespace
