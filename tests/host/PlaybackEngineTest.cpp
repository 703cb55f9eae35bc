#include "host/PlaybackEngine.h"

#include "EchoFilter.h"
#include "host/TestSignal.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <functional>
#include <thread>

using namespace qohost;
using kromediatypes::AudioChannelLayout;

namespace {

constexpr std::size_t kFade = 221; // 5 ms at 44.1 kHz, rounded up

// A ramp from 0 that tells each sample's position: sample i is (i + 1) / 65536, exactly.
std::shared_ptr<const Sound> Ramp(std::size_t frames) {
    Sound sound = Sound::Silent(44100, AudioChannelLayout::Mono(), frames);
    for (std::size_t i = 0; i < frames; ++i)
        sound.channels[0][i] = static_cast<float>(i + 1) / 65536;
    return std::make_shared<const Sound>(std::move(sound));
}

class PlaybackEngineTest : public testing::Test {
protected:
    void OpenAmplify(std::shared_ptr<const Sound> sound, std::size_t deviceChannels = 1) {
        fFilter = qoc::components::CreateEffect(qoc::components::kAmplifyComponentID);
        fEngine.Open(std::move(sound), fFilter, deviceChannels, 256);
    }
    std::vector<float> Render(std::size_t frames, std::size_t channels = 1) {
        std::vector<float> out(frames * channels, 99.0F);
        fEngine.Render(out.data(), frames, channels);
        return out;
    }
    static float At(std::size_t position) { return static_cast<float>(position + 1) / 65536; }

    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
    PlaybackEngine fEngine;
};

TEST_F(PlaybackEngineTest, WhatIsFixedByPreparingFollowsTheSettingsAtTheNextStart) {
    fFilter = qoc::components::CreateEffect(qoc::components::kFFTFilterComponentID);
    fEngine.Open(Ramp(2000), fFilter, 1, 256);
    const std::size_t opened = fFilter->Latency();
    fFilter->SetParameterValue(qoc::components::kFFTFilterSize, (32768.0F - 32) / 23968);
    EXPECT_EQ(fFilter->Latency(), opened);
    fEngine.Play();
    EXPECT_GT(fFilter->Latency(), opened);
}

TEST_F(PlaybackEngineTest, PlaysToTheEndAndRewinds) {
    OpenAmplify(Ramp(2000));
    EXPECT_EQ(Render(10), std::vector<float>(10, 0.0F));
    fEngine.Play();
    EXPECT_FALSE(fFilter->IsSuspended());
    EXPECT_FALSE(fFilter->CanChangeNonAutomatableParameters());
    const std::vector<float> out = Render(1900);
    EXPECT_LT(out[0], At(0)); // fades in
    EXPECT_EQ(out[1000], At(1000));
    EXPECT_EQ(fEngine.Position(), 1900U);
    const std::vector<float> end = Render(1000);
    EXPECT_EQ(end[150], 0.0F);
    EXPECT_FALSE(fEngine.IsPlaying());
    EXPECT_EQ(fEngine.Position(), 0U);
    fEngine.Poll();
    EXPECT_TRUE(fFilter->IsSuspended());
    EXPECT_TRUE(fFilter->CanChangeNonAutomatableParameters());
}

TEST_F(PlaybackEngineTest, StopFadesAndPlayGoesOnThere) {
    OpenAmplify(Ramp(20000));
    fEngine.Play();
    Render(5000);
    fEngine.Stop();
    EXPECT_TRUE(fEngine.IsPlaying());
    const std::vector<float> out = Render(1000);
    for (std::size_t i = 1; i < kFade; ++i)
        ASSERT_LE(std::abs(out[i] - out[i - 1]), 2.0F * At(5300) / kFade) << i;
    EXPECT_EQ(out[kFade + 1], 0.0F);
    EXPECT_FALSE(fEngine.IsPlaying());
    const std::size_t stopped = fEngine.Position();
    EXPECT_NEAR(static_cast<double>(stopped), 5000 + kFade, 256);
    fEngine.Play();
    EXPECT_EQ(Render(512)[400], At(stopped + 400));
}

TEST_F(PlaybackEngineTest, SeekWhilePlayingAndWhileStopped) {
    OpenAmplify(Ramp(20000));
    fEngine.Seek(300);
    EXPECT_EQ(fEngine.Position(), 300U);
    fEngine.Play();
    EXPECT_EQ(Render(512)[400], At(700));
    fEngine.Seek(10000);
    Render(256); // fades out and jumps
    EXPECT_EQ(fEngine.Position(), 10000U);
    EXPECT_EQ(Render(512)[400], At(10400));
    fEngine.Close();
    EXPECT_EQ(fEngine.Position(), 0U);
    fEngine.Seek(5); // nothing is loaded
    fEngine.Play();
    EXPECT_FALSE(fEngine.IsPlaying());
}

// Loud up to `quietFrom`, then exactly silent.
std::shared_ptr<const Sound> LoudThenSilent(std::size_t quietFrom, std::size_t frames) {
    Sound sound = Sound::Silent(44100, AudioChannelLayout::Mono(), frames);
    std::fill_n(sound.channels[0].begin(), quietFrom, 0.5F);
    return std::make_shared<const Sound>(std::move(sound));
}

TEST_F(PlaybackEngineTest, NothingOfTheFormerPlaceIsHeardAfterASeek) {
    for (const bool bypass : {false, true}) {
        for (const bool stops : {false, true}) {
            SCOPED_TRACE(testing::Message() << bypass << stops);
            fFilter = new EchoFilter(1000);
            fEngine.Open(LoudThenSilent(10000, 20000), fFilter, 1, 256);
            fEngine.SetBypass(bypass);
            fEngine.Play();
            EXPECT_NE(Render(5000).back(), 0.0F);
            fEngine.Seek(15000);
            if (stops) fEngine.Stop();
            EXPECT_EQ(Render(256)[kFade + 1], 0.0F);
            EXPECT_EQ(fEngine.Position(), 15000U);
            EXPECT_EQ(fEngine.IsPlaying(), !stops);
            fEngine.Play();
            EXPECT_EQ(Render(3000), std::vector<float>(3000, 0.0F));
            fEngine.SetBypass(!bypass);
            EXPECT_EQ(Render(500), std::vector<float>(500, 0.0F));
            EXPECT_EQ(fEngine.Position(), 15000U + 3500 - 1000);
        }
    }
}

TEST_F(PlaybackEngineTest, AfterBypassTheEffectIsThereAsIfItHadBeenHeardAllTheTime) {
    const auto play = [this](bool bypass) {
        fFilter = new EchoFilter(100);
        fEngine.Open(Ramp(20000), fFilter, 1, 256);
        fEngine.SetBypass(bypass);
        fEngine.Play();
        Render(2048);
        fEngine.SetBypass(false);
        Render(512); // fades over
        return Render(1000);
    };
    const std::vector<float> always = play(false);
    EXPECT_EQ(play(true), always);
}

TEST_F(PlaybackEngineTest, WhatStartsBypassedIsNeverHeardWithTheEffect) {
    OpenAmplify(LoudThenSilent(20000, 20000));
    fFilter->SetParameterValue(2, 1); // +48 dB
    fEngine.SetBypass(true);
    for (int start = 0; start < 2; ++start) {
        fEngine.Play();
        for (const float sample : Render(1000))
            ASSERT_LE(sample, 0.5F) << start;
        fEngine.StopAtOnce();
    }
}

TEST_F(PlaybackEngineTest, HoweverPlayingEndsTheFilterIsFreeAgainAndMetersAreEmpty) {
    const auto isFree = [this] { return fFilter->IsSuspended() && fFilter->CanChangeNonAutomatableParameters(); };
    const std::pair<const char*, std::function<void()>> ends[] = {
        {"stop",
         [this] {
             fEngine.Stop();
             Render(512);
             fEngine.Poll();
         }},
        {"at once", [this] { fEngine.StopAtOnce(); }},
        {"close", [this] { fEngine.Close(); }},
        {"open", [this] { fEngine.Open(Ramp(100), new EchoFilter(0), 1, 256); }},
    };
    for (const auto& [name, end] : ends) {
        OpenAmplify(Ramp(20000));
        fEngine.Play();
        Render(1000);
        EXPECT_FALSE(isFree()) << name;
        end();
        EXPECT_TRUE(isFree()) << name;
        EXPECT_EQ(Render(256), std::vector<float>(256, 0.0F)) << name;
        fEngine.Close();
        EXPECT_EQ(fEngine.TakeInputPeak(0), 0.0F) << name;
        EXPECT_EQ(fEngine.TakeOutputPeak(0), 0.0F) << name;
    }
}

TEST_F(PlaybackEngineTest, SeeksWhilePlayingEndAtTheLatestPlaceAndNeverBehindTheSound) {
    OpenAmplify(Ramp(20000));
    fEngine.Play();
    Render(256);
    fEngine.Seek(9000);
    Render(100); // not faded out yet
    fEngine.Seek(99999);
    fEngine.Seek(12000);
    Render(256);
    EXPECT_EQ(fEngine.Position(), 12000U);
    fEngine.Seek(99999);
    Render(256);
    EXPECT_EQ(fEngine.Position(), 20000U);
    fEngine.StopAtOnce();
    fEngine.Seek(99999);
    EXPECT_EQ(fEngine.Position(), 20000U);
    fEngine.Play(); // from the end: from the start
    EXPECT_EQ(Render(512)[400], At(400));
    fEngine.Seek(7000); // is still to come
    fEngine.StopAtOnce();
    fEngine.Poll();
    EXPECT_EQ(fEngine.Position(), 7000U);
}

TEST_F(PlaybackEngineTest, LoopsWithoutGapAtAnyPlace) {
    OpenAmplify(Ramp(20000));
    for (const std::size_t end : {1000, 1024, 20000, 30000}) { // inside a block, at a block's end, the whole sound
        fEngine.SetRange({500, end});
        fEngine.SetLoop(true);
        fEngine.Seek(0);
        fEngine.Play();
        const std::vector<float> out = Render(45000);
        const std::size_t last = std::min<std::size_t>(end, 20000);
        for (std::size_t i = 300, position = 300; i < out.size(); ++i, ++position) {
            if (position == last) position = 500;
            ASSERT_EQ(out[i], At(position)) << end << " " << i;
        }
        fEngine.Stop();
        Render(512);
        ASSERT_FALSE(fEngine.IsPlaying());
    }
}

TEST_F(PlaybackEngineTest, BypassIsInTimeWithTheEffectAndDoesNotClick) {
    fFilter = new EchoFilter(100);
    fEngine.Open(Ramp(20000), fFilter, 1, 256);
    fEngine.Play();
    const std::vector<float> wet = Render(1000);
    EXPECT_EQ(wet[900], At(800) + 0.5F * At(750)); // latency, echo
    EXPECT_EQ(fEngine.Position(), 900U);
    fEngine.SetBypass(true);
    const std::vector<float> dry = Render(1000);
    EXPECT_EQ(dry[900], At(1800));
    float before = wet.back();
    for (const float sample : dry) {
        ASSERT_LE(std::abs(sample - before), 0.5F * At(1100) / kFade + 4.0F / 65536);
        before = sample;
    }
}

TEST_F(PlaybackEngineTest, TailSoundsAfterTheEnd) {
    fFilter = new EchoFilter(100);
    fEngine.Open(Ramp(1000), fFilter, 1, 256);
    fEngine.Play();
    const std::vector<float> out = Render(2000);
    EXPECT_EQ(out[1149], 0.5F * At(999));
    EXPECT_EQ(out[1150], 0.0F);
    EXPECT_FALSE(fEngine.IsPlaying());
}

TEST_F(PlaybackEngineTest, RangeIsPlayedLikeASoundOfItsOwn) {
    fFilter = new EchoFilter(100);
    fEngine.Open(Ramp(20000), fFilter, 1, 256);
    fEngine.SetRange({5000, 6000});
    fEngine.Seek(5000);
    fEngine.Play();
    std::vector<float> out = Render(2000);
    EXPECT_EQ(out[1099], At(5999) + 0.5F * At(5949)); // its last sample, late by the latency
    EXPECT_EQ(out[1149], 0.5F * At(5999));            // the echo of it
    EXPECT_EQ(out[1150], 0.0F);
    EXPECT_FALSE(fEngine.IsPlaying());
    EXPECT_EQ(fEngine.Position(), 5000U);

    // While it sounds on, the range grows: it goes on, and the time that is shown with it.
    fEngine.Play();
    Render(1120);
    fEngine.SetRange({5000, 8000});
    out = Render(1000);
    EXPECT_EQ(out[999], At(6000 + 1000 - 101) + 0.5F * At(6000 + 1000 - 151));
    EXPECT_EQ(fEngine.Position(), 6900U);

    // Behind the range, to the end of the sound.
    fEngine.Seek(19000);
    Render(2000);
    EXPECT_FALSE(fEngine.IsPlaying());
}

TEST_F(PlaybackEngineTest, BadSamplesDoNotReachTheDevice) {
    Sound sound = Sound::Silent(44100, AudioChannelLayout::Mono(), 2000);
    sound.channels[0][500] = std::nanf("");
    sound.channels[0][600] = INFINITY;
    OpenAmplify(std::make_shared<const Sound>(std::move(sound)));
    fEngine.Play();
    EXPECT_EQ(Render(1500), std::vector<float>(1500, 0.0F));
}

TEST_F(PlaybackEngineTest, MetersHoldThePeakUntilTheyAreRead) {
    OpenAmplify(Ramp(20000));
    fFilter->SetParameterValue(2, (6.0F + 96) / 144);
    fEngine.Play();
    Render(10000);
    EXPECT_EQ(fEngine.TakeInputPeak(0), At(9999));
    EXPECT_NEAR(fEngine.TakeOutputPeak(0), At(9999) * std::pow(10.0, 0.3), 1e-5);
    EXPECT_EQ(fEngine.TakeInputPeak(0), 0.0F);
    EXPECT_EQ(fEngine.TakeInputPeak(99), 0.0F);
}

TEST_F(PlaybackEngineTest, ChannelsFindTheirOutputs) {
    struct Case {
        std::size_t channels;
        std::size_t device;
        std::vector<float> outputs; // of channels that hold 0.1, 0.2, 0.3 ...
    };
    const float both = 0.70710678F;
    const Case cases[] = {
        {1, 2, {0.1F, 0.1F}},        {2, 1, {0.15F}},
        {2, 4, {0.1F, 0.2F, 0, 0}},  {6, 2, {0.1F + both * 0.3F + 0.5F, 0.2F + both * 0.3F + 0.6F}}, // L R C LFE Ls Rs
        {3, 2, {0.1F + 0.3F, 0.2F}},
    };
    for (const Case& c : cases) {
        Sound sound = Sound::Silent(44100, AudioChannelLayout::ForChannelCount(c.channels), 1000);
        for (std::size_t channel = 0; channel < c.channels; ++channel)
            sound.channels[channel].assign(1000, 0.1F * static_cast<float>(channel + 1));
        OpenAmplify(std::make_shared<const Sound>(std::move(sound)), c.device);
        fEngine.Play();
        const std::vector<float> out = Render(500, c.device);
        for (std::size_t output = 0; output < c.device; ++output)
            EXPECT_NEAR(out[400 * c.device + output], c.outputs[output], 1e-6) << c.channels << " to " << c.device;
    }
}

TEST_F(PlaybackEngineTest, LoadingWhileTheDeviceRunsIsSafe) {
    std::atomic<bool> done{false};
    std::thread device([&] {
        std::vector<float> out(512);
        while (!done.load())
            fEngine.Render(out.data(), 256, 2);
    });
    const auto sound = std::make_shared<const Sound>(MakeTestSignal(0.05));
    for (int i = 0; i < 200; ++i) {
        OpenAmplify(sound, 2);
        fEngine.SetRange({10, 700});
        fEngine.SetLoop(i % 2 == 0);
        fEngine.Play();
        fEngine.Seek(static_cast<std::size_t>(i * 7));
        fEngine.SetBypass(i % 3 == 0);
        fEngine.Stop();
        fEngine.Poll();
    }
    fEngine.Close();
    EXPECT_EQ(fFilter->ReferenceCount(), 1);
    done.store(true);
    device.join();
}

} // namespace
