#include "AudioFileEncodings.h"

#include "krocore/FilePath.h"
#include "krocore/String.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

namespace qohost {

namespace {

using namespace kromediatypes;

constexpr std::pair<std::string_view, int> kContainers[] = {
    {"wav", SF_FORMAT_WAV},   {"wave", SF_FORMAT_WAV}, {"aif", SF_FORMAT_AIFF}, {"aiff", SF_FORMAT_AIFF},
    {"flac", SF_FORMAT_FLAC}, {"ogg", SF_FORMAT_OGG},  {"oga", SF_FORMAT_OGG},  {"caf", SF_FORMAT_CAF},
    {"w64", SF_FORMAT_W64},   {"au", SF_FORMAT_AU},    {"raw", SF_FORMAT_RAW},
};

constexpr std::pair<int, AudioChannelLabel> kPlaces[] = {
    {SF_CHANNEL_MAP_MONO, kAudioChannelLabelMono},
    {SF_CHANNEL_MAP_LEFT, kAudioChannelLabelLeft},
    {SF_CHANNEL_MAP_RIGHT, kAudioChannelLabelRight},
    {SF_CHANNEL_MAP_CENTER, kAudioChannelLabelCenter},
    {SF_CHANNEL_MAP_LFE, kAudioChannelLabelLFE},
    {SF_CHANNEL_MAP_SIDE_LEFT, kAudioChannelLabelLeftSurround},
    {SF_CHANNEL_MAP_SIDE_RIGHT, kAudioChannelLabelRightSurround},
    {SF_CHANNEL_MAP_REAR_LEFT, kAudioChannelLabelLeftRearSurround},
    {SF_CHANNEL_MAP_REAR_RIGHT, kAudioChannelLabelRightRearSurround},
    {SF_CHANNEL_MAP_REAR_CENTER, kAudioChannelLabelCenterSurround},
    {SF_CHANNEL_MAP_FRONT_LEFT, kAudioChannelLabelLeft},
    {SF_CHANNEL_MAP_FRONT_RIGHT, kAudioChannelLabelRight},
    {SF_CHANNEL_MAP_FRONT_CENTER, kAudioChannelLabelCenter},
};

// A plain WAVE file says its length in 32 bits; the header has room in the rest.
constexpr std::uint64_t kLargestPlainWave = 0xFFFF0000;
// So does an AIFF file, with a sign that some programs take as one.
constexpr std::uint64_t kLargestAIFF = 0x7FFF0000;

bool IsFloat(int encoding) {
    const int sample = encoding & SF_FORMAT_SUBMASK;
    return sample == SF_FORMAT_FLOAT || sample == SF_FORMAT_DOUBLE;
}

bool IsWave(int container) {
    return container == SF_FORMAT_WAV || container == SF_FORMAT_WAVEX || container == SF_FORMAT_RF64;
}

int SampleBytes(int encoding) {
    if ((encoding & SF_FORMAT_SUBMASK) == SF_FORMAT_DOUBLE) return 8;
    const int bits = WholeNumberBits(encoding);
    return bits > 0 ? bits / 8 : 4;
}

std::uint64_t SoundBytes(int encoding, std::size_t channels, std::uint64_t frames) {
    return frames * channels * static_cast<std::uint64_t>(SampleBytes(encoding));
}

bool IsPossible(int encoding, int channels, int sampleRate) {
    SF_INFO info{};
    info.format = encoding;
    info.channels = channels;
    info.samplerate = sampleRate;
    return sf_format_check(&info) != 0;
}

// The kind of WAVE file that the source was, if it was one; the extensible kind for channels with places.
int WaveContainer(int like, int channels, std::uint64_t bytes) {
    if (bytes > kLargestPlainWave) return SF_FORMAT_RF64;
    if ((like & SF_FORMAT_TYPEMASK) == SF_FORMAT_WAVEX || channels > 2) return SF_FORMAT_WAVEX;
    return SF_FORMAT_WAV;
}

int PlaceOf(AudioChannelLabel label) {
    const auto* place = std::ranges::find(kPlaces, label, &std::pair<int, AudioChannelLabel>::second);
    return place == std::end(kPlaces) ? SF_CHANNEL_MAP_INVALID : place->first;
}

AudioChannelLabel LabelOf(int place) {
    const auto* found = std::ranges::find(kPlaces, place, &std::pair<int, AudioChannelLabel>::first);
    return found == std::end(kPlaces) ? kAudioChannelLabelUnknown : found->second;
}

// In a layout with only one pair behind, files call it "rear" and users "surround".
void RenameRearPair(std::vector<AudioChannelLabel>& labels) {
    if (std::ranges::count(labels, kAudioChannelLabelLeftSurround) > 0) return;
    std::ranges::replace(labels, kAudioChannelLabelLeftRearSurround, kAudioChannelLabelLeftSurround);
    std::ranges::replace(labels, kAudioChannelLabelRightRearSurround, kAudioChannelLabelRightSurround);
}

} // namespace

int ContainerFor(const std::filesystem::path& path) {
    const std::string extension = krocore::PathText(path.extension());
    return extension.empty() ? 0 : ContainerOfType(std::string_view(extension).substr(1));
}

int ContainerOfType(std::string_view type) {
    for (const auto& [known, container] : kContainers) {
        if (krocore::EqualsIgnoringCase(type, known)) return container;
    }
    return 0;
}

std::optional<int> EncodingFor(int container, int like, int channels, int sampleRate, std::uint64_t frames) {
    const int wanted = like & SF_FORMAT_SUBMASK;
    const int best = IsFloat(like) || wanted == 0 ? SF_FORMAT_FLOAT : SF_FORMAT_PCM_24;
    const std::array<int, 5> samples = {wanted, best, SF_FORMAT_PCM_24, SF_FORMAT_PCM_16, SF_FORMAT_VORBIS};
    for (const int sample : samples) {
        if (container == 0 || sample == 0 || !IsPossible(container | sample, channels, sampleRate)) continue;
        if (container == SF_FORMAT_RAW) return container | sample | SF_ENDIAN_LITTLE;
        if (!IsWave(container)) return container | sample;
        return WaveContainer(like, channels, SoundBytes(sample, static_cast<std::size_t>(channels), frames)) | sample;
    }
    return std::nullopt;
}

bool HasRoomFor(int encoding, std::size_t channels, std::uint64_t frames) {
    return (encoding & SF_FORMAT_TYPEMASK) != SF_FORMAT_AIFF || SoundBytes(encoding, channels, frames) <= kLargestAIFF;
}

int WholeNumberBits(int encoding) {
    switch (encoding & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8: return 8;
    case SF_FORMAT_PCM_16: return 16;
    case SF_FORMAT_PCM_24: return 24;
    case SF_FORMAT_PCM_32: return 32;
    default: return 0;
    }
}

AudioChannelLayout ReadLayout(SNDFILE* file, int channels) {
    std::vector<int> places(static_cast<std::size_t>(channels));
    const int bytes = static_cast<int>(places.size() * sizeof(int));
    if (sf_command(file, SFC_GET_CHANNEL_MAP_INFO, places.data(), bytes) != SF_TRUE) {
        return AudioChannelLayout::ForChannelCount(places.size());
    }
    std::vector<AudioChannelLabel> labels;
    std::ranges::transform(places, std::back_inserter(labels), LabelOf);
    if (std::ranges::count(labels, kAudioChannelLabelUnknown) == channels) {
        return AudioChannelLayout::ForChannelCount(places.size());
    }
    RenameRearPair(labels);
    return AudioChannelLayout(std::move(labels));
}

void WriteLayout(SNDFILE* file, const AudioChannelLayout& layout) {
    std::vector<int> places;
    std::ranges::transform(layout, std::back_inserter(places), PlaceOf);
    if (std::ranges::count(places, SF_CHANNEL_MAP_INVALID) > 0) return;
    // A container that keeps no places refuses; the usual ones for the number are read back then.
    sf_command(file, SFC_SET_CHANNEL_MAP_INFO, places.data(), static_cast<int>(places.size() * sizeof(int)));
}

} // namespace qohost
