#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qoc::dsp {

// Keeps the ratio that each of the last frames is to be shifted by and, summed up, the position that the frame has in
// a sound stretched by those ratios. Stretching and reading back both follow it, so that they never drift apart.
// Sound thread, apart from Prepare.
class TimeMap {
public:
    // `capacity`, a power of two, is how many frames are kept. Allocates, and resets.
    void Prepare(std::size_t capacity);
    void Reset() noexcept;

    // The ratio of the next frame.
    void Push(float ratio) noexcept;
    // The frame that is pushed next.
    std::int64_t Now() const noexcept { return fNow; }

    // Of a frame that is kept.
    float RatioAt(std::int64_t frame) const noexcept { return fRatios[Slot(frame)]; }
    // Of a frame that is kept, or of Now().
    double PositionAt(std::int64_t frame) const noexcept { return fPositions[Slot(frame)]; }
    // The frame, with its fraction, at a position; behind the newest frame as if its ratio went on.
    double FrameAt(double position) const noexcept;

private:
    std::size_t Slot(std::int64_t frame) const noexcept {
        return static_cast<std::size_t>(frame) & (fRatios.size() - 1);
    }

    std::int64_t fNow = 0;
    float fLastRatio = 1;
    std::vector<float> fRatios = std::vector<float>(1);
    std::vector<double> fPositions = std::vector<double>(1);
};

} // namespace qoc::dsp
