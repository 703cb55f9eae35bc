#pragma once

#include "qoc/components/PitchClock.h"
#include "qoc/components/SoundHistory.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace soundtouch {
class SoundTouch;
}

namespace qoc::components {

// Lengths of the pieces that a sound is cut into to be stretched, and of their overlaps, in samples.
struct SpliceLengths {
    std::size_t sequence = 0; // 0: chosen by how far the sound is stretched
    std::size_t overlap = 0;
};

// Makes a sound longer or shorter without changing its pitch, following a PitchClock: the sample at a position of the
// clock is the sound of the frame with that position. Splices it out of overlapping pieces with SoundTouch, of which a
// single thing, the growth of its buffers, is done with when the constructor returns. Up to sixteen channels at a time
// are spliced at the same places. Owned by the pitch shifter; made on the user-interface thread, used on the sound
// thread.
class SpliceStretcher {
public:
    // Frames that are fed at a time.
    static constexpr std::size_t kChunk = 64;
    // Of the ratios of the clock; the lengths below are for these.
    static constexpr double kLowestRatio = 0.5;
    static constexpr double kHighestRatio = 2;

    SpliceStretcher(std::size_t channels, double sampleRate, const SpliceLengths& lengths);
    ~SpliceStretcher();
    SpliceStretcher(const SpliceStretcher&) = delete;
    SpliceStretcher& operator=(const SpliceStretcher&) = delete;

    // Frames by which the output is behind the input at most, when sequences are no longer than `longestSequence`.
    static std::size_t LongestDelay(double sampleRate, std::size_t longestSequence);

    // Faster, and less careful where to splice.
    void SetQuickSeek(bool quick) noexcept;

    // Forgets all sound; `frame`, which the clock has, is fed next.
    void Start(std::int64_t frame, const PitchClock& clock) noexcept;
    // Takes over the next kChunk frames from the history, which has them, as the clock has.
    void Feed(const SoundHistory& history, const PitchClock& clock) noexcept;
    // The frame that is fed next.
    std::int64_t Now() const noexcept { return fStart + fFed; }
    // The sample at a whole position of the clock and those behind it.
    const float* At(std::size_t channel, std::int64_t position) const noexcept {
        return fOutput.At(channel, position - fOrigin);
    }

private:
    void Warm(double tempo);
    double NextTempo(const PitchClock& clock) const noexcept;
    void FeedGroup(std::size_t group, const SoundHistory& history) noexcept;
    void Receive() noexcept;
    std::size_t ChannelsIn(std::size_t group) const noexcept;

    std::size_t fChannels;
    double fHalfSeek; // half the room in which a splice is looked for, frames
    std::vector<std::unique_ptr<soundtouch::SoundTouch>> fGroups;
    std::vector<float> fInterleaved;
    std::vector<std::vector<float>> fPlanes;
    std::vector<const float*> fPlanePointers;
    SoundHistory fOutput;
    std::int64_t fStart = 0;  // frame that was fed first
    std::int64_t fOrigin = 0; // its whole position
    std::int64_t fFed = 0;    // frames since
};

} // namespace qoc::components
