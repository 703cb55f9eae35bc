#include "host/SoundSource.h"

#include "host/AudioFile.h"
#include "host/SoundPart.h"
#include "host/TestSignal.h"
#include "krocore/config/Error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sndfile.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>

using namespace qohost;
namespace fs = std::filesystem;

namespace {

using Channels = std::vector<std::vector<float>>;

class SoundSourceTest : public testing::Test {
protected:
    void SetUp() override {
        std::string name = (fs::temp_directory_path() / "qoaudioXXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        fFolder = name;
    }
    void TearDown() override { fs::remove_all(fFolder); }

    // Of an encoding that cannot be written by extension alone.
    fs::path WriteMono(const char* name, int format, const Sound& sound) const {
        SF_INFO info{};
        info.format = format;
        info.channels = 1;
        info.samplerate = 44100;
        SNDFILE* const file = sf_open((fFolder / name).c_str(), SFM_WRITE, &info);
        EXPECT_NE(file, nullptr) << name << sf_strerror(nullptr);
        sf_writef_float(file, sound.channels[0].data(), static_cast<sf_count_t>(sound.Frames()));
        sf_close(file);
        return fFolder / name;
    }

    fs::path fFolder;
};

Channels Read(SoundReader& reader, std::size_t frames) {
    Channels sound(reader.Layout().size(), std::vector<float>(frames));
    std::vector<float*> pointers;
    for (auto& channel : sound)
        pointers.push_back(channel.data());
    const std::size_t read = reader.Read(pointers, frames);
    for (auto& channel : sound)
        channel.resize(read);
    return sound;
}

Channels Part(const Channels& whole, std::size_t begin, std::size_t frames) {
    Channels part;
    for (const auto& channel : whole)
        part.emplace_back(channel.begin() + static_cast<std::ptrdiff_t>(begin),
                          channel.begin() + static_cast<std::ptrdiff_t>(std::min(begin + frames, channel.size())));
    return part;
}

float Difference(const Channels& a, const Channels& b) {
    float difference = 0;
    for (std::size_t channel = 0; channel < a.size(); ++channel) {
        EXPECT_EQ(a[channel].size(), b[channel].size());
        for (std::size_t i = 0; i < a[channel].size(); ++i)
            difference = std::max(difference, std::abs(a[channel][i] - b[channel][i]));
    }
    return difference;
}

std::string ProblemOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const krocore::config::Error& error) {
        return error.what();
    }
    return "none";
}

TEST_F(SoundSourceTest, AFileIsTheSameFromAnyPlace) {
    const Sound sound = MakeTestSignal(2);
    std::vector<fs::path> files;
    for (const char* const name : {"a.wav", "a.aif", "a.flac", "a.ogg", "a.caf", "a.w64", "a.au"}) {
        files.push_back(fFolder / name);
        WriteAudioFile(files.back(), sound, SF_FORMAT_WAV | SF_FORMAT_PCM_24);
    }
    files.push_back(WriteMono("g721.au", SF_FORMAT_AU | SF_FORMAT_G721_32, sound)); // only in order
    files.push_back(WriteMono("gsm.wav", SF_FORMAT_WAV | SF_FORMAT_GSM610, sound));
    files.push_back(WriteMono("adpcm.wav", SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, sound));
    files.push_back(WriteMono("layer3.mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, sound));
    for (const fs::path& file : files) {
        const Channels whole = ReadAudioFile(file).sound.channels;
        SoundFileReader reader(file);
        const auto frames = static_cast<std::size_t>(reader.Frames());
        for (const std::size_t place :
             {30000UL, 0UL, 1UL, 17777UL, 17700UL, frames - 10, frames, frames + 10, 4096UL}) {
            reader.Seek(place);
            EXPECT_LE(Difference(Read(reader, 3000), Part(whole, std::min(place, frames), 3000)),
                      file.extension() == ".mp3" ? 1e-7F : 0)
                << file << " " << place;
        }
        SoundPartReader part(reader, 20000, 21000);
        EXPECT_LE(Difference(Read(part, 5000), Part(whole, 20000, 1000)), 1e-7F) << file;
    }
}

TEST_F(SoundSourceTest, LongFilesStayOnTheDiskAndAreReadBySeveralAtOnce) {
    const Sound sound = MakeTestSignal(1);
    const fs::path file = fFolder / "a.wav";
    WriteAudioFile(file, sound, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    const std::uint64_t bytes = sound.Frames() * sound.channels.size() * sizeof(float);
    const auto inMemory = OpenSoundSource(file, {}, bytes);
    const auto onDisk = OpenSoundSource(file, {}, bytes - 1);
    EXPECT_NE(inMemory->InMemory(), nullptr);
    EXPECT_EQ(onDisk->InMemory(), nullptr);
    for (const auto& source : {inMemory, onDisk}) {
        EXPECT_EQ(source->Frames(), sound.Frames());
        EXPECT_EQ(source->Encoding(), SF_FORMAT_WAV | SF_FORMAT_FLOAT);
        const auto first = source->NewReader();
        const auto second = source->NewReader();
        first->Seek(1000);
        EXPECT_EQ(Read(*second, 100), Part(sound.channels, 0, 100));
        EXPECT_EQ(Read(*first, 100), Part(sound.channels, 1000, 100));
    }
}

TEST_F(SoundSourceTest, AFileThatIsGoneCutOffOrAnotherIsToldOf) {
    const fs::path file = fFolder / "a.wav";
    WriteAudioFile(file, MakeTestSignal(1), 0);
    const auto source = OpenSoundSource(file, {}, 0);
    const std::string identity = source->Identity();
    EXPECT_THAT(identity, testing::HasSubstr(file.string()));
    EXPECT_EQ(OpenSoundSource(file, {}, 0)->Identity(), identity);
    auto reader = source->NewReader();
    const auto open = [&] { source->NewReader(); };

    fs::last_write_time(file, fs::last_write_time(file) + std::chrono::seconds(1));
    EXPECT_THAT(ProblemOf(open), testing::HasSubstr("a.wav: the file has changed"));
    EXPECT_NE(OpenSoundSource(file, {}, 0)->Identity(), identity);
    fs::resize_file(file, 50000);
    EXPECT_THAT(ProblemOf(open), testing::HasSubstr("cut off"));
    EXPECT_THAT(ProblemOf([&] { Read(*reader, 44100); }), testing::HasSubstr("cut off"));
    fs::remove(file);
    EXPECT_THAT(ProblemOf(open), testing::HasSubstr("no such file"));
}

TEST_F(SoundSourceTest, AStreamIsKeptForAsLongAsItIsRead) {
    const Sound sound = MakeTestSignal(1);
    const fs::path file = fFolder / "a.wav";
    WriteAudioFile(file, sound, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    FILE* const stream = fopen(file.c_str(), "rb");
    const auto source = OpenSoundSource("/dev/fd/" + std::to_string(fileno(stream)), {}, 0);
    fclose(stream);
    fs::remove(file);
    EXPECT_EQ(source->Identity(), "");
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(Read(*source->NewReader(), 44100), sound.channels);
}

} // namespace
