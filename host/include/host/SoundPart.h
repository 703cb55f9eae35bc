#pragma once

#include "host/SoundStream.h"

#include <cstdint>

namespace qohost {

// A part of what a reader gives. The reader has to outlive it, and nobody else may read from it.
class SoundPartReader final : public SoundReader {
public:
    // From `begin` to before `end`; what lies behind the sound's end doesn't count. The reader stands at its start and
    // is read up to there. Throws as it does.
    SoundPartReader(SoundReader& whole, std::uint64_t begin, std::uint64_t end);
    // The same at once, wherever the reader stands.
    SoundPartReader(SeekableSoundReader& whole, std::uint64_t begin, std::uint64_t end);

    float SampleRate() const override { return fWhole.SampleRate(); }
    const kromediatypes::AudioChannelLayout& Layout() const override { return fWhole.Layout(); }
    std::uint64_t Frames() const override { return fFrames; }
    std::size_t Read(std::span<float* const> channels, std::size_t frames) override;

private:
    struct Bounds {
        std::uint64_t begin;
        std::uint64_t end;
    };
    SoundPartReader(SoundReader& whole, const Bounds& bounds);
    static Bounds BoundsWithin(const SoundReader& whole, std::uint64_t begin, std::uint64_t end);
    void Skip(std::uint64_t frames);

    SoundReader& fWhole;
    std::uint64_t fFrames;
    std::uint64_t fLeft;
};

} // namespace qohost
