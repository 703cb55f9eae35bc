#include "workbench/views/MeterBallistics.h"

#include <algorithm>
#include <cmath>

namespace workbench {

bool MeterBallistics::Feed(float peak, float seconds) {
    constexpr float kDecibelsADecade = 20;
    const float now = std::max(kFloor, kDecibelsADecade * std::log10(peak));
    const float fall = kFallPerSecond * seconds;
    const float oldLevel = fLevel;
    const float oldMark = fMark;
    fLevel = std::max({now, fLevel - fall, kFloor});
    fMarkAge += seconds;
    if (fMarkAge > kHoldSeconds) fMark = std::max(fMark - fall, kFloor);
    if (fLevel >= fMark) {
        fMark = fLevel;
        fMarkAge = 0;
    }
    return fLevel != oldLevel || fMark != oldMark;
}

} // namespace workbench
