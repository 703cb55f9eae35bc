#include "host/AudioFile.h"

#include "AudioFileEncodings.h"
#include "SoundFileHandle.h"
#include "kroaudiofilterhost/AudioFilter.h"
#include "krocore/Localizer.h"
#include "krocore/ReplacementFile.h"
#include "krocore/config/Error.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

namespace qohost {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kChunkFrames = 16384;
constexpr int kMaximumChannels = static_cast<int>(kroaudiofilterhost::AudioFilter::kMaximumChannels);

[[noreturn]] void Refuse(const char* key, const fs::path& path, std::string_view detail = {}) {
    const krocore::string16 text = krocore::ReplacePlaceholders(
        krocore::Localize(key), {krocore::ToUTF16(path.string()), krocore::ToUTF16(detail)});
    throw krocore::config::Error(krocore::ToStdString(text));
}

void CheckReadable(const fs::path& path) {
    std::error_code error;
    if (!fs::exists(path, error)) Refuse("$$$/qohost/AudioFile/Missing=@0: there is no such file.", path);
    if (fs::is_directory(path, error)) Refuse("$$$/qohost/AudioFile/Folder=@0: this is a folder, not a file.", path);
    if (fs::is_regular_file(path, error) && fs::file_size(path, error) == 0) {
        Refuse("$$$/qohost/AudioFile/Empty=@0: the file is empty.", path);
    }
}

// libsndfile writes "System error : No space left on device."; nothing of it but the reason is for a user.
std::string ReasonOf(const char* text) {
    constexpr std::string_view kPrefix = "System error : ";
    std::string_view reason = text;
    if (reason.starts_with(kPrefix)) reason.remove_prefix(kPrefix.size());
    if (reason.ends_with('.')) reason.remove_suffix(1);
    return std::string(reason);
}

// A RIFF or IFF file says in its first chunk how long it is. What was recorded to a pipe says a length that is too
// large for it instead.
bool IsCutOff(const fs::path& path) {
    constexpr std::size_t kHeaderBytes = 8;
    constexpr std::uint64_t kUnknownLength = 0x7FFF0000;
    std::array<unsigned char, kHeaderBytes> header{};
    std::ifstream stream(path, std::ios::binary);
    if (!stream.read(reinterpret_cast<char*>(header.data()), kHeaderBytes)) return false;
    const std::string_view id(reinterpret_cast<const char*>(header.data()), 4);
    if (id != "RIFF" && id != "FORM") return false;
    if (id == "RIFF") std::reverse(header.begin() + 4, header.end());
    std::uint64_t length = 0;
    for (std::size_t i = 4; i < kHeaderBytes; ++i)
        length = length << 8U | header[i];
    std::error_code error;
    return length < kUnknownLength && length + kHeaderBytes > fs::file_size(path, error);
}

[[noreturn]] void RefuseToOpen(const fs::path& path) {
    // Most containers put the sound last, but a file may end before it begins.
    if (IsCutOff(path)) Refuse("$$$/qohost/AudioFile/CutOff=@0: the file is cut off.", path);
    switch (sf_error(nullptr)) {
    case SF_ERR_UNRECOGNISED_FORMAT:
        Refuse("$$$/qohost/AudioFile/NoSound=@0: this is no sound file of a known kind.", path);
    case SF_ERR_MALFORMED_FILE: Refuse("$$$/qohost/AudioFile/Damaged=@0: the file is damaged.", path);
    case SF_ERR_UNSUPPORTED_ENCODING:
        Refuse("$$$/qohost/AudioFile/Unsupported=@0: sound that is stored like this can't be read.", path);
    default:
        Refuse("$$$/qohost/AudioFile/Unreadable=@0: the file can't be read (@1).", path,
               ReasonOf(sf_strerror(nullptr)));
    }
}

void CheckChannels(const fs::path& path, int channels) {
    if (channels >= 1 && channels <= kMaximumChannels) return;
    Refuse("$$$/qohost/AudioFile/Channels=@0: the file has @1 channels; 1 to 32 are possible.", path,
           std::to_string(channels));
}

// Until the end, whatever the header promises: a wrong promise costs no memory.
void ReadSamples(SNDFILE* file, Sound& sound) {
    const std::size_t channels = sound.channels.size();
    std::vector<float> chunk(kChunkFrames * channels);
    for (;;) {
        const auto frames = static_cast<std::size_t>(sf_readf_float(file, chunk.data(), kChunkFrames));
        if (frames == 0) return;
        for (std::size_t channel = 0; channel < channels; ++channel) {
            for (std::size_t i = 0; i < frames; ++i)
                sound.channels[channel].push_back(chunk[i * channels + channel]);
        }
    }
}

std::int32_t ToWholeNumber(float sample, int bits) {
    const double scale = std::ldexp(1.0, bits - 1);
    const double rounded = std::nearbyint(static_cast<double>(sample) * scale);
    const double limited = std::isnan(rounded) ? 0 : std::clamp(rounded, -scale, scale - 1);
    return static_cast<std::int32_t>(static_cast<std::int64_t>(limited) << (32 - bits));
}

// libsndfile's own conversion from floats neither rounds nor gives back what it has read; so it gets whole numbers.
bool WriteWholeNumbers(SNDFILE* file, const std::vector<float>& chunk, sf_count_t frames, int bits) {
    std::vector<std::int32_t> numbers(chunk.size());
    std::ranges::transform(chunk, numbers.begin(), [bits](float sample) { return ToWholeNumber(sample, bits); });
    return sf_writef_int(file, numbers.data(), frames) == frames;
}

bool WriteSamples(SNDFILE* file, const Sound& sound, int encoding) {
    const int bits = WholeNumberBits(encoding);
    const std::size_t channels = sound.channels.size();
    std::vector<float> chunk;
    for (std::size_t start = 0; start < sound.Frames(); start += kChunkFrames) {
        const std::size_t frames = std::min(kChunkFrames, sound.Frames() - start);
        chunk.resize(frames * channels);
        for (std::size_t channel = 0; channel < channels; ++channel) {
            for (std::size_t i = 0; i < frames; ++i)
                chunk[i * channels + channel] = sound.channels[channel][start + i];
        }
        const auto count = static_cast<sf_count_t>(frames);
        const bool isWritten = bits > 0 ? WriteWholeNumbers(file, chunk, count, bits)
                                        : sf_writef_float(file, chunk.data(), count) == count;
        if (!isWritten) return false;
    }
    return true;
}

int ChooseEncoding(const fs::path& path, const Sound& sound, AudioFileEncoding like) {
    if (ContainerFor(path) == 0) {
        Refuse("$$$/qohost/AudioFile/Extension=@0: no kind of sound file has this extension. Possible: wav, aif, flac, "
               "ogg, caf, w64, au.",
               path);
    }
    const auto encoding = EncodingFor(path, like, static_cast<int>(sound.channels.size()),
                                      static_cast<int>(std::lround(sound.sampleRate)), sound.Frames());
    if (!encoding) {
        Refuse("$$$/qohost/AudioFile/NotInContainer=@0: this kind of file can't hold @1 channels at this sample rate.",
               path, std::to_string(sound.channels.size()));
    }
    return *encoding;
}

void WriteContents(const krocore::ReplacementFile& replacement, const Sound& sound, int encoding) {
    SF_INFO info{};
    info.format = encoding;
    info.channels = static_cast<int>(sound.channels.size());
    info.samplerate = static_cast<int>(std::lround(sound.sampleRate));
    SoundFileHandle file = OpenSoundFile(replacement.Path(), SFM_WRITE, info);
    if (!file) replacement.Fail(ReasonOf(sf_strerror(nullptr)));
    sf_command(file.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
    WriteLayout(file.get(), sound.layout);
    if (!WriteSamples(file.get(), sound, encoding)) replacement.Fail(ReasonOf(sf_strerror(file.get())));
    sf_write_sync(file.get());
    if (const int error = sf_close(file.release()); error != 0)
        replacement.Fail(ReasonOf(sf_error_number(error)));
}

} // namespace

AudioFile ReadAudioFile(const fs::path& path) {
    CheckReadable(path);
    SF_INFO info{};
    const SoundFileHandle file = OpenSoundFile(path, SFM_READ, info);
    if (!file) RefuseToOpen(path);
    CheckChannels(path, info.channels);
    AudioFile result;
    result.encoding = info.format;
    result.sound.sampleRate = static_cast<float>(info.samplerate);
    result.sound.layout = ReadLayout(file.get(), info.channels);
    result.sound.channels.resize(static_cast<std::size_t>(info.channels));
    ReadSamples(file.get(), result.sound);
    const bool isShort = result.sound.Frames() < static_cast<std::uint64_t>(info.frames) && info.frames != SF_COUNT_MAX;
    if (isShort || sf_error(file.get()) != SF_ERR_NO_ERROR || IsCutOff(path)) {
        Refuse("$$$/qohost/AudioFile/CutOff=@0: the file is cut off.", path);
    }
    return result;
}

void WriteAudioFile(const fs::path& path, const Sound& sound, AudioFileEncoding like) {
    CheckChannels(path, static_cast<int>(sound.channels.size()));
    const int encoding = ChooseEncoding(path, sound, like);
    krocore::ReplacementFile replacement(path);
    WriteContents(replacement, sound, encoding);
    replacement.Commit();
}

} // namespace qohost
