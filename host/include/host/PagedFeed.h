#pragma once

#include "host/PlaybackFeed.h"
#include "host/SoundSource.h"

#include <cstddef>
#include <memory>
#include <string>

namespace qohost {

// Plays a sound of any length from some seconds of it in memory: pages, which are read before they are needed. Without
// a thread of its own: somebody calls Serve often enough, on any one thread at a time, that of the sound excepted.
class PagedFeed : public PlaybackFeed {
public:
    // `pageFrames`: more than a block has; 0 for what suits the sound.
    explicit PagedFeed(std::shared_ptr<const SoundSource> source, std::size_t pageFrames = 0);
    ~PagedFeed() override;

    float SampleRate() const noexcept override;
    const kromediatypes::AudioChannelLayout& Layout() const noexcept override;
    std::size_t Frames() const noexcept override;
    void Expect(const PlaybackPath& path) noexcept override;
    bool IsReady(std::size_t frame) const noexcept override;
    std::size_t Fetch(std::size_t frame, std::span<std::vector<float>> channels, std::size_t offset,
                      std::size_t count) noexcept override;
    void SetPlaying(bool playing) noexcept override;
    std::string TakeProblem() override;

    // Reads what is expected. What can't be read is silence, and TakeProblem says why; it is tried again when
    // playing comes back to it or begins anew.
    void Serve() noexcept;

private:
    struct State;

    std::unique_ptr<State> fState;
};

// A feed of a sound in memory, or of pages that a thread of its own reads.
std::unique_ptr<PlaybackFeed> FeedFrom(std::shared_ptr<const SoundSource> source);

} // namespace qohost
