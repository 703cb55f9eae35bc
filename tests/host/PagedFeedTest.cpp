#include "host/PagedFeed.h"

#include "AllocationCounter.h"
#include "EchoFilter.h"
#include "host/PlaybackEngine.h"
#include "host/SoundInMemory.h"
#include "krocore/config/Error.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <thread>

using namespace qohost;
using kromediatypes::AudioChannelLayout;

namespace {

// Sample i of channel c is (i + 1 + c / 4) / 65536, exactly.
float At(std::size_t frame, std::size_t channel = 0) {
    return (static_cast<float>(frame + 1) + static_cast<float>(channel) / 4) / 65536;
}

std::shared_ptr<const Sound> Ramp(std::size_t frames, std::size_t channels = 1) {
    Sound sound = Sound::Silent(44100, AudioChannelLayout::ForChannelCount(channels), frames);
    for (std::size_t channel = 0; channel < channels; ++channel)
        for (std::size_t i = 0; i < frames; ++i)
            sound.channels[channel][i] = At(i, channel);
    return std::make_shared<const Sound>(std::move(sound));
}

// A sound that is read like one on a disk, which may fail from some frame on.
class SlowSource final : public SoundSource {
public:
    explicit SlowSource(std::shared_ptr<const Sound> sound)
        : SoundSource(sound->sampleRate, sound->layout, sound->Frames()), fSound(std::move(sound)),
          readable(fSound->Frames()) {}
    std::unique_ptr<SoundReader> NewReader() const override { return std::make_unique<Reader>(*this); }

private:
    class Reader final : public SoundReader {
    public:
        explicit Reader(const SlowSource& source) : fSource(source), fReader(*source.fSound) {}
        float SampleRate() const override { return fReader.SampleRate(); }
        const AudioChannelLayout& Layout() const override { return fReader.Layout(); }
        std::uint64_t Frames() const override { return fReader.Frames(); }
        std::size_t Read(std::span<float* const> channels, std::size_t frames) override {
            if (fNext + std::min(frames, Frames() - fNext) > fSource.readable)
                throw krocore::config::Error("voice.wav: gone");
            const std::size_t read = fReader.Read(channels, frames);
            fNext += read;
            return read;
        }
        void Seek(std::uint64_t frame) override { fReader.Seek(fNext = frame); }

    private:
        const SlowSource& fSource;
        SoundInMemoryReader fReader;
        std::uint64_t fNext = 0;
    };

    std::shared_ptr<const Sound> fSound;

public:
    std::uint64_t readable; // frames
};

// An engine whose pages are read when the test says so.
struct PagedEngine {
    PagedEngine(const std::shared_ptr<const SoundSource>& source, std::size_t pageFrames, std::size_t block,
                std::size_t latency = 0) {
        auto paged = std::make_unique<PagedFeed>(source, pageFrames);
        feed = paged.get();
        engine.Open(std::move(paged), new EchoFilter(latency), source->Layout().size(), block);
    }
    std::vector<float> Render(std::size_t frames) {
        const std::size_t channels = feed->Layout().size();
        std::vector<float> out(frames * channels, 99.0F);
        engine.Render(out.data(), frames, channels);
        return out;
    }

