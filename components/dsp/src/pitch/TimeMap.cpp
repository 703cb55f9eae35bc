#include "qoc/dsp/pitch/TimeMap.h"

#include <algorithm>

namespace qoc::dsp {

void TimeMap::Prepare(std::size_t capacity) {
    fRatios.assign(capacity, 1.0F);
    fPositions.assign(capacity, 0.0);
    Reset();
}

void TimeMap::Reset() noexcept {
    fNow = 0;
    fLastRatio = 1;
    fPositions[0] = 0;
}

void TimeMap::Push(float ratio) noexcept {
    const double position = PositionAt(fNow);
    fRatios[Slot(fNow)] = fLastRatio = ratio;
    fPositions[Slot(++fNow)] = position + ratio;
}

double TimeMap::FrameAt(double position) const noexcept {
    const double newest = PositionAt(fNow);
    if (position >= newest) return static_cast<double>(fNow) + (position - newest) / fLastRatio;
    std::int64_t low = std::max<std::int64_t>(0, fNow - static_cast<std::int64_t>(fRatios.size()) + 1);
    std::int64_t high = fNow;
    while (high - low > 1) {
        const std::int64_t middle = (low + high) / 2;
        (PositionAt(middle) <= position ? low : high) = middle;
    }
    return static_cast<double>(low) + (position - PositionAt(low)) / RatioAt(low);
}

} // namespace qoc::dsp
