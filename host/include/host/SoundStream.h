#pragma once

#include "kromediatypes/AudioChannelLayout.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace qohost {

// Where sound comes from, block by block: a file, a stream, a sound in memory. One thread.
class SoundReader {
public:
    SoundReader() = default;
    SoundReader(const SoundReader&) = delete;
    SoundReader& operator=(const SoundReader&) = delete;
    virtual ~SoundReader() = default;

    virtual float SampleRate() const = 0; // hertz
    virtual const kromediatypes::AudioChannelLayout& Layout() const = 0;
    // In all, from the start.
    virtual std::uint64_t Frames() const = 0;

    // The next `frames` frames, a buffer a channel; only at the end fewer. Returns how many. Throws
    // krocore::config::Error when there are fewer in all than Frames(), or when they can't be read.
    virtual std::size_t Read(std::span<float* const> channels, std::size_t frames) = 0;
    // The next Read begins at `frame`, beyond the end at the end. What is read then is what would have been read there
    // in order (of MPEG files to the rounding of their decoder, 5e-8). Throws as Read does.
    virtual void Seek(std::uint64_t frame) = 0;
};

// Where sound goes to, block by block. One thread.
class SoundWriter {
public:
    SoundWriter() = default;
    SoundWriter(const SoundWriter&) = delete;
    SoundWriter& operator=(const SoundWriter&) = delete;
    virtual ~SoundWriter() = default;

    // A buffer a channel. Throws krocore::config::Error when they can't be written.
    virtual void Write(std::span<const float* const> channels, std::size_t frames) = 0;
};

} // namespace qohost
