#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace qoc::dsp {

// The periods found in the latest 32 frames of a sound, and the period at any time between them. All times and periods
// are in samples, times ascend from frame to frame. Two frames whose periods lie within a whole tone are of one note. A
// value; real time safe.
class PitchTrack {
public:
    void Reset() noexcept { fCount = 0; }
    // The next frame; no period when it has no pitch.
    void Add(double time, std::optional<double> period) noexcept;
    // The period at a time: interpolated between two frames of the same note, otherwise that of the nearer one. Behind
    // the latest frame it stays; before the frames that are remembered there is none.
    std::optional<double> PeriodAt(double time) const noexcept;

private:
    struct Point {
        double time = 0;
        std::optional<double> period;
    };

    // Covers the longest latency of the effect at its shortest hop.
    static constexpr std::size_t kCapacity = 32;

    const Point& Latest(std::size_t age) const noexcept { return fPoints[(fCount - 1 - age) % kCapacity]; }

    std::array<Point, kCapacity> fPoints;
    std::size_t fCount = 0;
};

} // namespace qoc::dsp
