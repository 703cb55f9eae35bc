#include "TemporaryFolder.h"
#include "WorkbenchFixture.h"
#include "host/AudioFile.h"
#include "workbench/sound/PeaksJob.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <thread>

namespace workbench {
namespace {

namespace fs = std::filesystem;
using kromediatypes::AudioChannelLayout;
using qohost::Sound;
using Range = WaveformPeaks::Range;

std::vector<const float*> From(const Sound& sound, std::size_t frame) {
    std::vector<const float*> channels;
    for (const auto& channel : sound.channels)
        channels.push_back(channel.data() + frame);
    return channels;
}

// Frame i is i / 2^24 in one channel and its negative in the other.
Sound Ramp(std::size_t frames) {
    Sound sound = Sound::Silent(44100, AudioChannelLayout::Stereo(), frames);
    for (std::size_t i = 0; i < frames; ++i) {
        sound.channels[0][i] = static_cast<float>(i) / 16777216;
        sound.channels[1][i] = -sound.channels[0][i];
    }
    return sound;
}

TEST(WaveformPeaks, EveryStretchShowsTheExtremesOfAllChannels) {
    Sound sound = Sound::Silent(1000, AudioChannelLayout::Stereo(), 1000);
    sound.channels[0][10] = 0.5F;
    sound.channels[1][20] = -0.25F;
    sound.channels[1][999] = 0.75F; // in a last stretch that is not full
    WaveformPeaks peaks(1000);
    peaks.Add(From(sound, 0), 1000);
    EXPECT_TRUE(peaks.IsComplete());
    EXPECT_EQ(peaks.Between(0, 30).high, 0.5F);
    EXPECT_EQ(peaks.Between(0, 30).low, -0.25F);
    EXPECT_EQ(peaks.Between(300, 600).high, 0);
    EXPECT_EQ(peaks.Between(990, 5000).high, 0.75F);
    EXPECT_EQ(peaks.Between(5000, 6000).high, 0);
    EXPECT_EQ(WaveformPeaks().Between(0, 1).high, 0);
}

TEST(WaveformPeaks, TheyAreKnownAsFarAsTheyWereAddedInWhateverParts) {
    constexpr std::size_t kFrames = 10'000'000; // 128 frames a stretch would be more than are kept: 256
    const Sound sound = Ramp(kFrames);
    WaveformPeaks peaks(kFrames);
    std::size_t added = 0;
    for (const std::size_t part : {1UL, 100UL, 1000UL, 5'000'000UL, kFrames}) {
        peaks.Add(From(sound, added), part); // what is behind the end doesn't count
        added = std::min(added + part, kFrames);
        const std::size_t known = added == kFrames ? kFrames : added / 256 * 256;
        EXPECT_EQ(peaks.KnownFrames(), known);
        EXPECT_EQ(peaks.IsComplete(), added == kFrames);
        const Range range = peaks.Between(0, kFrames);
        EXPECT_EQ(range.high, known == 0 ? 0 : static_cast<float>(known - 1) / 16777216);
        EXPECT_EQ(range.low, -range.high);
    }
    EXPECT_EQ(peaks.Between(5'000'000, 5'000'001).high, 5'000'191.0F / 16777216); // up to the stretch's last frame
    // Their own size does not follow the sound's.
    EXPECT_EQ(peaks.Ranges().size(), 39063U);
    EXPECT_LE(WaveformPeaks(std::uint64_t{4} << 40).Ranges().size(), 65536U);
}

class PeaksCacheTest : public testing::Test {
protected:
    fs::path OnlyFile() const {
        EXPECT_EQ(std::distance(fs::directory_iterator(fFolder.Path("cache")), fs::directory_iterator()), 1);
        return fs::directory_iterator(fFolder.Path("cache"))->path();
    }

