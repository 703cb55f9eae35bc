#pragma once

#include "host/SoundStream.h"

#include <cstdint>

namespace qohost {

// A part of what a reader gives, wherever that stands. The reader has to outlive it, and nobody else may read from it.
class SoundPartReader final : public SoundReader {
public:
    // From `begin` to before `end`; what lies behind the sound's end doesn't count. Throws as the reader does.
    SoundPartReader(SoundReader& whole, std::uint64_t begin, std::uint64_t end);

    float SampleRate() const override { return fWhole.SampleRate(); }
    const kromediatypes::AudioChannelLayout& Layout() const override { return fWhole.Layout(); }
    std::uint64_t Frames() const override { return fEnd - fBegin; }
    std::size_t Read(std::span<float* const> channels, std::size_t frames) override;
    void Seek(std::uint64_t frame) override;

private:
    SoundReader& fWhole;
    std::uint64_t fBegin;
    std::uint64_t fEnd;
    std::uint64_t fPosition = 0; // of the whole
};

} // namespace qohost
