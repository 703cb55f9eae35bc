#pragma once

#include "host/Sound.h"
#include "host/SoundFile.h"
#include "host/SoundStream.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

namespace qohost {

// A sound that can be read at any time, from any place and by several readers at once. It stays as it is; any thread.
class SoundSource {
public:
    SoundSource(const SoundSource&) = delete;
    SoundSource& operator=(const SoundSource&) = delete;
    virtual ~SoundSource() = default;

    float SampleRate() const noexcept { return fSampleRate; } // hertz
    const kromediatypes::AudioChannelLayout& Layout() const noexcept { return fLayout; }
    std::uint64_t Frames() const noexcept { return fFrames; }
    double Seconds() const noexcept { return static_cast<double>(fFrames) / fSampleRate; }

    // At its start, for one thread at a time. The source outlives it. Throws krocore::config::Error when the sound
    // can't be read any more.
    virtual std::unique_ptr<SoundReader> NewReader() const = 0;

    // How its file stores it; 0 for none.
    virtual AudioFileEncoding Encoding() const { return 0; }
    // Null when it is too long for that.
    virtual const Sound* InMemory() const noexcept { return nullptr; }
    // What tells it from any other sound, in other processes too, for what is kept of it. Empty: nothing does.
    virtual std::string Identity() const { return {}; }

protected:
    SoundSource(float sampleRate, kromediatypes::AudioChannelLayout layout, std::uint64_t frames)
        : fSampleRate(sampleRate), fLayout(std::move(layout)), fFrames(frames) {}

private:
    float fSampleRate;
    kromediatypes::AudioChannelLayout fLayout;
    std::uint64_t fFrames;
};

// A sound in memory. `encoding`: how the file stores it that it comes from.
std::shared_ptr<const SoundSource> SourceInMemory(std::shared_ptr<const Sound> sound, AudioFileEncoding encoding = 0);

// A sound file or stream (see SoundFileReader): in memory up to `memory` bytes as floats, and otherwise on the disk,
// where only its beginning is read now. Should a file be written anew meanwhile, its later readers say so. Throws as
// SoundFileReader does.
constexpr std::uint64_t kShortSound = 16 * 1024 * 1024;
std::shared_ptr<const SoundSource> OpenSoundSource(const std::filesystem::path& path, const SoundKind& kind = {},
                                                   std::uint64_t memory = kShortSound);

} // namespace qohost
