#pragma once

#include "host/Sound.h"
#include "host/SoundStream.h"

namespace qohost {

// A sound, or a part of it, as a stream. The sound has to outlive it, and nobody changes it meanwhile.
class SoundInMemoryReader final : public SoundReader {
public:
    explicit SoundInMemoryReader(const Sound& sound) : SoundInMemoryReader(sound, 0, sound.Frames()) {}
    // From `begin` to before `end`; what lies behind the sound's end doesn't count.
    SoundInMemoryReader(const Sound& sound, std::size_t begin, std::size_t end);

    float SampleRate() const override { return fSound.sampleRate; }
    const kromediatypes::AudioChannelLayout& Layout() const override { return fSound.layout; }
    std::uint64_t Frames() const override { return fEnd - fBegin; }
    std::size_t Read(std::span<float* const> channels, std::size_t frames) override;
    void Seek(std::uint64_t frame) override;

private:
    const Sound& fSound;
    std::size_t fBegin;
    std::size_t fEnd;
    std::size_t fNext;
};

// Adds what is written to a sound that has the channels for it, and outlives it.
class SoundInMemoryWriter final : public SoundWriter {
public:
    explicit SoundInMemoryWriter(Sound& sound) : fSound(sound) {}

    void Write(std::span<const float* const> channels, std::size_t frames) override;

private:
    Sound& fSound;
};

} // namespace qohost
