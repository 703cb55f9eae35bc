#include "AudioFileEncodings.h"
#include "PromisedLength.h"
#include "SoundFileHandle.h"
#include "SoundFileProblem.h"
#include "host/ByteStream.h"
#include "host/SoundFile.h"
#include "krocore/TemporaryFile.h"

#include <algorithm>
#include <system_error>
#include <utility>
#include <vector>

namespace qohost {

namespace {

namespace fs = std::filesystem;
using krocore::TemporaryFile;

constexpr const char* kCutOff = "$$$/qohost/AudioFile/CutOff=@0: the file is cut off.";
constexpr const char* kUnreadable = "$$$/qohost/AudioFile/Unreadable=@0: the file can't be read (@1).";

void CheckReadable(const fs::path& path, const std::string& name) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) RefuseSound("$$$/qohost/AudioFile/Missing=@0: there is no such file.", name);
    if (fs::is_directory(status)) RefuseSound("$$$/qohost/AudioFile/Folder=@0: this is a folder, not a file.", name);
    if (!fs::is_regular_file(status)) {
        RefuseSound("$$$/qohost/AudioFile/NoFile=@0: this is no file but a device or a pipe. The name - reads the "
                    "standard input.",
                    name);
    }
    if (fs::file_size(path, error) == 0) RefuseSound("$$$/qohost/AudioFile/Empty=@0: the file is empty.", name);
}

[[noreturn]] void RefuseToOpen(const fs::path& path, const std::string& name) {
    const int problem = sf_error(nullptr);
    // Most containers put the sound last, but a file may end before it begins.
    if (IsCutOff(path)) RefuseSound(kCutOff, name);
    switch (problem) {
    case SF_ERR_UNRECOGNISED_FORMAT:
        RefuseSound("$$$/qohost/AudioFile/NoSound=@0: this is no sound file of a known kind.", name);
    case SF_ERR_MALFORMED_FILE: RefuseSound("$$$/qohost/AudioFile/Damaged=@0: the file is damaged.", name);
    case SF_ERR_UNSUPPORTED_ENCODING:
        RefuseSound("$$$/qohost/AudioFile/Unsupported=@0: sound that is stored like this can't be read.", name);
    default: RefuseSound(kUnreadable, name, ReasonOf(sf_strerror(nullptr)));
    }
}

bool IsRaw(const fs::path& path, const SoundKind& kind) {
    const int container = ContainerFor(path);
    return container == SF_FORMAT_RAW || (container == 0 && ContainerOfType(kind.type) == SF_FORMAT_RAW);
}

// Raw sound says nothing about itself.
SF_INFO RawInfo(const std::string& name, const SoundKind& kind) {
    if (kind.sampleRate <= 0 || kind.channels <= 0) {
        RefuseSound("$$$/qohost/AudioFile/Raw=@0: raw sound doesn't tell its sample rate and channels: give both.",
                    name);
    }
    SF_INFO info{};
    info.format = SF_FORMAT_RAW | SF_FORMAT_PCM_16 | SF_ENDIAN_LITTLE;
    info.samplerate = kind.sampleRate;
    info.channels = kind.channels;
    return info;
}

// What comes from a stream, in a file that can be read twice.
std::shared_ptr<const TemporaryFile> Keep(const fs::path& path) {
    std::shared_ptr<const TemporaryFile> kept;
    if (!IsStream(path)) return kept;
    try {
        kept = std::make_shared<const TemporaryFile>(fs::temp_directory_path());
    } catch (const fs::filesystem_error& error) {
        RefuseSound(kUnreadable, InputName(path), error.code().message());
    }
    KeepStream(path, kept->Path());
    return kept;
}

// Some streams don't say how long they are: they are read once to know.
sf_count_t Count(SNDFILE* file, int channels) {
    constexpr sf_count_t kBlockFrames = 16384;
    std::vector<float> block(static_cast<std::size_t>(kBlockFrames * channels));
    sf_count_t frames = 0;
    while (const sf_count_t count = sf_readf_float(file, block.data(), kBlockFrames))
        frames += count;
    return frames;
}

// How far back a decoder has to begin to be the same at a place as one that comes from the start: longer than two of
// Vorbis' longest blocks (8192), than the 80 ms that RFC 7845 asks for Opus, and than what MPEG layers keep in reserve.
std::uint64_t FramesBefore(int format) {
    constexpr std::uint64_t kFrames = 16384;
    const int container = format & SF_FORMAT_TYPEMASK;
    return container == SF_FORMAT_OGG || container == SF_FORMAT_MPEG ? kFrames : 0;
}

} // namespace

