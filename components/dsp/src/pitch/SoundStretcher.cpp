#include "qoc/dsp/pitch/SoundStretcher.h"

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

// What of a hit is heard once: from a little before its onset until it has lost its edge.
constexpr double kBeforeOnset = 0.001; // seconds
constexpr double kAfterOnset = 0.012;
// A hit may come so much too early or too late, and is moved by so much more for the sake of a better splice.
constexpr double kHitTolerance = 0.004;
constexpr double kHitRoom = 0.004;
constexpr double kLongestHitFade = 0.004;
// By how much the energy rises at most where a piece goes back, and how fast it recovers, also where a hit begins.
constexpr double kMostRise = 2;
constexpr double kSlowRecovery = 0.03; // seconds
constexpr double kFastRecovery = 0.001;
constexpr double kRecoveryBeforeOnset = 0.005;
// Hits are looked for that often.
constexpr std::int64_t kLookEvery = 16; // samples

} // namespace

void SoundStretcher::Prepare(std::size_t channels, double sampleRate, double longest) {
    fSampleRate = sampleRate;
    const double sequence = std::max({longest, kLongSequence * sampleRate, 2 * kShortestFade});
    const double compared = std::max(sequence / 2, kComparedSeconds * sampleRate);
    fSearch.Prepare(channels, sampleRate, static_cast<std::size_t>(std::ceil(compared)));
    // The sound compared lies around the middle of a fade. From a piece's begin to its middle are so many frames at the
    // lowest ratio.
    fFarthest = FarthestOff({sequence, 0}, sampleRate);
    fReach = static_cast<std::size_t>(std::ceil(std::max(fFarthest + compared, sequence / 2 / kLowestRatio))) + 4;
    Reset();
}

// By half the length of a piece, at its ends, and by half the room.
double SoundStretcher::FarthestOff(const Lengths& lengths, double sampleRate) noexcept {
    const double sequence = lengths.sequence > 0 ? lengths.sequence : kLongSequence * sampleRate;
    return (sequence + SpliceSearch::kRoomSeconds * sampleRate) / 2;
}

void SoundStretcher::Reset() noexcept {
    fPosition = fOffset = fFormerOffset = fBegin = fEnd = 0;
    fFade = fLikeness = 1;
    fLevel = fFormerLevel = 1;
    fRecovery = 1;
    fGain = 1;
    fFormerGain = 0;
    fHit = {};
    fServed = -OnsetDetector::kNone;
}

void SoundStretcher::Follow(std::int64_t frame, const TimeMap& map) noexcept {
    const Lengths lengths = LengthsAt(map.RatioAt(frame));
    fPosition = map.PositionAt(frame);
    fOffset = fFormerOffset = static_cast<double>(frame) - fPosition;
    fFade = 1;
    fBegin = fPosition - fFade;
    fEnd = fPosition + (lengths.sequence - lengths.overlap) / 2;
    fLevel = 1;
    fHit = {};
    Fade();
}

void SoundStretcher::Advance(std::int64_t frame, const Sound& sound) noexcept {
    fPosition = sound.map.PositionAt(frame);
    if (frame % kLookEvery == 0) FindHit(frame, sound);
    const Reason reason = ReasonToSplice(frame, sound);
    if (reason != Reason::kNone) Splice(frame, reason, sound);
    Fade();
}

void SoundStretcher::Fade() noexcept {
    const double share = std::min(1.0, (fPosition - fBegin) / fFade);
    const double former = 1 - share;
    // What two sounds of the same power add up to by their correlation.
    const double power = share * share + former * former + 2 * fLikeness * share * former;
    const double level = former > 0 ? 1 / std::sqrt(power) : 1;
    fLevel += fRecovery * (1 - fLevel);
    fGain = static_cast<float>(fLevel * level * share);
    fFormerGain = static_cast<float>(fFormerLevel * level * former);
}

SoundStretcher::Lengths SoundStretcher::LengthsAt(float ratio) const noexcept {
    Lengths lengths = fLengths;
    if (lengths.sequence == 0) {
        const double share = (1 / kLowestRatio - 1 / double{ratio}) / (1 / kLowestRatio - 1 / kHighestRatio);
        lengths = {std::lerp(kShortSequence, kLongSequence, share) * fSampleRate, kFade * fSampleRate};
    }
    lengths.overlap = std::max(lengths.overlap, kShortestFade);
    lengths.sequence = std::max(lengths.sequence, 2 * lengths.overlap);
    return lengths;
}

void SoundStretcher::FindHit(std::int64_t frame, const Sound& sound) noexcept {
    const double before = kBeforeOnset * fSampleRate;
    const std::int64_t onset = sound.onsets.FirstFrom(std::llround(std::ceil(Place() + before)));
    const std::int64_t known = frame + static_cast<std::int64_t>(fReach) - sound.onsets.Delay();
    if (onset > known) {
        fHit = {};
    } else if (onset != fHit.onset) {
        fHit = {onset, sound.map.PositionAt(onset)};
    }
    const std::int64_t last = sound.onsets.LastBefore(std::llround(Place() + kRecoveryBeforeOnset * fSampleRate));
    const bool isHit = last != -OnsetDetector::kNone && Place() < static_cast<double>(last) + kAfterOnset * fSampleRate;
    fRecovery = 1 / ((isHit ? kFastRecovery : kSlowRecovery) * fSampleRate);
}

