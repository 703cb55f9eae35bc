#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qoc::dsp {

// The last samples of several channels, readable in one piece from any of them on. Times count samples from 0, the
// first after Reset; before it there was silence. Samples that are no numbers or infinite are kept as 0, so that
// nothing that reads the history has to expect them. Owned by the effect that reads it.
class HistoryBuffer {
public:
    // `capacity` is a power of two. Allocates, and resets.
    void Prepare(std::size_t channels, std::size_t capacity);
    void Reset() noexcept;

    // The time of the sample that is written next.
    std::int64_t Now() const noexcept { return fNow; }
    // Writes `frames` samples a channel, from `offset` on; at most the capacity.
    void Write(std::span<const float* const> inputs, std::size_t offset, std::size_t frames) noexcept;
    // The sample at `time` and those behind it up to Now(). `time` is at most the capacity before Now().
    const float* At(std::size_t channel, std::int64_t time) const noexcept;

private:
    std::size_t Slot(std::int64_t time) const noexcept { return static_cast<std::uint64_t>(time) & (fCapacity - 1); }

    std::size_t fCapacity = 1;
    std::int64_t fNow = 0;
    std::vector<std::vector<float>> fChannels; // each holds the capacity twice, one copy behind the other
};

} // namespace qoc::dsp
