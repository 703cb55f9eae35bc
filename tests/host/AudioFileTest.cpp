#include "host/AudioFile.h"

#include "host/TestSignal.h"
#include "krocore/config/Error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sndfile.h>

#include <csignal>
#include <cstdlib>
#include <fstream>

#include <sys/resource.h>

using namespace qohost;
using kromediatypes::AudioChannelLayout;
namespace fs = std::filesystem;

namespace {

constexpr int kWave16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
constexpr int kWaveFloat = SF_FORMAT_WAV | SF_FORMAT_FLOAT;

class AudioFileTest : public testing::Test {
protected:
    void SetUp() override {
        std::string name = (fs::temp_directory_path() / "qoaudioXXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        fFolder = name;
    }
    void TearDown() override { fs::remove_all(fFolder); }

    fs::path WriteBytes(const char* name, std::string_view bytes) const {
        std::ofstream(fFolder / name, std::ios::binary) << bytes;
        return fFolder / name;
    }
    static std::string Bytes(const fs::path& path) {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    std::size_t FilesInFolder() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(fFolder), fs::directory_iterator()));
    }

    fs::path fFolder;
};

void ExpectRefusal(const std::function<void()>& action, const fs::path& path, const char* reason) {
    try {
        action();
        ADD_FAILURE() << path << " was taken";
    } catch (const krocore::config::Error& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr(path.string()));
        EXPECT_THAT(error.what(), testing::HasSubstr(reason));
    }
}

// Every value that 16 bits can hold.
Sound AllShorts() {
    Sound sound{44100, AudioChannelLayout::Mono(), {{}}};
    for (int value = -32768; value <= 32767; ++value)
        sound.channels[0].push_back(static_cast<float>(value) / 32768);
    return sound;
}

TEST_F(AudioFileTest, SixteenBitsComeBackUnchangedInEveryLosslessContainer) {
    const Sound sound = AllShorts();
    for (const char* name : {"a.wav", "a.AIF", "a.flac", "a.caf", "a.w64", "a.au"}) {
        WriteAudioFile(fFolder / name, sound, kWave16);
        const AudioFile read = ReadAudioFile(fFolder / name);
        EXPECT_EQ(read.encoding & SF_FORMAT_SUBMASK, SF_FORMAT_PCM_16) << name;
        EXPECT_TRUE(read.sound.channels == sound.channels) << name;
        EXPECT_EQ(read.sound.sampleRate, 44100) << name;
    }
}

TEST_F(AudioFileTest, FloatFilesKeepWhatIsLouderThanFullScale) {
    const Sound sound{96000, AudioChannelLayout::Stereo(), {{1.5F, -3.0F}, {1e-20F, 0.1F}}};
    WriteAudioFile(fFolder / "a.wav", sound, kWaveFloat);
    EXPECT_EQ(ReadAudioFile(fFolder / "a.wav").sound.channels, sound.channels);
}

TEST_F(AudioFileTest, WholeNumbersAreRoundedAndLimited) {
    constexpr float kStep = 1.0F / 32768;
    const Sound sound{
        44100, AudioChannelLayout::Mono(), {{1.5F, -1.5F, 0.6F * kStep, 0.4F * kStep, -0.6F * kStep, std::nanf("")}}};
    WriteAudioFile(fFolder / "a.wav", sound, kWave16);
    EXPECT_THAT(ReadAudioFile(fFolder / "a.wav").sound.channels[0],
                testing::ElementsAre(1 - kStep, -1.0F, kStep, 0.0F, -kStep, 0.0F));
}

TEST_F(AudioFileTest, EncodingFollowsTheContainer) {
    struct Case {
        const char* name;
        int like;
        int expected;
    };
    const Case cases[] = {
        {"a.flac", kWaveFloat, SF_FORMAT_FLAC | SF_FORMAT_PCM_24},
        {"a.ogg", kWave16, SF_FORMAT_OGG | SF_FORMAT_VORBIS},
        {"a.wav", SF_FORMAT_OGG | SF_FORMAT_VORBIS, SF_FORMAT_WAV | SF_FORMAT_PCM_24},
        {"a.wav", 0, kWaveFloat},
        {"a.wav", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, SF_FORMAT_WAV | SF_FORMAT_PCM_24},
    };
    for (const Case& c : cases) {
        WriteAudioFile(fFolder / c.name, MakeTestSignal(0.1), c.like);
        EXPECT_EQ(ReadAudioFile(fFolder / c.name).encoding, c.expected) << c.name;
    }
}

