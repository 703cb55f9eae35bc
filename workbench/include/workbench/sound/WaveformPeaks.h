#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace workbench {

// The lowest and highest samples of equally long stretches of a sound, over all channels: enough for any picture of the
// whole, and half a megabyte at most. One thread adds, others see how far it has come.
class WaveformPeaks {
public:
    struct Range {
        float low = 0;
        float high = 0;
    };

    // Nothing is known yet of a sound of that length.
    explicit WaveformPeaks(std::uint64_t frames = 0);

    // The next frames of the sound, a buffer a channel.
    void Add(std::span<const float* const> channels, std::size_t frames) noexcept;
    // All of it, as Ranges gave it for a sound as long; before anything is added. False when it is not as long.
    bool Set(std::span<const Range> ranges);

    std::uint64_t KnownFrames() const noexcept;
    bool IsComplete() const noexcept { return fKnown.load(std::memory_order_acquire) == fRanges.size(); }
    // Of the frames from `begin` up to `end`, widened to whole stretches. Nothing beyond what is known.
    Range Between(double begin, double end) const noexcept;
    // What is known.
    std::span<const Range> Ranges() const noexcept;

private:
    std::uint64_t fFrames;
    std::size_t fStretch; // frames
    std::vector<Range> fRanges;
    std::atomic<std::size_t> fKnown{0}; // ranges that will not change any more
    std::uint64_t fAdded = 0;           // frames
};

} // namespace workbench