// What is due now; a piece that is fading in goes on.
SoundStretcher::Reason SoundStretcher::ReasonToSplice(std::int64_t frame, const Sound& sound) noexcept {
    if (fFormerGain > 0) return Reason::kNone;
    const double overlap = LengthsAt(sound.map.RatioAt(frame)).overlap;
    if (std::abs(Place() - static_cast<double>(frame)) > fFarthest - overlap) return Reason::kTooFar;
    if (fHit.onset != OnsetDetector::kNone && IsDue(fHit)) return Reason::kHit;
    if (fPosition < fEnd || WaitForHit(sound, overlap)) return Reason::kNone;
    return Reason::kEnd;
}

// At the last moment at which a fade can end before the hit is due, or begins too early.
bool SoundStretcher::IsDue(const Hit& hit) const noexcept {
    if (hit.onset == fServed) return false;
    const double late = LateBy(hit);
    if (std::abs(late) < kHitTolerance * fSampleRate) return false;
    const double left = hit.due + std::min(late, 0.0) - fPosition;
    return left <= (kLongestHitFade + kBeforeOnset + kHitTolerance) * fSampleRate;
}

// Leaves the hit that sounds now or that a fade would run into to the present piece, as long as that is possible.
bool SoundStretcher::WaitForHit(const Sound& sound, double overlap) noexcept {
    const double ahead = overlap + kBeforeOnset * fSampleRate;
    const std::int64_t onset = sound.onsets.LastBefore(std::llround(Place() + ahead));
    const double left = static_cast<double>(onset) + kAfterOnset * fSampleRate - Place();
    if (onset == -OnsetDetector::kNone || left <= 0) return false;
    fEnd = fPosition + left;
    return true;
}

void SoundStretcher::Splice(std::int64_t frame, Reason reason, const Sound& sound) noexcept {
    Lengths lengths = LengthsAt(sound.map.RatioAt(frame));
    if (reason == Reason::kTooFar) fHit = {};
    if (reason == Reason::kHit) lengths.overlap = std::min(lengths.overlap, kLongestHitFade * fSampleRate);
    const SpliceSearch::Room room = RoomFor(reason, lengths, sound);
    const double compared = std::max(lengths.overlap, kComparedSeconds * fSampleRate);
    const double before = (compared - lengths.overlap) / 2;
    const double present = std::floor(Place() - before);
    const auto shift = std::llround(before);
    const SpliceSearch::Place found =
        fSearch.Find(sound.history, static_cast<std::int64_t>(present),
                     {room.wanted - shift, room.first - shift, room.last - shift}, static_cast<std::size_t>(compared));
    const double jump = found.time - present;
    // One that comes early may have to wait for more than one piece.
    if (reason == Reason::kHit && jump > -2 * lengths.overlap) fServed = fHit.onset;
    fFormerOffset = fOffset;
    fOffset += jump;
    fLikeness = found.likeness;
    fFormerLevel = fLevel;
    if (jump < 0) fLevel = std::min(1.0, fLevel * std::sqrt(kMostRise / found.rise));
    fBegin = fPosition;
    fFade = lengths.overlap;
    fEnd = fPosition + lengths.sequence - lengths.overlap;
}

// The hit in the piece on time, or its middle.
double SoundStretcher::WantedOffset(const Lengths& lengths, const TimeMap& map) const noexcept {
    if (fHit.onset != OnsetDetector::kNone && fHit.due < fPosition + lengths.sequence)
        return static_cast<double>(fHit.onset) - fHit.due;
    const double middle = fPosition + lengths.sequence / 2;
    return map.FrameAt(middle) - middle;
}

// Neither back into a hit that has been heard nor beyond one that has not.
SpliceSearch::Room SoundStretcher::RoomFor(Reason reason, const Lengths& lengths, const Sound& sound) const noexcept {
    const double wanted = fPosition + WantedOffset(lengths, sound.map);
    const double half = (reason == Reason::kHit ? kHitRoom : SpliceSearch::kRoomSeconds / 2) * fSampleRate;
    double first = wanted - half;
    double last = wanted + half;
    const std::int64_t heard = sound.onsets.LastBefore(std::llround(Place()));
    if (reason != Reason::kTooFar && heard != -OnsetDetector::kNone) {
        const double end = static_cast<double>(heard) + kAfterOnset * fSampleRate;
        first = std::max(first, std::min(end, Place()));
    }
    if (fHit.onset != OnsetDetector::kNone)
        last = std::min(last, static_cast<double>(fHit.onset) - kBeforeOnset * fSampleRate - lengths.overlap);
    last = std::max(last, first);
    return {std::llround(std::clamp(wanted, first, last)), std::llround(first), std::llround(last)};
}

} // namespace qoc::dsp