    TemporaryFolder fFolder;
    PeaksCache fCache{fFolder.Path("cache")};
    std::vector<Range> fRanges = {{-0.5F, 0.25F}, {0, 0}, {-1.5F, 1}};
};

bool AreEqual(const std::optional<std::vector<Range>>& found, const std::vector<Range>& ranges) {
    return found && std::ranges::equal(*found, ranges, [](const Range& a, const Range& b) {
               return a.low == b.low && a.high == b.high;
           });
}

TEST_F(PeaksCacheTest, WhatIsDamagedOrForeignIsNotThere) {
    EXPECT_FALSE(fCache.Find("sound"));
    fCache.Keep("sound", fRanges);
    EXPECT_TRUE(AreEqual(fCache.Find("sound"), fRanges));
    EXPECT_FALSE(fCache.Find("other"));
    const std::string name = OnlyFile().filename().string();
    const std::string good = TemporaryFolder::Contents(OnlyFile());
    // Cut off anywhere, too long, and each of its bytes another.
    for (std::size_t length = 0; length < good.size(); ++length) {
        fFolder.Write("cache/" + name, good.substr(0, length));
        EXPECT_FALSE(fCache.Find("sound")) << length;
        std::string wrong = good;
        wrong[length] ^= 4;
        fFolder.Write("cache/" + name, wrong);
        EXPECT_FALSE(fCache.Find("sound")) << length;
    }
    fFolder.Write("cache/" + name, good + std::string(8, '\0'));
    EXPECT_FALSE(fCache.Find("sound"));
    fFolder.Write("cache/" + name, std::string(5'000'000, 'x'));
    EXPECT_FALSE(fCache.Find("sound"));
    // Of a sound that got the same name.
    fCache.Keep("other", fRanges);
    fs::remove(fFolder.Path("cache") / name);
    fs::rename(OnlyFile(), fFolder.Path("cache") / name);
    EXPECT_FALSE(fCache.Find("sound"));
    fCache.Keep("sound", fRanges); // made anew
    EXPECT_TRUE(AreEqual(fCache.Find("sound"), fRanges));
}

TEST_F(PeaksCacheTest, ItStaysSmallAndLosesWhatWasNotUsedForLongest) {
    const PeaksCache small(fFolder.Path("cache"), 300); // three of 70-odd bytes
    const auto now = fs::file_time_type::clock::now();
    for (const auto& [name, hours] : {std::pair("a", 5), {"b", 4}, {"c", 3}}) {
        small.Keep(name, fRanges);
        for (const auto& file : fs::directory_iterator(fFolder.Path("cache")))
            if (file.last_write_time() > now - std::chrono::hours(1))
                fs::last_write_time(file, now - std::chrono::hours(hours));
    }
    EXPECT_TRUE(small.Find("a")); // used now
    const PeaksCache smaller(fFolder.Path("cache"),
                             2 * fs::file_size(fs::directory_iterator(fFolder.Path("cache"))->path()));
    smaller.Keep("d", fRanges);
    EXPECT_TRUE(smaller.Find("d"));
    EXPECT_TRUE(smaller.Find("a"));
    EXPECT_FALSE(smaller.Find("b"));
    EXPECT_FALSE(smaller.Find("c"));
}

TEST_F(PeaksCacheTest, WithoutAFolderThatTakesFilesNothingIsKept) {
    fFolder.Write("file", "");
    const PeaksCache cache(fFolder.Path("file"));
    cache.Keep("sound", fRanges);
    EXPECT_FALSE(cache.Find("sound"));
    fCache.Keep("", fRanges);
    EXPECT_FALSE(fCache.Find(""));
}

// A sound in a file that is not taken into memory.
class PeaksJobTest : public PeaksCacheTest {
protected:
    PeaksJobTest() {
        qohost::WriteAudioFile(fFile, Ramp(100'000), qohost::AudioFileEncoding{});
        fSound = qohost::OpenSoundSource(fFile, {}, 0);
    }
    // A real thread.
    static void WaitFor(const PeaksJob& job) {
        while (!job.IsOver())
            std::this_thread::yield();
    }

    fs::path fFile = fFolder.Path("voice.wav");
    std::shared_ptr<const qohost::SoundSource> fSound;
};

TEST_F(PeaksJobTest, TheyAreTheSameFromMemoryFromTheFileAndFromTheCache) {
    const PeaksJob memory(qohost::OpenSoundSource(fFile), fCache);
    EXPECT_TRUE(memory.IsOver());
    EXPECT_FALSE(fs::exists(fFolder.Path("cache")));
    const auto expected = memory.Peaks()->Ranges();
    for (const char* const from : {"file", "cache"}) {
        const PeaksJob job(fSound, fCache);
        WaitFor(job);
        EXPECT_EQ(job.Problem(), "");
        EXPECT_TRUE(AreEqual(std::vector(expected.begin(), expected.end()),
                             {job.Peaks()->Ranges().begin(), job.Peaks()->Ranges().end()}))
            << from;
        EXPECT_TRUE(fCache.Find(fSound->Identity()));
    }
    // What is in the cache is what is shown, and of another length not.
    const std::vector<Range> kept(expected.size(), Range{-0.25F, 0.25F});
    fCache.Keep(fSound->Identity(), kept);
    const PeaksJob cached(fSound, fCache);
    WaitFor(cached);
    EXPECT_EQ(cached.Peaks()->Between(0, 100'000).high, 0.25F);
    fCache.Keep(fSound->Identity(), std::span(kept).first(10));
    const PeaksJob read(fSound, fCache);
    WaitFor(read);
    EXPECT_EQ(read.Peaks()->Between(0, 1e6).high, expected.back().high);
}

TEST_F(PeaksJobTest, AFileThatChangesIsToldOfAndNotKept) {
    fs::resize_file(fFile, 200'000);
    const PeaksJob job(fSound, fCache);
    WaitFor(job);
    EXPECT_NE(job.Problem().find("voice.wav"), std::string::npos) << job.Problem();
    EXPECT_FALSE(fs::exists(fFolder.Path("cache")));
}

// Longer than what is taken into memory.
class LongSoundTest : public WorkbenchFixture {
protected:
    static constexpr std::size_t kFrames = 3'000'000; // 68 s

    LongSoundTest() {
        qohost::WriteAudioFile(fFile, Ramp(kFrames), qohost::AudioFileEncoding{});
        EXPECT_TRUE(fView->OpenFile(fFile));
    }
    // The window's time runs ten times as fast as that of the threads that are awaited, no faster: a sound must not
    // have been played to its end before the thread that reads it was given the processor once.
    void Await(const std::function<bool()>& condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition() && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            fWindow.Advance(0.01);
        }
        EXPECT_TRUE(condition());
    }

    fs::path fFile = fFolder.Path("long.wav");
};

TEST_F(LongSoundTest, IsShownPlayedAndRenderedFromTheDisk) {
    ASSERT_EQ(fSession.CurrentSound().InMemory(), nullptr);
    EXPECT_EQ(TextOf("soundFacts"), "44.1 kHz stereo 1:08.027");
    Await([this] { return !fSession.ArePeaksComing(); });
    EXPECT_TRUE(fSession.Peaks()->IsComplete());
    EXPECT_NEAR(fSession.Peaks()->Between(kFrames - 200, kFrames).high, kFrames / 16777216.0, 1e-4);

    fSession.Seek(30);
    PressKey(kroui::ui::Key::kSpace);
    Await([this] { return ValueOf("levels").find("-22") != std::string::npos; }); // 30 s are 0.079
    Await([this] { return fSession.Position() > 31; });
    PressKey(kroui::ui::Key::kSpace);

    fSession.Select({2'000'000, 2'010'000});
    Click("render");
    Await([this] { return TextOf("render") != "Cancel"; });
    const Sound part = qohost::ReadAudioFile(fFolder.Path("long-amplify.wav")).sound;
    ASSERT_EQ(part.Frames(), 10'000U);
    EXPECT_NEAR(part.channels[0][5000], 2'005'000 / 16777216.0, 1e-6);
}

TEST_F(LongSoundTest, AFileThatVanishesOrIsCutOffIsToldOfWithEverythingAsBefore) {
    Await([this] { return !fSession.ArePeaksComing(); });
    fs::resize_file(fFile, 1'000'000);
    const std::string name = TextOf("soundName");
    fSession.Seek(40);
    PressKey(kroui::ui::Key::kSpace);
    Await([this] { return TextOf("message").find("long.wav: the file is cut off") != std::string::npos; });
    EXPECT_TRUE(fSession.Engine().IsPlaying());
    PressKey(kroui::ui::Key::kEscape);
    fs::remove(fFile);
    Click("render");
    Await([this] { return TextOf("message").find("long.wav: there is no such file") != std::string::npos; });
    EXPECT_TRUE(fView->ChooseEffect(EffectFromName("echo")));
    EXPECT_EQ(TextOf("soundName"), name);
    EXPECT_NEAR(fSession.CurrentSound().Seconds(), 68.03, 0.01);
    // Another sound is opened as ever.
    qohost::WriteAudioFile(fFile, Ramp(1000), 0);
    EXPECT_TRUE(fView->OpenFile(fFile));
}

} // namespace
} // namespace workbench
