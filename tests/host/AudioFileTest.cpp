#include "host/AudioFile.h"

#include "FullDisk.h"
#include "host/TestSignal.h"
#include "krocore/config/Error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <optional>

#include <sys/stat.h>

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
    ASSERT_EQ(mkfifo((fFolder / "pipe").c_str(), 0600), 0);
    struct Case {
        fs::path path;
        const char* reason;
    };
    const Case cases[] = {
        {fFolder / "none.wav", "no such file"},
        {fFolder, "a folder"},
        {fFolder / "pipe", "a pipe"},
        {"/dev/zero", "a device"},
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

// The formats that libsndfile lists with a pair of commands.
std::vector<int> Listed(int countCommand, int command) {
    int count = 0;
    sf_command(nullptr, countCommand, &count, sizeof count);
    std::vector<int> formats;
    for (int i = 0; i < count; ++i) {
        SF_FORMAT_INFO info{};
        info.format = i;
        sf_command(nullptr, command, &info, sizeof info);
        formats.push_back(info.format);
    }
    return formats;
}

// A tone in that format, in stereo where it can; empty if libsndfile can't write or read it.
std::string Written(const fs::path& path, int format) {
    constexpr int kFrames = 3000;
    SF_INFO info{.frames = 0, .samplerate = 8000, .channels = 2, .format = format, .sections = 0, .seekable = 0};
    if (sf_format_check(&info) == 0) info.channels = 1;
    SNDFILE* const file = sf_format_check(&info) != 0 ? sf_open(path.c_str(), SFM_WRITE, &info) : nullptr;
    if (file == nullptr) return {};
    std::vector<float> sound(static_cast<std::size_t>(kFrames * info.channels));
    for (std::size_t i = 0; i < sound.size(); ++i)
        sound[i] = 0.5F * std::sin(0.05F * static_cast<float>(i));
    sf_writef_float(file, sound.data(), kFrames);
    sf_close(file);
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// Every kind of file that libsndfile writes here, cut at several places.
TEST_F(AudioFileTest, WhatIsCutOffIsToldForEveryKindThatSaysItsLength) {
    // They hold samples up to the file's end, however far that is, or need a second file.
    const int untold[] = {SF_FORMAT_RAW, SF_FORMAT_PAF, SF_FORMAT_IRCAM, SF_FORMAT_PVF, SF_FORMAT_SD2, SF_FORMAT_XI};
    const auto framesOf = [](const fs::path& path) -> std::optional<std::size_t> {
        try {
            return ReadAudioFile(path).sound.Frames();
        } catch (const krocore::config::Error&) {
            return std::nullopt;
        }
    };
    int kinds = 0;
    for (const int container : Listed(SFC_GET_FORMAT_MAJOR_COUNT, SFC_GET_FORMAT_MAJOR)) {
        if (std::ranges::find(untold, container) != std::end(untold)) continue;
        for (const int sample : Listed(SFC_GET_FORMAT_SUBTYPE_COUNT, SFC_GET_FORMAT_SUBTYPE)) {
            for (const int order : {0, int(SF_ENDIAN_LITTLE), int(SF_ENDIAN_BIG)}) {
                if (order != 0 && sample != SF_FORMAT_PCM_16) continue;
                SCOPED_TRACE(testing::Message() << std::hex << (container | sample | order));
                const std::string whole = Written(fFolder / "whole", container | sample | order);
                const auto frames = whole.empty() ? std::nullopt : framesOf(fFolder / "whole");
                if (!frames) continue;
                ++kinds;
                for (const std::size_t percent : {2, 40, 75, 97, 100}) {
                    const std::size_t length = (whole.size() - 1) * percent / 100;
                    const auto left = framesOf(WriteBytes("cut", std::string_view(whole).substr(0, length)));
                    EXPECT_TRUE(!left || (percent > 90 && *left == *frames)) << length << " of " << whole.size();
                }
            }
        }
    }
    EXPECT_GT(kinds, 100);
}

TEST_F(AudioFileTest, SoundRecordedToAPipeHasNoLengthAndIsTaken) {
    WriteAudioFile(fFolder / "a.wav", MakeTestSignal(0.1), kWave16);
    WriteAudioFile(fFolder / "a.au", MakeTestSignal(0.1), kWave16);
    const auto with = [&](const char* name, std::size_t at, std::string_view bytes) {
        std::string file = Bytes(fFolder / name);
        file.replace(at, bytes.size(), bytes);
        return file;
    };
    const std::string wave = Bytes(fFolder / "a.wav");
    const std::size_t data = wave.find("data") + 4;
    for (const char* const unknown : {"\xFF\xFF\xFF\xFF", "\xFF\xFF\xFF\x7F"}) {
        std::string piped = with("a.wav", 4, unknown);
        piped.replace(data, 4, unknown);
        EXPECT_EQ(ReadAudioFile(WriteBytes("b.wav", piped)).sound.Frames(), 4410U);
    }
    EXPECT_EQ(ReadAudioFile(WriteBytes("b.au", with("a.au", 8, "\xFF\xFF\xFF\xFF"))).sound.Frames(), 4410U);
}

TEST_F(AudioFileTest, AFullDiskKeepsTheOldFileOfEveryKindAndNothingElse) {
    for (const char* const name : {"a.wav", "a.aif", "a.flac", "a.ogg", "a.caf", "a.w64", "a.au", "a.raw"}) {
        const fs::path path = WriteBytes(name, "what was there");
        WriteAudioFile(path, MakeTestSignal(2), kWave16);
        const std::size_t size = Bytes(path).size();
        WriteBytes(name, "what was there");
        // Full in the header, in the first block, somewhere in the sound, and at its last byte.
        for (const std::size_t room : {std::size_t(10), std::size_t(3000), size / 2, size - 1}) {
            SCOPED_TRACE(testing::Message() << name << " " << room << " of " << size);
            const FullDisk full(room);
            ExpectRefusal([&] { WriteAudioFile(path, MakeTestSignal(2), kWave16); }, path, "can't be written");
        }
        EXPECT_TRUE(Bytes(path) == "what was there") << name;
    }
    EXPECT_EQ(FilesInFolder(), 8U);
}

// The container follows from the frames that are announced: 4 bytes each.
TEST_F(AudioFileTest, WhatIsTooLongForAKindOfFileGetsAnotherOrIsRefused) {
    const auto open = [&](const char* name, std::uint64_t bytes) {
        SoundFileWriter file(
            fFolder / name,
            {.sampleRate = 44100, .layout = AudioChannelLayout::Stereo(), .frames = bytes / 4, .like = kWave16});
        file.Commit();
        return Bytes(fFolder / name).substr(0, 4);
    };
    EXPECT_EQ(open("a.wav", 0xFFFF0000), "RIFF");
    EXPECT_EQ(open("a.wav", 0xFFFF0004), "RF64");
    EXPECT_EQ(open("a.aif", 0x7FFF0000), "FORM");
    ExpectRefusal([&] { open("b.aif", 0x7FFF0004); }, fFolder / "b.aif", "so much sound");
    EXPECT_FALSE(fs::exists(fFolder / "b.aif"));
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
