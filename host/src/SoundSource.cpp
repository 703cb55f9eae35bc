#include "host/SoundSource.h"

#include "SoundFileProblem.h"
#include "host/ByteStream.h"
#include "host/SoundInMemory.h"
#include "krocore/FilePath.h"

#include <algorithm>
#include <system_error>
#include <vector>

namespace qohost {

namespace {

namespace fs = std::filesystem;

class MemorySource final : public SoundSource {
public:
    MemorySource(std::shared_ptr<const Sound> sound, AudioFileEncoding encoding)
        : SoundSource(sound->sampleRate, sound->layout, sound->Frames()), fSound(std::move(sound)),
          fEncoding(encoding) {}

    std::unique_ptr<SoundReader> NewReader() const override { return std::make_unique<SoundInMemoryReader>(*fSound); }
    AudioFileEncoding Encoding() const override { return fEncoding; }
    const Sound* InMemory() const noexcept override { return fSound.get(); }

private:
    std::shared_ptr<const Sound> fSound;
    AudioFileEncoding fEncoding;
};

// A file as it was at one time.
std::string StateOf(const fs::path& file) {
    std::error_code error;
    const auto bytes = fs::file_size(file, error);
    const auto time = fs::last_write_time(file, error);
    return std::to_string(bytes) + '\n' + std::to_string(time.time_since_epoch().count());
}

class FileSource final : public SoundSource {
public:
    FileSource(const fs::path& path, std::unique_ptr<SoundFileReader> reader)
        : SoundSource(reader->SampleRate(), reader->Layout(), reader->Frames()), fPath(path),
          fReader(std::move(reader)), fState(StateOf(fReader->KeptIn())) {}

    std::unique_ptr<SoundReader> NewReader() const override {
        auto reader = fReader->ReadAgain();
        if (StateOf(fReader->KeptIn()) != fState)
            RefuseSound("$$$/qohost/AudioFile/Changed=@0: the file has changed since it was opened. Open it again.",
                        InputName(fPath));
        return reader;
    }
    AudioFileEncoding Encoding() const override { return fReader->Encoding(); }
    std::string Identity() const override {
        std::error_code error;
        const fs::path place = fs::canonical(fPath, error);
        return IsStream(fPath) || error ? std::string() : krocore::PathText(place) + '\n' + fState;
    }

private:
    fs::path fPath;
    std::unique_ptr<SoundFileReader> fReader; // never read from: what others are made of
    std::string fState;
};

std::shared_ptr<const Sound> ReadAll(SoundReader& reader) {
    auto sound = std::make_shared<Sound>(
        Sound::Silent(reader.SampleRate(), reader.Layout(), static_cast<std::size_t>(reader.Frames())));
    std::vector<float*> channels;
    for (std::vector<float>& channel : sound->channels)
        channels.push_back(channel.data());
    reader.Read(channels, sound->Frames());
    return sound;
}

} // namespace

std::shared_ptr<const SoundSource> SourceInMemory(std::shared_ptr<const Sound> sound, AudioFileEncoding encoding) {
    return std::make_shared<const MemorySource>(std::move(sound), encoding);
}

std::shared_ptr<const SoundSource> OpenSoundSource(const fs::path& path, const SoundKind& kind, std::uint64_t memory) {
    auto reader = std::make_unique<SoundFileReader>(path, kind);
    const std::uint64_t room = memory / (reader->Layout().size() * sizeof(float));
    if (reader->Frames() > room) return std::make_shared<const FileSource>(path, std::move(reader));
    const AudioFileEncoding encoding = reader->Encoding();
    return SourceInMemory(ReadAll(*reader), encoding);
}

} // namespace qohost
