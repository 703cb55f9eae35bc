#pragma once

#include "host/SampleFormat.h"
#include "host/SoundStream.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qohost {

// How a file stores its samples: a container and a sample encoding, in libsndfile's numbers. 0 when nothing is known.
using AudioFileEncoding = int;

// What the name of a file or a stream does not tell about what is in it. It counts where there is no extension of a
// known kind.
struct SoundKind {
    std::string type; // the extension of the kind, "wav", "raw" and so on; empty: found out in reading, WAVE in writing
    int sampleRate = 0; // hertz, of raw sound that is read: samples of 16 bits, the low byte first, without a header
    int channels = 0;   // 1...32, of the same
};

// Whether a name is a kind of sound file that can be written: "wav", "aif", "flac", "ogg", "caf", "w64", "au", "raw".
bool IsSoundType(std::string_view type);

// Reads a sound file or, under the name "-" (see ByteStream.h), a stream, which is kept in a temporary file meanwhile.
// Memory does not follow the length. One thread at a time, which may be any.
class SoundFileReader final : public SoundReader {
public:
    // Throws krocore::config::Error that names the file and the reason: it does not exist, is empty, is no sound file,
    // is cut off, has no channel or more than 32, or can't be read.
    explicit SoundFileReader(const std::filesystem::path& path, const SoundKind& kind = {});
    ~SoundFileReader() override;
    // Another reader of the same file or stream, at its start. Throws as the first did.
    std::unique_ptr<SoundFileReader> ReadAgain() const;
    // Where the sound is: the file, or what a stream is kept in, for as long as there is one of its readers.
    const std::filesystem::path& KeptIn() const;

    float SampleRate() const override;
    // The places that the file names, or those that are usual for the number of channels.
    const kromediatypes::AudioChannelLayout& Layout() const override;
    std::uint64_t Frames() const override;
    AudioFileEncoding Encoding() const;
    std::size_t Read(std::span<float* const> channels, std::size_t frames) override;
    void Seek(std::uint64_t frame) override;

private:
    struct State;

    explicit SoundFileReader(std::unique_ptr<State> state);

    std::unique_ptr<State> fState;
};

// Writes a sound file as krocore::ReplacementFile does, or a stream, which gets all of it at Commit or nothing. Memory
// does not follow the length. One thread at a time, which may be any.
class SoundFileWriter final : public SoundWriter {
public:
    struct Format {
        float sampleRate = 44100; // hertz
        kromediatypes::AudioChannelLayout layout;
        std::uint64_t frames = 0;   // what will be written: it decides on the container for very long sound
        AudioFileEncoding like = 0; // to be near to, where the container can
        std::optional<SampleFormat> samples = std::nullopt; // in any case
    };

    // In the container that the extension of `path` or else the kind names and, where that container can, with the
    // sample encoding of `like`; otherwise the nearest one that loses nothing it need not. Throws
    // krocore::config::Error that names the file and the reason, also when it can't hold the samples that are asked
    // for.
    SoundFileWriter(const std::filesystem::path& path, const Format& format, const SoundKind& kind = {});
    // Without Commit a file stays as it was.
    ~SoundFileWriter() override;

    // Whole numbers are rounded and limited, so that sound that comes from a file of the same width comes out
    // unchanged.
    void Write(std::span<const float* const> channels, std::size_t frames) override;
    void Commit();

    // What of it was limited so far.
    Clipping GetClipping() const;

private:
    struct State;

    std::unique_ptr<State> fState;
};

} // namespace qohost
