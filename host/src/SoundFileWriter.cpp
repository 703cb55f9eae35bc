#include "AudioFileEncodings.h"
#include "SoundFileProblem.h"
#include "WrittenFile.h"
#include "host/ByteStream.h"
#include "host/SoundFile.h"
#include "krocore/ReplacementFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <vector>

namespace qohost {

namespace {

namespace fs = std::filesystem;

std::int32_t ToWholeNumber(float sample, int bits) {
    const double scale = std::ldexp(1.0, bits - 1);
    const double rounded = std::nearbyint(static_cast<double>(sample) * scale);
    const double limited = std::isnan(rounded) ? 0 : std::clamp(rounded, -scale, scale - 1);
    return static_cast<std::int32_t>(static_cast<std::int64_t>(limited) << (32 - bits));
}

int ContainerToWrite(const fs::path& path, const std::string& name, const SoundKind& kind) {
    if (const int container = ContainerFor(path); container != 0) return container;
    if (const int container = ContainerOfType(kind.type); container != 0) return container;
    if (IsStream(path)) return SF_FORMAT_WAV;
    RefuseSound(
        "$$$/qohost/AudioFile/Extension=@0: no kind of sound file has this extension. Possible: wav, aif, flac, "
        "ogg, caf, w64, au, raw.",
        name);
}

// In the order of SampleFormat. Containers store 8 bits with a sign, as is usual for most, or only without one.
constexpr std::array<std::initializer_list<int>, 6> kSampleEncodings = {{
    {SF_FORMAT_PCM_S8, SF_FORMAT_PCM_U8},
    {SF_FORMAT_PCM_16},
    {SF_FORMAT_PCM_24},
    {SF_FORMAT_PCM_32},
    {SF_FORMAT_FLOAT},
    {SF_FORMAT_DOUBLE},
}};

int WithSamples(int container, const std::string& name, const SoundFileWriter::Format& format) {
    if (!format.samples) return format.like;
    const auto channels = static_cast<int>(format.layout.size());
    for (const int samples : kSampleEncodings[static_cast<std::size_t>(*format.samples)]) {
        const int wanted = (format.like & ~SF_FORMAT_SUBMASK) | samples;
        const auto possible =
            EncodingFor(container, wanted, channels, static_cast<int>(std::lround(format.sampleRate)), format.frames);
        if (possible && (*possible & SF_FORMAT_SUBMASK) == samples) return wanted;
    }
    RefuseSound("$$$/qohost/AudioFile/Samples=@0: this kind of file can't hold such samples.", name);
}

int ChooseEncoding(int container, const std::string& name, const SoundFileWriter::Format& format) {
    const std::size_t channels = format.layout.size();
    const auto encoding = EncodingFor(container, WithSamples(container, name, format), static_cast<int>(channels),
                                      static_cast<int>(std::lround(format.sampleRate)), format.frames);
    if (!encoding) {
        RefuseSound("$$$/qohost/AudioFile/NotInContainer=@0: this kind of file can't hold @1 channels at this sample "
                    "rate.",
                    name, std::to_string(channels));
    }
    if (!HasRoomFor(*encoding, channels, format.frames)) {
        RefuseSound("$$$/qohost/AudioFile/TooLong=@0: this kind of file can't hold so much sound. Possible: wav, caf, "
                    "w64.",
                    name);
    }
    return *encoding;
}

} // namespace

bool IsSoundType(std::string_view type) {
    return ContainerOfType(type) != 0;
}

// A stream's file is kept apart until it is complete.
struct SoundFileWriter::State {
    explicit State(const fs::path& file) : path(file), name(OutputName(file)) {}

    fs::path path;
    std::string name;
    std::optional<krocore::ReplacementFile> replacement;
    std::optional<krocore::TemporaryFile> kept;
    std::optional<WrittenFile> file;
    int bits = 0; // of whole numbers
    std::optional<ClippingMeter> clipping;
    std::vector<float> interleaved;
    std::vector<std::int32_t> numbers;

    const fs::path& FilePath() const { return replacement ? replacement->Path() : kept->Path(); }

    void MakeFile() {
        try {
            if (IsStream(path))
                kept.emplace(fs::temp_directory_path());
            else
                replacement.emplace(path);
        } catch (const fs::filesystem_error& error) {
            Fail(error.code().message());
        }
    }

    [[noreturn]] void Fail(const std::string& reason) const {
        if (replacement) replacement->Fail(reason);
        RefuseSound("$$$/qohost/AudioFile/Unwritable=@0: the sound can't be written (@1).", name, reason);
    }
    void CheckFile() const {
        if (const std::string problem = file->Problem(); !problem.empty()) Fail(problem);
    }
};

SoundFileWriter::SoundFileWriter(const fs::path& path, const Format& format, const SoundKind& kind)
    : fState(std::make_unique<State>(path)) {
    State& state = *fState;
    CheckChannels(state.name, static_cast<int>(format.layout.size()));
    SF_INFO info{};
    info.format = ChooseEncoding(ContainerToWrite(path, state.name, kind), state.name, format);
    info.channels = static_cast<int>(format.layout.size());
    info.samplerate = static_cast<int>(std::lround(format.sampleRate));
    state.bits = WholeNumberBits(info.format);
    state.clipping.emplace(info.format);
    state.MakeFile();
    state.file.emplace(state.FilePath(), info);
    state.CheckFile();
    sf_command(state.file->Handle(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
    WriteLayout(state.file->Handle(), format.layout);
}

SoundFileWriter::~SoundFileWriter() = default;

// libsndfile's own conversion from floats neither rounds nor gives back what it has read; so it gets whole numbers.
void SoundFileWriter::Write(std::span<const float* const> channels, std::size_t frames) {
    State& state = *fState;
    state.interleaved.resize(frames * channels.size());
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
        for (std::size_t i = 0; i < frames; ++i)
            state.interleaved[i * channels.size() + channel] = channels[channel][i];
    state.clipping->Measure(channels, frames);
    const auto count = static_cast<sf_count_t>(frames);
    sf_count_t written = 0;
    if (state.bits > 0) {
        state.numbers.resize(state.interleaved.size());
        std::ranges::transform(state.interleaved, state.numbers.begin(),
                               [&](float sample) { return ToWholeNumber(sample, state.bits); });
        written = sf_writef_int(state.file->Handle(), state.numbers.data(), count);
    } else {
        written = sf_writef_float(state.file->Handle(), state.interleaved.data(), count);
    }
    state.CheckFile();
    if (written != count) state.Fail(ReasonOf(sf_strerror(state.file->Handle())));
}

Clipping SoundFileWriter::GetClipping() const {
    return fState->clipping->Result();
}

void SoundFileWriter::Commit() {
    State& state = *fState;
    state.file->Close();
    state.CheckFile();
    if (state.replacement)
        state.replacement->Commit();
    else
        SendFile(state.kept->Path(), state.path);
}

} // namespace qohost