TEST_F(AudioFileTest, ChannelPlacesAreKept) {
    for (const std::size_t channels : {1, 2, 4, 6, 8, 32}) {
        const AudioChannelLayout layout = AudioChannelLayout::ForChannelCount(channels);
        WriteAudioFile(fFolder / "a.wav", Sound::Silent(48000, layout, 10), kWave16);
        const Sound sound = ReadAudioFile(fFolder / "a.wav").sound;
        EXPECT_TRUE(sound.layout == layout) << channels;
        EXPECT_EQ(sound.Frames(), 10U);
    }
}

TEST_F(AudioFileTest, SoundOfNoLengthIsNoError) {
    WriteAudioFile(fFolder / "a.wav", Sound::Silent(44100, AudioChannelLayout::Stereo(), 0), kWave16);
    const Sound sound = ReadAudioFile(fFolder / "a.wav").sound;
    EXPECT_EQ(sound.Frames(), 0U);
    EXPECT_EQ(sound.channels.size(), 2U);
}

TEST_F(AudioFileTest, ReadingRefusesWithFileAndReason) {
    WriteAudioFile(fFolder / "good.wav", MakeTestSignal(0.5), kWave16);
    WriteAudioFile(fFolder / "good.aif", MakeTestSignal(0.5), kWave16);
    WriteAudioFile(fFolder / "good.flac", MakeTestSignal(0.5), kWave16);
    const std::string wave = Bytes(fFolder / "good.wav");
    const std::string aiff = Bytes(fFolder / "good.aif");
    const std::string flac = Bytes(fFolder / "good.flac");
    std::string noChannels = wave;
    noChannels[22] = 0; // the channel count of the format chunk
    std::string tooManyChannels = wave;
    tooManyChannels[22] = 33;
    struct Case {
        fs::path path;
        const char* reason;
    };
    const Case cases[] = {
        {fFolder / "none.wav", "no such file"},
        {fFolder, "a folder"},
        {WriteBytes("empty.wav", ""), "empty"},
        {WriteBytes("text.wav", "This is no sound at all, only words."), "no sound file"},
        {WriteBytes("half.wav", std::string_view(wave).substr(0, wave.size() / 2)), "cut off"},
        {WriteBytes("header.wav", std::string_view(wave).substr(0, 20)), "cut off"},
        {WriteBytes("half.aif", std::string_view(aiff).substr(0, aiff.size() / 2)), "cut off"},
        {WriteBytes("half.flac", std::string_view(flac).substr(0, flac.size() / 2)), "cut off"},
        {WriteBytes("silent.wav", noChannels), ""},
        {WriteBytes("many.wav", tooManyChannels), ""},
    };
    for (const Case& c : cases)
        ExpectRefusal([&] { ReadAudioFile(c.path); }, c.path, c.reason);
}

TEST_F(AudioFileTest, FailedWritingLeavesTheOldFileAndNothingElse) {
    const fs::path path = WriteBytes("a.wav", "what was there");
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    // Stands for a full disk: files can't grow beyond 50 kB.
    const rlimit full{50000, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &full), 0);
    ExpectRefusal([&] { WriteAudioFile(path, MakeTestSignal(1), kWave16); }, path, "can't be written");
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(Bytes(path), "what was there");
    EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(AudioFileTest, WritingRefusesWithFileAndReason) {
    const Sound sound = MakeTestSignal(0.1);
    const Sound many = Sound::Silent(44100, AudioChannelLayout::Discrete(9), 10);
    ExpectRefusal([&] { WriteAudioFile(fFolder / "a.txt", sound, kWave16); }, fFolder / "a.txt", "extension");
    ExpectRefusal([&] { WriteAudioFile(fFolder / "a.flac", many, kWave16); }, fFolder / "a.flac", "9 channels");
    ExpectRefusal([&] { WriteAudioFile(fFolder / "no/a.wav", sound, kWave16); }, fFolder / "no/a.wav",
                  "can't be written");
    ExpectRefusal([&] { WriteAudioFile(fFolder / "a.wav", Sound(), kWave16); }, fFolder / "a.wav", "channels");
    fs::create_directory(fFolder / "folder.wav");
    ExpectRefusal([&] { WriteAudioFile(fFolder / "folder.wav", sound, kWave16); }, fFolder / "folder.wav",
                  "can't be written");
    EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(AudioFileTest, ReplacedFileKeepsItsRightsAndLinkStaysALink) {
    const fs::path path = WriteBytes("a.wav", "old");
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(path, fFolder / "link.wav");
    WriteAudioFile(fFolder / "link.wav", MakeTestSignal(0.1), kWave16);
    EXPECT_TRUE(fs::is_symlink(fFolder / "link.wav"));
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(ReadAudioFile(path).sound.Frames(), 4410U);
}

} // namespace
