#include "host/SampleFormat.h"

#include "host/Sound.h"

#include "host/SoundFile.h"
#include "krocore/config/Error.h"

#include <gtest/gtest.h>
#include <sndfile.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <unistd.h>

namespace qohost {
namespace {

Sound Mono(std::vector<float> samples) {
    return {44100, kromediatypes::AudioChannelLayout::Mono(), {std::move(samples)}};
}

Clipping ClippingOf(const Sound& sound, int encoding) {
    ClippingMeter meter(encoding);
    // In two blocks, as a file gets it.
    const std::size_t half = sound.Frames() / 2;
    const float* const first[] = {sound.channels[0].data()};
    const float* const second[] = {sound.channels[0].data() + half};
    meter.Measure(first, half);
    meter.Measure(second, sound.Frames() - half);
    return meter.Result();
}

TEST(SampleFormat, OnlyWhatLiesBeyondFullScaleIsClipped) {
    // Half a step of 16 bits beyond full scale is 1.0000153: rounding brings 1.00001 back to it.
    const Sound sound = Mono({0, 1, -1, 1.00001F, 1.0001F, -2, std::numeric_limits<float>::quiet_NaN(), 0.5F});
    const Clipping clipping = ClippingOf(sound, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    EXPECT_EQ(clipping.samples, 2U);
    EXPECT_DOUBLE_EQ(clipping.part, 0.25);
    EXPECT_NEAR(clipping.decibels, 6.0206, 1e-4);
    EXPECT_EQ(ClippingOf(sound, SF_FORMAT_FLAC | SF_FORMAT_PCM_24).samples, 3U);
    EXPECT_EQ(ClippingOf(sound, SF_FORMAT_AU | SF_FORMAT_ULAW).samples, 3U);
    for (const int roomy : {SF_FORMAT_FLOAT, SF_FORMAT_DOUBLE, SF_FORMAT_VORBIS})
        EXPECT_EQ(ClippingOf(sound, SF_FORMAT_WAV | roomy).samples, 0U);
    EXPECT_EQ(ClippingOf(Mono({}), SF_FORMAT_WAV | SF_FORMAT_PCM_16).samples, 0U);
}

TEST(SampleFormat, EveryContainerHasItsOwnFormOrRefuses) {
    const auto folder = std::filesystem::temp_directory_path() / ("samples-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    const auto samples = [&](const char* name, SampleFormat format) {
        const auto layout = kromediatypes::AudioChannelLayout::Mono();
        SoundFileWriter writer(folder / name, {.layout = layout, .frames = 1, .samples = format});
        const float sample = 0.25F;
        const float* const channels[] = {&sample};
        writer.Write(channels, 1);
        writer.Commit();
        return SoundFileReader(folder / name).Encoding() & SF_FORMAT_SUBMASK;
    };
    EXPECT_EQ(samples("a.wav", SampleFormat::k8Bits), SF_FORMAT_PCM_U8);
    EXPECT_EQ(samples("a.aif", SampleFormat::k8Bits), SF_FORMAT_PCM_S8);
    EXPECT_EQ(samples("a.flac", SampleFormat::k24Bits), SF_FORMAT_PCM_24);
    EXPECT_EQ(samples("a.w64", SampleFormat::kDouble), SF_FORMAT_DOUBLE);
    for (const SampleFormat impossible : {SampleFormat::k32Bits, SampleFormat::kFloat})
        EXPECT_THROW(samples("b.flac", impossible), krocore::config::Error);
    EXPECT_THROW(samples("b.ogg", SampleFormat::k16Bits), krocore::config::Error);
    std::filesystem::remove_all(folder);
}

} // namespace
} // namespace qohost