    PlaybackEngine engine;
    PagedFeed* feed = nullptr;
};

TEST(PagedFeed, WhatIsReadInTimeIsPlayedAsFromMemory) {
    constexpr std::size_t kFrames = 20000;
    const auto sound = Ramp(kFrames, 2);
    struct Event {
        std::size_t block;
        std::function<void(PlaybackEngine&)> act;
    };
    const Event events[] = {
        {0, [](PlaybackEngine& e) { e.Play(); }},
        {3, [](PlaybackEngine& e) { e.Seek(15000); }},
        {7, [](PlaybackEngine& e) { e.Seek(12345); }},
        {8, [](PlaybackEngine& e) { e.Seek(17); }}, // while it still fades
        {14,
         [](PlaybackEngine& e) {
             e.SetRange({300, 2500});
         }},
        {15, [](PlaybackEngine& e) { e.SetLoop(true); }},
        {40,
         [](PlaybackEngine& e) {
             e.SetRange({300, 301});
         }}, // plays on to the sound's end, then loops one sample
        {120, [](PlaybackEngine& e) { e.SetRange({}); }},
        {125, [](PlaybackEngine& e) { e.Stop(); }},
        {128, [](PlaybackEngine& e) { e.Seek(kFrames - 900); }},
        {129, [](PlaybackEngine& e) { e.Play(); }},
        {140, [](PlaybackEngine& e) { e.SetLoop(false); }},
        {150, [](PlaybackEngine& e) { e.Seek(kFrames); }},
        {155, [](PlaybackEngine& e) { e.Play(); }},
        {160, [](PlaybackEngine& e) { e.SetBypass(true); }},
    };
    for (const std::size_t block : {64, 250, 512}) {
        for (const std::size_t page : {613, 1024, 30000}) {
            SCOPED_TRACE(testing::Message() << block << " " << page);
            PlaybackEngine memory;
            memory.Open(sound, new EchoFilter(100), 2, block);
            PagedEngine paged(std::make_shared<SlowSource>(sound), page, block, 100);
            const auto* event = std::begin(events);
            for (std::size_t i = 0; i < 220; ++i) {
                paged.feed->Serve();
                for (; event != std::end(events) && event->block == i; ++event) {
                    event->act(memory);
                    event->act(paged.engine);
                    paged.feed->Serve();
                }
                std::vector<float> expected(block * 2);
                memory.Render(expected.data(), block, 2);
                ASSERT_EQ(paged.Render(block), expected) << i;
                ASSERT_EQ(paged.engine.Position(), memory.Position()) << i;
                ASSERT_EQ(paged.engine.IsPlaying(), memory.IsPlaying()) << i;
                memory.Poll();
                paged.engine.Poll();
            }
            EXPECT_EQ(paged.engine.TakeMissing(), 0U);
            EXPECT_EQ(paged.engine.TakeProblem(), "");
        }
    }
}

TEST(PagedFeed, BeginsWhenTheSoundIsThereAndLosesNothing) {
    PagedEngine paged(std::make_shared<SlowSource>(Ramp(60000)), 1000, 256);
    for (const std::size_t start : {0, 20000}) {
        if (start > 0) paged.engine.Seek(start);
        paged.engine.Play();
        paged.Render(256); // of the former place, fading out
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(paged.Render(256), std::vector<float>(256, 0.0F));
        EXPECT_TRUE(paged.engine.IsPlaying());
        EXPECT_EQ(paged.engine.Position(), start);
        paged.feed->Serve();
        EXPECT_EQ(paged.Render(256)[250], At(start + 250) + 0.5F * At(start + 250 - EchoFilter::kEcho));
    }
    EXPECT_EQ(paged.engine.TakeMissing(), 0U);
    // Who stops while it waits is not kept waiting.
    paged.engine.Seek(45000);
    paged.Render(256);
    paged.engine.Stop();
    paged.Render(256);
    EXPECT_FALSE(paged.engine.IsPlaying());
    EXPECT_EQ(paged.engine.Position(), 45000U);
}

TEST(PagedFeed, WhatIsNotThereInTimeIsSilenceOfTheSameLength) {
    PagedEngine paged(std::make_shared<SlowSource>(Ramp(60000)), 1000, 256);
    paged.engine.Play();
    paged.feed->Serve(); // twelve pages
    paged.Render(256);
    EXPECT_EQ(paged.Render(11744)[11743], At(11999) + 0.5F * At(11949));
    const std::vector<float> gap = paged.Render(1500);
    EXPECT_EQ(gap[EchoFilter::kEcho - 1], 0.5F * At(11999));
    EXPECT_EQ(std::vector<float>(gap.begin() + EchoFilter::kEcho, gap.end()), std::vector<float>(1450, 0.0F));
    EXPECT_EQ(paged.engine.Position(), 13500U);
    EXPECT_EQ(paged.engine.TakeMissing(), 1500U);
    EXPECT_EQ(paged.engine.TakeMissing(), 0U);
    paged.feed->Serve();
    EXPECT_EQ(paged.Render(256)[200], At(13700) + 0.5F * At(13650));
}

TEST(PagedFeed, WhatCanNotBeReadIsToldOnceAndTriedAgain) {
    const auto source = std::make_shared<SlowSource>(Ramp(20000));
    PagedEngine paged(source, 1000, 256);
    const auto play = [&](std::size_t frames) {
        std::vector<float> last;
        for (std::size_t done = 0; done < frames; done += 250) {
            paged.feed->Serve();
            last = paged.Render(250);
        }
        return last;
    };
    source->readable = 3000;
    paged.feed->Serve();
    paged.engine.Play();
    play(2500);
    EXPECT_EQ(paged.engine.TakeProblem(), "voice.wav: gone");
    EXPECT_EQ(play(2500), std::vector<float>(250, 0.0F));
    EXPECT_EQ(paged.engine.Position(), 5000U);
    EXPECT_EQ(paged.engine.TakeMissing(), 2000U);
    EXPECT_EQ(paged.engine.TakeProblem(), "");
    source->readable = 20000;
    paged.engine.Stop();
    paged.Render(256);
    paged.engine.Poll();
    paged.engine.Play();
    const std::size_t start = paged.engine.Position();
    paged.Render(256); // asks for it
    EXPECT_EQ(play(500).back(), At(start + 499) + 0.5F * At(start + 449));
    EXPECT_EQ(paged.engine.TakeProblem(), "");
}

TEST(PagedFeed, TheSoundThreadTakesNoMemory) {
    PagedEngine paged(std::make_shared<SlowSource>(Ramp(60000, 6)), 500, 256);
    paged.engine.SetLoop(true);
    paged.engine.Play();
    std::vector<float> out(256 * 6);
    for (std::size_t i = 0; i < 100; ++i) {
        if (i % 30 == 0) paged.engine.Seek(i * 500);
        if (i % 5 == 0) paged.feed->Serve();
        const std::size_t before = AllocationCount();
        paged.engine.Render(out.data(), 256, 6);
        ASSERT_EQ(AllocationCount(), before);
    }
}

// However late the reading thread is, each sample is the one of its place, or one that is counted as missing.
TEST(PagedFeed, AThreadOfItsOwnReadsForASoundThread) {
    constexpr std::size_t kFrames = 60000;
    const auto source = std::make_shared<SlowSource>(Ramp(kFrames));
    PlaybackEngine engine;
    engine.Open(std::shared_ptr<const SoundSource>(source), new EchoFilter(0), 1, 256);
    engine.SetBypass(true);
    std::atomic<bool> done{false};
    std::size_t silent = 0;
    std::size_t wrong = 0;
    std::thread device([&] {
        std::vector<float> out(256);
        while (!done.load()) {
            const std::size_t start = engine.Position();
            engine.Render(out.data(), out.size(), 1);
            // Away from where it starts, jumps and ends, where it fades.
            if (start < 300 || engine.Position() != start + out.size() || start % 20000 < 600) continue;
            for (std::size_t i = 0; i < out.size(); ++i) {
                if (out[i] == 0)
                    ++silent;
                else if (out[i] != At(start + i))
                    ++wrong;
            }
        }
    });
    for (std::size_t i = 0; i < 6; ++i) {
        engine.Seek(i % 3 * 20000);
        engine.Play();
        while (engine.IsPlaying() && engine.Position() < i % 3 * 20000 + 15000)
            std::this_thread::yield();
        engine.Poll();
    }
    done.store(true);
    device.join();
    engine.Stop();
    const std::size_t missing = engine.TakeMissing();
    engine.Close();
    EXPECT_EQ(wrong, 0U);
    EXPECT_LE(silent, missing);
}

} // namespace