struct SoundFileReader::State {
    std::string name;
    std::shared_ptr<const TemporaryFile> kept;
    fs::path path;
    SF_INFO raw{}; // empty: the file tells
    SF_INFO info{};
    SoundFileHandle file;
    kromediatypes::AudioChannelLayout layout;
    std::uint64_t position = 0;
    std::vector<float> interleaved;

    void Open() {
        info = raw;
        file = OpenSoundFile(path, SFM_READ, info);
        if (!file) RefuseToOpen(path, name);
        position = 0;
    }
    void OpenChecked() {
        CheckReadable(path, name);
        Open();
        CheckChannels(name, info.channels);
        if (raw.format == 0 && IsCutOff(path)) RefuseSound(kCutOff, name);
        layout = ReadLayout(file.get(), info.channels);
    }
    void Skip(std::uint64_t frames) {
        constexpr std::uint64_t kBlockFrames = 16384;
        while (frames > 0) {
            const auto count = static_cast<std::size_t>(std::min(frames, kBlockFrames));
            ReadInterleaved(count);
            frames -= count;
        }
    }
    void ReadInterleaved(std::size_t frames) {
        interleaved.resize(frames * static_cast<std::size_t>(info.channels));
        const sf_count_t read = sf_readf_float(file.get(), interleaved.data(), static_cast<sf_count_t>(frames));
        if (static_cast<std::size_t>(read) < frames || sf_error(file.get()) != SF_ERR_NO_ERROR)
            RefuseSound(kCutOff, name);
        position += frames;
    }
};

SoundFileReader::SoundFileReader(std::unique_ptr<State> state) : fState(std::move(state)) {
}

SoundFileReader::SoundFileReader(const fs::path& path, const SoundKind& kind) : fState(std::make_unique<State>()) {
    State& state = *fState;
    state.name = InputName(path);
    state.kept = Keep(path);
    state.path = state.kept ? state.kept->Path() : path;
    if (IsRaw(path, kind)) {
        CheckReadable(state.path, state.name);
        state.raw = RawInfo(state.name, kind);
    }
    state.OpenChecked();
    if (state.info.frames == SF_COUNT_MAX) {
        const sf_count_t frames = Count(state.file.get(), state.info.channels);
        state.Open();
        state.info.frames = frames;
    }
}

std::unique_ptr<SoundFileReader> SoundFileReader::ReadAgain() const {
    auto state = std::make_unique<State>();
    state->name = fState->name;
    state->kept = fState->kept;
    state->path = fState->path;
    state->raw = fState->raw;
    state->OpenChecked();
    if (state->info.frames == SF_COUNT_MAX) state->info.frames = fState->info.frames;
    return std::unique_ptr<SoundFileReader>(new SoundFileReader(std::move(state)));
}

SoundFileReader::~SoundFileReader() = default;

float SoundFileReader::SampleRate() const {
    return static_cast<float>(fState->info.samplerate);
}

const kromediatypes::AudioChannelLayout& SoundFileReader::Layout() const {
    return fState->layout;
}

std::uint64_t SoundFileReader::Frames() const {
    return static_cast<std::uint64_t>(fState->info.frames);
}

const fs::path& SoundFileReader::KeptIn() const {
    return fState->path;
}

AudioFileEncoding SoundFileReader::Encoding() const {
    return fState->info.format;
}

std::size_t SoundFileReader::Read(std::span<float* const> channels, std::size_t frames) {
    State& state = *fState;
    frames = static_cast<std::size_t>(std::min<std::uint64_t>(frames, Frames() - state.position));
    state.ReadInterleaved(frames);
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
        for (std::size_t i = 0; i < frames; ++i)
            channels[channel][i] = state.interleaved[i * channels.size() + channel];
    return frames;
}

// Some encodings can only be read in order, and the first frames behind a place of others lack what goes on from
// before.
void SoundFileReader::Seek(std::uint64_t frame) {
    State& state = *fState;
    frame = std::min(frame, Frames());
    const std::uint64_t start = frame - std::min(frame, FramesBefore(state.info.format));
    if (frame == Frames()) {
        state.position = frame;
    } else if (sf_seek(state.file.get(), static_cast<sf_count_t>(start), SEEK_SET) >= 0) {
        state.position = start;
        state.Skip(frame - start);
    } else {
        const sf_count_t frames = state.info.frames;
        state.Open();
        state.info.frames = frames;
        state.Skip(frame);
    }
}

} // namespace qohost
