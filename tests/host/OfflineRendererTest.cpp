#include "host/OfflineRenderer.h"

#include "EchoFilter.h"
#include "host/SoundInMemory.h"
#include "host/SoundPart.h"
#include "host/TestSignal.h"
#include "krocore/config/Error.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

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

// Brings the loudest sample of the whole sound to 1.
class Normalizer final : public kroaudiofilterhost::AudioFilter {
public:
    Normalizer() : AudioFilter(1) {}
    krocore::string16 GetComponentID() const override { return u"test.Normalizer"; }
    bool WantsToListen() const noexcept override { return true; }

    std::vector<double> positions;
    int automationsServed = 0;
    std::size_t framesHeard = 0;
    kroaudiofilterhost::AudioFilterQuality preparedFor = kroaudiofilterhost::AudioFilterQuality::kLive;

protected:
    void OnPrepare(std::size_t /*maximumBlock*/) override { preparedFor = GetQuality(); }
    void OnParametersChanged(ParameterIndices /*changed*/) override { ++automationsServed; }
    void OnListen(std::span<const float* const> inputs, std::size_t frames) override {
        framesHeard += frames;
        for (const float* const input : inputs)
            for (std::size_t i = 0; i < frames; ++i)
                fPeak = std::max(fPeak, std::abs(input[i]));
    }
    void OnProcess(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override {
        positions.push_back(GetTransport().position);
        Automate(0, static_cast<float>(positions.size()));
        for (std::size_t channel = 0; channel < block.outputs.size(); ++channel)
            for (std::size_t i = 0; i < block.frames; ++i)
                block.outputs[channel][i] = block.inputs[channel][i] / fPeak;
    }

private:
    float fPeak = 0;
};

TEST(OfflineRenderer, BringsTheSoundTwiceToAnEffectThatListensFirst) {
    const Sound input = MakeTestSignal(0.1); // 4410 frames
    SoundInMemoryReader whole(input);
    SoundPartReader part(whole, 1000, 4000);
    const boost::intrusive_ptr<Normalizer> filter(new Normalizer);
    std::vector<double> progress;
    OfflineRenderer renderer(*filter, part, {.blockFrames = 1500, .progress = [&](double done) {
                                                 progress.push_back(done);
                                                 return true;
                                             }});
    EXPECT_EQ(filter->preparedFor, kroaudiofilterhost::AudioFilterQuality::kRender);
    EXPECT_EQ(filter->GetQuality(), kroaudiofilterhost::AudioFilterQuality::kLive);
    Sound output = Sound::Silent(input.sampleRate, input.layout, 0);
    SoundInMemoryWriter writer(output);
    ASSERT_TRUE(renderer.Run(writer));
    ASSERT_EQ(output.Frames(), 3000U);
    float peak = 0;
    float expected = 0;
    for (std::size_t channel = 0; channel < input.channels.size(); ++channel) {
        for (std::size_t i = 0; i < 3000; ++i) {
            peak = std::max(peak, std::abs(output.channels[channel][i]));
            expected = std::max(expected, std::abs(input.channels[channel][1000 + i]));
        }
    }
    EXPECT_EQ(peak, 1);
    EXPECT_EQ(output.channels[0][7], input.channels[0][1007] / expected);
    EXPECT_EQ(filter->positions, (std::vector<double>{0, 1500}));
    EXPECT_EQ(filter->automationsServed, 1) << "before the second block";
    ASSERT_EQ(progress.size(), 4U);
    const double expectedProgress[] = {0.1, 0.2, 0.6, 1};
    for (std::size_t i = 0; i < progress.size(); ++i)
        EXPECT_DOUBLE_EQ(progress[i], expectedProgress[i]);
}

TEST(OfflineRenderer, AsWhilePlayingNothingIsHeardFirst) {
    const Sound input = MakeTestSignal(0.1);
    SoundInMemoryReader reader(input);
    const boost::intrusive_ptr<Normalizer> filter(new Normalizer);
    OfflineRenderer renderer(*filter, reader,
                             {.quality = kroaudiofilterhost::AudioFilterQuality::kLive, .progress = {}});
    EXPECT_EQ(filter->preparedFor, kroaudiofilterhost::AudioFilterQuality::kLive);
    Sound output = Sound::Silent(input.sampleRate, input.layout, 0);
    SoundInMemoryWriter writer(output);
    ASSERT_TRUE(renderer.Run(writer));
    EXPECT_EQ(filter->framesHeard, 0U);
}

TEST(OfflineRenderer, BringsThePeakOfAllThatComesOutToALevel) {
    Sound input = MakeTestSignal(0.5);
    const auto run = [&](double decibels) {
        const boost::intrusive_ptr<EchoFilter> filter(new EchoFilter(100));
        SoundInMemoryReader reader(input);
        OfflineRenderer renderer(*filter, reader);
        Sound output = Sound::Silent(input.sampleRate, renderer.Layout(), 0);
        SoundInMemoryWriter writer(output);
        EXPECT_TRUE(RunWithPeakAt(decibels, renderer, writer));
        return output;
    };
    const Sound plain = Expected(input);
    const Sound normal = run(-6.0206);
    ASSERT_EQ(normal.Frames(), plain.Frames());
    float loudest = 0;
    float before = 0;
    for (std::size_t channel = 0; channel < 2; ++channel)
        for (std::size_t i = 0; i < plain.Frames(); ++i) {
            loudest = std::max(loudest, std::abs(normal.channels[channel][i]));
            before = std::max(before, std::abs(plain.channels[channel][i]));
        }
    EXPECT_NEAR(loudest, 0.5, 1e-6);
    EXPECT_NEAR(normal.channels[1][5000], plain.channels[1][5000] * 0.5 / before, 1e-6);
    for (auto& channel : input.channels)
        std::ranges::fill(channel, 0.0F);
    EXPECT_EQ(run(0).channels[0], std::vector<float>(plain.Frames())) << "silence";
    input.channels[0][10] = std::numeric_limits<float>::infinity();
    input.channels[0][200] = 0.25F;
    EXPECT_EQ(run(0).channels[0][200], 0.25F) << "nothing is made of what has no number";
}

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
