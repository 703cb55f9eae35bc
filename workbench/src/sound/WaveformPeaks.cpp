#include "workbench/sound/WaveformPeaks.h"

#include <algorithm>
#include <cmath>

namespace workbench {

namespace {

void Widen(WaveformPeaks::Range& range, const WaveformPeaks::Range& by) {
    range.low = std::min(range.low, by.low);
    range.high = std::max(range.high, by.high);
}

} // namespace

WaveformPeaks::WaveformPeaks(const qohost::Sound& sound) : fRanges((sound.Frames() + kStretch - 1) / kStretch) {
    for (const std::vector<float>& channel : sound.channels)
        for (std::size_t stretch = 0; stretch < fRanges.size(); ++stretch) {
            const auto begin = channel.begin() + static_cast<std::ptrdiff_t>(stretch * kStretch);
            const auto end =
                channel.begin() + static_cast<std::ptrdiff_t>(std::min(channel.size(), (stretch + 1) * kStretch));
            const auto [low, high] = std::minmax_element(begin, end);
            Widen(fRanges[stretch], {*low, *high});
        }
}

WaveformPeaks::Range WaveformPeaks::Between(double begin, double end) const {
    const auto last = static_cast<double>(fRanges.size());
    const auto first = static_cast<std::size_t>(std::clamp(std::floor(begin / kStretch), 0.0, last));
    const auto behind = static_cast<std::size_t>(std::clamp(std::ceil(end / kStretch), 0.0, last));
    Range range;
    for (std::size_t i = first; i < behind; ++i)
        Widen(range, fRanges[i]);
    return range;
}

} // namespace workbench
