#include "qoc/dsp/pitch/WsolaStretcher.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

namespace {

// Longer pieces for sounds that get longer, where one is heard more than once.
constexpr double kShortSequence = 0.04; // seconds, at the lowest ratio
constexpr double kLongSequence = 0.09;  // at the highest
constexpr double kFade = 0.008;
constexpr double kShortestFade = 16; // samples
// What is compared, at least: enough of low tones, however short the fade is.
constexpr double kComparedSeconds = 0.012;

} // namespace

void WsolaStretcher::Prepare(std::size_t channels, double sampleRate, double longest) {
    fSampleRate = sampleRate;
    const double sequence = std::max({longest, kLongSequence * sampleRate, 2 * kShortestFade});
    const double compared = std::max(sequence / 2, kComparedSeconds * sampleRate);
    fSearch.Prepare(channels, sampleRate, static_cast<std::size_t>(std::ceil(compared)));
    // The sound compared lies around the middle of a fade. From a piece's begin to its middle are so many frames at the
    // lowest ratio.
    const double off = FarthestOff({sequence, 0}, sampleRate);
    fReach = static_cast<std::size_t>(std::ceil(std::max(off + compared, sequence / 2 / kLowestRatio))) + 4;
    Reset();
}

// By half the length of a piece, at its ends, and by half the room.
double WsolaStretcher::FarthestOff(const Lengths& lengths, double sampleRate) noexcept {
    const double sequence = lengths.sequence > 0 ? lengths.sequence : kLongSequence * sampleRate;
    return (sequence + SpliceSearch::kRoomSeconds * sampleRate) / 2;
}

void WsolaStretcher::Reset() noexcept {
    fPosition = fOffset = fFormerOffset = fBegin = fEnd = 0;
    fFade = fShare = 1;
}

void WsolaStretcher::Follow(std::int64_t frame, const TimeMap& map) noexcept {
    const Lengths lengths = LengthsAt(map.RatioAt(frame));
    fPosition = map.PositionAt(frame);
    fOffset = fFormerOffset = static_cast<double>(frame) - fPosition;
    fShare = 1;
    fFade = 1;
    fBegin = fPosition - fFade;
    fEnd = fPosition + (lengths.sequence - lengths.overlap) / 2;
}

void WsolaStretcher::Advance(std::int64_t frame, const TimeMap& map, const HistoryBuffer& history) noexcept {
    fPosition = map.PositionAt(frame);
    if (fPosition >= fEnd) Splice(map.RatioAt(frame), map, history);
    fShare = static_cast<float>(std::min(1.0, (fPosition - fBegin) / fFade));
}

WsolaStretcher::Lengths WsolaStretcher::LengthsAt(float ratio) const noexcept {
    Lengths lengths = fLengths;
    if (lengths.sequence == 0) {
        const double share = (1 / kLowestRatio - 1 / double{ratio}) / (1 / kLowestRatio - 1 / kHighestRatio);
        lengths = {std::lerp(kShortSequence, kLongSequence, share) * fSampleRate, kFade * fSampleRate};
    }
    lengths.overlap = std::max(lengths.overlap, kShortestFade);
    lengths.sequence = std::max(lengths.sequence, 2 * lengths.overlap);
    return lengths;
}

void WsolaStretcher::Splice(float ratio, const TimeMap& map, const HistoryBuffer& history) noexcept {
    const Lengths lengths = LengthsAt(ratio);
    const double middle = fEnd + lengths.sequence / 2;
    const double wantedOffset = map.FrameAt(middle) - middle;
    const double compared = std::max(lengths.overlap, kComparedSeconds * fSampleRate);
    const double first = fEnd - (compared - lengths.overlap) / 2;
    const double present = std::floor(first + fOffset);
    const double found = fSearch.Find(history, static_cast<std::int64_t>(present), std::llround(first + wantedOffset),
                                      static_cast<std::size_t>(compared));
    fFormerOffset = fOffset;
    fOffset += found - present;
    fBegin = fEnd;
    fFade = lengths.overlap;
    fEnd += lengths.sequence - lengths.overlap;
}

} // namespace qoc::dsp
