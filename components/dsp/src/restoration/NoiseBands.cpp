#include "qoc/dsp/restoration/NoiseBands.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace qoc::dsp {

namespace {

constexpr double kLeastSeconds = 0.3; // of a long frame
constexpr std::size_t kLeastFrame = 512;
constexpr std::size_t kMostFrame = 65536; // up to 192 kHz as long as said, shorter above
// Of the bands' centres and widths, in bins, and as a part of the frequency.
constexpr std::size_t kLeastStep = 4;
constexpr std::size_t kLeastHalfWidth = 8;
constexpr std::size_t kLeastShortHalfWidth = 2;
constexpr std::size_t kMostBins = 400; // that are looked at in a band
constexpr double kHalfWidth = 0.08;
// The short frames' lowest bins swing with what is below them.
constexpr std::size_t kFirstShortBin = 2;

std::size_t HalfWidth(std::size_t bin, std::size_t least) {
    return std::max(least, static_cast<std::size_t>(kHalfWidth * static_cast<double>(bin)));
}

} // namespace

void NoiseBands::Prepare(double sampleRate) {
    fFrame = std::clamp(std::bit_ceil(static_cast<std::size_t>(kLeastSeconds * sampleRate)), kLeastFrame, kMostFrame);
    fBands.clear();
    const std::size_t nyquist = fFrame / 2;
    const std::size_t shortNyquist = nyquist / kShortFramesPerLong;
    for (std::size_t bin = 1; bin < nyquist; bin += HalfWidth(bin, kLeastStep)) {
        const std::size_t half = HalfWidth(bin, kLeastHalfWidth);
        const std::size_t shortBin = (bin + kShortFramesPerLong / 2) / kShortFramesPerLong;
        const std::size_t shortHalf = HalfWidth(shortBin, kLeastShortHalfWidth);
        const std::size_t shortBegin = std::max(kFirstShortBin, shortBin - std::min(shortBin, shortHalf));
        const std::size_t shortEnd = std::max(shortBegin + 2 * kLeastShortHalfWidth + 1, shortBin + shortHalf + 1);
        fBands.push_back({.hertz = static_cast<double>(bin) * sampleRate / static_cast<double>(fFrame),
                          .longBegin = bin > half ? bin - half : 1,
                          .longEnd = std::min(nyquist, bin + half + 1),
                          .longStep = 1 + 2 * half / kMostBins,
                          .shortBegin = shortBegin,
                          .shortEnd = std::min(shortNyquist, shortEnd)});
    }
}

} // namespace qoc::dsp
