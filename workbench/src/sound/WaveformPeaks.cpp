#include "workbench/sound/WaveformPeaks.h"

#include <algorithm>
#include <cmath>

namespace workbench {

namespace {

// More than any screen has columns, so that what is drawn for a column is nearly its own.
constexpr std::uint64_t kMostRanges = 65536;
constexpr std::size_t kShortestStretch = 128; // frames

std::size_t StretchFor(std::uint64_t frames) {
    std::size_t stretch = kShortestStretch;
    while (frames / stretch >= kMostRanges)
        stretch *= 2;
    return stretch;
}

void Widen(WaveformPeaks::Range& range, const WaveformPeaks::Range& by) {
    range.low = std::min(range.low, by.low);
    range.high = std::max(range.high, by.high);
}

// A plain loop, which is vectorised; what is no number compares as false and does not count.
WaveformPeaks::Range Extremes(const float* samples, std::size_t count) {
    WaveformPeaks::Range range;
    for (std::size_t i = 0; i < count; ++i) {
        range.low = samples[i] < range.low ? samples[i] : range.low;
        range.high = samples[i] > range.high ? samples[i] : range.high;
    }
    return range;
}

} // namespace

WaveformPeaks::WaveformPeaks(std::uint64_t frames)
    : fFrames(frames), fStretch(StretchFor(frames)),
      fRanges(static_cast<std::size_t>((frames + fStretch - 1) / fStretch)) {
}

void WaveformPeaks::Add(std::span<const float* const> channels, std::size_t frames) noexcept {
    frames = static_cast<std::size_t>(std::min<std::uint64_t>(frames, fFrames - fAdded));
    for (std::size_t done = 0; done < frames;) {
        const auto index = static_cast<std::size_t>(fAdded / fStretch);
        const std::size_t count = std::min(frames - done, fStretch - static_cast<std::size_t>(fAdded % fStretch));
        for (const float* const channel : channels)
            Widen(fRanges[index], Extremes(channel + done, count));
        done += count;
        fAdded += count;
        if (fAdded % fStretch == 0 || fAdded == fFrames) fKnown.store(index + 1, std::memory_order_release);
    }
}

bool WaveformPeaks::Set(std::span<const Range> ranges) {
    if (ranges.size() != fRanges.size()) return false;
    std::ranges::copy(ranges, fRanges.begin());
    fAdded = fFrames;
    fKnown.store(fRanges.size(), std::memory_order_release);
    return true;
}

std::uint64_t WaveformPeaks::KnownFrames() const noexcept {
    return std::min<std::uint64_t>(fFrames, std::uint64_t{fStretch} * fKnown.load(std::memory_order_acquire));
}

WaveformPeaks::Range WaveformPeaks::Between(double begin, double end) const noexcept {
    const auto known = Ranges();
    const auto last = static_cast<double>(known.size());
    const auto stretch = static_cast<double>(fStretch);
    const auto first = static_cast<std::size_t>(std::clamp(std::floor(begin / stretch), 0.0, last));
    const auto behind = static_cast<std::size_t>(std::clamp(std::ceil(end / stretch), 0.0, last));
    Range range;
    for (std::size_t i = first; i < behind; ++i)
        Widen(range, known[i]);
    return range;
}

std::span<const WaveformPeaks::Range> WaveformPeaks::Ranges() const noexcept {
    return std::span(fRanges).first(fKnown.load(std::memory_order_acquire));
}

} // namespace workbench
