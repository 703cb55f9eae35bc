#pragma once

#include "host/PlaybackFeed.h"
#include "host/SoundSource.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace qohost {

// Feeds a sound that is in memory: always there.
class MemoryFeed final : public PlaybackFeed {
public:
    // Of a source that has it there.
    explicit MemoryFeed(std::shared_ptr<const SoundSource> source)
        : fSource(std::move(source)), fSound(*fSource->InMemory()) {}

    float SampleRate() const noexcept override { return fSound.sampleRate; }
    const kromediatypes::AudioChannelLayout& Layout() const noexcept override { return fSound.layout; }
    std::size_t Frames() const noexcept override { return fSound.Frames(); }
    void Expect(const PlaybackPath& /*path*/) noexcept override {}
    bool IsReady(std::size_t /*frame*/) const noexcept override { return true; }
    std::size_t Fetch(std::size_t frame, std::span<std::vector<float>> channels, std::size_t offset,
                      std::size_t count) noexcept override {
        for (std::size_t channel = 0; channel < channels.size(); ++channel)
            std::copy_n(fSound.channels[channel].data() + frame, count, channels[channel].data() + offset);
        return 0;
    }

private:
    std::shared_ptr<const SoundSource> fSource;
    const Sound& fSound;
};

} // namespace qohost
