#pragma once

#include "kromediatypes/AudioChannelLayout.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace qohost {

// What will be played: from `position` up to `end`, and then, if it is to loop, from `loopBegin` up to `loopEnd` again
// and again; otherwise that may be where the next playing begins. In samples from the start of the sound.
struct PlaybackPath {
    std::size_t position = 0;
    std::size_t end = 0;
    bool loop = false;
    std::size_t loopBegin = 0;
    std::size_t loopEnd = 0;
};

// Where a PlaybackEngine's sound comes from. Expect, IsReady and Fetch are the sound thread's, or the user-interface
// thread's while the former is kept out: they never allocate, lock or call the system. All else is the user-interface
// thread's.
class PlaybackFeed {
public:
    PlaybackFeed() = default;
    PlaybackFeed(const PlaybackFeed&) = delete;
    PlaybackFeed& operator=(const PlaybackFeed&) = delete;
    virtual ~PlaybackFeed() = default;

    virtual float SampleRate() const noexcept = 0; // hertz
    virtual const kromediatypes::AudioChannelLayout& Layout() const noexcept = 0;
    virtual std::size_t Frames() const noexcept = 0;

    // What it is best prepared for; asked for before every block.
    virtual void Expect(const PlaybackPath& path) noexcept = 0;
    // Whether what is at `frame` can be fetched. Playing waits for it where nothing is heard yet.
    virtual bool IsReady(std::size_t frame) const noexcept = 0;
    // Writes `count` frames of the sound from `frame` on to `offset` in a buffer for each channel; within the sound.
    // Returns how many of them are not there in time, and are silence.
    virtual std::size_t Fetch(std::size_t frame, std::span<std::vector<float>> channels, std::size_t offset,
                              std::size_t count) noexcept = 0;

    // Playing begins, or is over: the sound thread is kept out.
    virtual void SetPlaying(bool /*playing*/) noexcept {}
    // Why something can't be read, as a user is told, once for each reason; empty when there is nothing to tell.
    virtual std::string TakeProblem() { return {}; }
};

} // namespace qohost
