#include "qoc/dsp/pitch/SoundStretcher.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qoc::dsp {

namespace {

// Longer pieces for sounds that get longer, where one is heard more than once.
constexpr double kShortSequence = 0.04; // seconds, at the lowest ratio
constexpr double kLongSequence = 0.09;  // at the highest
constexpr double kFade = 0.008;
constexpr double kShortestFade = 16; // samples
// What is compared, at least: enough of low tones, however short the fade is.
constexpr double kComparedSeconds = 0.012;
// By how much a hit is moved at most for the sake of a better splice.
constexpr double kHitRoom = 0.004;
// Hits are looked for that often.
constexpr std::int64_t kLookEvery = 32; // samples

// Whether splices suit the sound is listened to a little earlier than it has to be known, to spread the work, and
// while it is stretched by its spectrum that often.
constexpr double kListenBefore = 0.004; // seconds
constexpr double kListenEvery = 0.05;
// A piece that is that much softer than its sound is no beginning.
constexpr double kLeastLevel = 0.9;
// A sound that has fallen by more than that in that time dies away too fast for frames.
constexpr double kMostFall = 16; // of the energy
constexpr double kLately = 0.05; // seconds
// Frames, at most, for a sound with a pitch: its tones lie far from each other, and move.
constexpr double kVoiceFrame = 0.048; // seconds
constexpr int kMostTries = 10;
// Frames that overlap when fades have no length, by how many more when they are as long as a sequence, and by default.
constexpr double kLeastFrames = 4;
constexpr double kMoreFrames = 8;
constexpr double kUsualFrames = 6;

} // namespace

void SoundStretcher::Prepare(std::size_t channels, double sampleRate, double longest, std::size_t margin) {
    fSampleRate = sampleRate;
    const double sequence = std::max({longest, kLongSequence * sampleRate, 2 * kShortestFade});
    const double compared = std::max(sequence / 2, kComparedSeconds * sampleRate);
    fSearch.Prepare(channels, sampleRate, static_cast<std::size_t>(std::ceil(compared)));
    fJudge.Prepare(sampleRate);
    fHits.Prepare(sampleRate);
    fFade.Prepare(sampleRate);
    fSpectral.Prepare(channels, sampleRate, margin);
    // The sound compared lies around the middle of a fade. From a piece's begin to its middle are so many frames at the
    // lowest ratio.
    fFarthest = FarthestOff({sequence, 0}, sampleRate);
    const double reach = std::max(fFarthest + compared, sequence / 2 / kLowestRatio);
    fReach = std::max(static_cast<std::size_t>(std::ceil(reach)) + 4, fSpectral.LeastReach());
    fSpectral.SetReach(fReach);
    Reset();
}

// By half the length of a piece, at its ends, and by half the room.
double SoundStretcher::FarthestOff(const Lengths& lengths, double sampleRate) noexcept {
    const double sequence = lengths.sequence > 0 ? lengths.sequence : kLongSequence * sampleRate;
    return (sequence + SpliceSearch::kRoomSeconds * sampleRate) / 2;
}

void SoundStretcher::Reset() noexcept {
    fPosition = fEnd = fListensAt = 0;
    fPiece = fFormer = {};
    fGain = 1;
    fFormerGain = 0;
    fWantsSpectral = false;
    fTries = 0;
    fJudge.Reset();
    fHits.Reset();
    fSpectral.Reset();
    fFade.Reset();
}

void SoundStretcher::SetLengths(const Lengths& lengths) noexcept {
    fLengths = lengths;
    const bool isUsual = lengths.sequence == 0;
    const double frames = isUsual ? kUsualFrames : kLeastFrames + kMoreFrames * lengths.overlap / lengths.sequence;
    fSpectral.SetFrames(isUsual ? std::numeric_limits<double>::infinity() : frames * lengths.sequence, frames);
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

void SoundStretcher::Follow(std::int64_t frame, const TimeMap& map) noexcept {
    const Lengths lengths = LengthsAt(map.RatioAt(frame));
    fPosition = map.PositionAt(frame);
    fPiece = {static_cast<double>(frame) - fPosition};
    fGain = 1;
    fFormerGain = 0;
    fWantsSpectral = false;
    fTries = 0;
    fHits.Reset();
    fSpectral.Stop();
    fFade.Reset();
    fFade.Begin(fPosition - 1, 1, {});
    EndAt(fPosition + (lengths.sequence - lengths.overlap) / 2);
}

void SoundStretcher::Advance(std::int64_t frame, const Sound& sound) noexcept {
    fPosition = sound.map.PositionAt(frame);
    fSpectral.Advance(frame, sound.map, sound.history);
    if (fPiece.isSpectral) fPiece.offset = static_cast<double>(frame) - fPosition;
    if (frame % kLookEvery == 0) Look(frame, sound);
    if (fMayBeSpectral && fPosition >= fListensAt) {
        fJudge.Listen(fSearch, sound.history, fPiece.isSpectral ? frame : std::llround(Place()));
        fListensAt = std::numeric_limits<double>::infinity();
    }
    const Reason reason = ReasonToSplice(frame, sound);
    if (reason != Reason::kNone) Splice(frame, reason, sound);
    Fade();
}

void SoundStretcher::Look(std::int64_t frame, const Sound& sound) noexcept {
    fHits.Look(Place(), frame + static_cast<std::int64_t>(fReach) - sound.onsets.Delay(), sound.map, sound.onsets);
    fSpectral.SetBounds(fHits.LastHeard(), fHits.Next());
    const bool isFree = !fPiece.isSpectral && fFormerGain == 0;
    if (fWantsSpectral && fMayBeSpectral && isFree) TryToStartSpectral(frame, sound);
}

std::array<SoundStretcher::Voice, 2> SoundStretcher::Voices(const HistoryBuffer& history) const noexcept {
    return {VoiceOf(fPiece, fGain, history), VoiceOf(fFormer, fFormerGain, history)};
}

SoundStretcher::Voice SoundStretcher::VoiceOf(const Piece& piece, double gain,
                                              const HistoryBuffer& history) const noexcept {
    const auto factor = static_cast<float>(gain);
    if (piece.isSpectral) return {&fSpectral.Stretched(), fSpectral.TimeOf(fPosition), factor};
    return {&history, fPosition + piece.offset, factor};
}

// The stretched sound begins as a copy of the piece before it, so that the two add up.
void SoundStretcher::Fade() noexcept {
    if (fPiece.isSpectral) {
        fGain = fFormerGain > 0 ? fSpectral.ShareAt(fPosition) : 1;
        fFormerGain = (1 - fGain) * fFade.Level();
        if (fFormerGain == 0) fFade.Reset();
        return;
    }
    fFade.Advance(fPosition, fHits.IsHit());
    fGain = fFade.Gain();
    fFormerGain = fFade.FormerGain();
    if (fFormer.isSpectral && fFormerGain == 0) fSpectral.Stop();
}

// What is due now; a piece that is fading in goes on.
SoundStretcher::Reason SoundStretcher::ReasonToSplice(std::int64_t frame, const Sound& sound) noexcept {
    if (fFormerGain > 0) return Reason::kNone;
    if (fPiece.isSpectral) {
        if (fHits.IsDueAnyway(fPosition)) return Reason::kHit;
        return fPosition < fEnd && fMayBeSpectral ? Reason::kNone : Reason::kEnd;
    }
    const double overlap = LengthsAt(sound.map.RatioAt(frame)).overlap;
    if (std::abs(Place() - static_cast<double>(frame)) > fFarthest - overlap) return Reason::kTooFar;
    if (fHits.IsDue(fPosition, fPiece.offset)) return Reason::kHit;
    if (fPosition < fEnd) return Reason::kNone;
    const double wait = fHits.TimeToWait(Place(), overlap, sound.onsets);
    if (wait == 0) return Reason::kEnd;
    fEnd = fPosition + wait;
    return Reason::kNone;
}

void SoundStretcher::Splice(std::int64_t frame, Reason reason, const Sound& sound) noexcept {
    Lengths lengths = LengthsAt(sound.map.RatioAt(frame));
    if (reason == Reason::kTooFar) fHits.Reset();
    if (reason == Reason::kHit) lengths.overlap = std::min(lengths.overlap, HitSchedule::kLongestFade * fSampleRate);
    const SpliceSearch::Place found = FindPlace(lengths, RoomFor(reason, lengths, sound.map), sound.history);
    if (reason == Reason::kEnd && fMayBeSpectral && StaysSpectral(frame, found.likeness, sound)) return;
    // A hit that comes early may have to wait for more than one piece.
    if (reason == Reason::kHit) fTries = 0;
    if (reason == Reason::kHit && found.time > Place() - 2 * lengths.overlap) fHits.Serve();
    BeginPiece(lengths, found);
}

// `time` of the result is where to read now.
SpliceSearch::Place SoundStretcher::FindPlace(const Lengths& lengths, const SpliceSearch::Room& room,
                                              const HistoryBuffer& history) noexcept {
    const double compared = std::max(lengths.overlap, kComparedSeconds * fSampleRate);
    // Around the middle of the fade, or as far as the sound is there.
    const double before = fPiece.isSpectral ? compared : (compared - lengths.overlap) / 2;
    const Voice present = VoiceOf(fPiece, 1, history);
    const double first = std::floor(present.place - before);
    const auto shift = std::llround(before);
    SpliceSearch::Place found =
        fSearch.Find({*present.sound, static_cast<std::int64_t>(first), static_cast<std::size_t>(compared)}, history,
                     {room.wanted - shift, room.first - shift, room.last - shift});
    found.time += present.place - first;
    return found;
}

// A hit in the piece on time, or its middle.
SpliceSearch::Room SoundStretcher::RoomFor(Reason reason, const Lengths& lengths, const TimeMap& map) const noexcept {
    const double middle = fPosition + lengths.sequence / 2;
    const double offset = fHits.OffsetBefore(fPosition + lengths.sequence, map.FrameAt(middle) - middle);
    const double wanted = fPosition + offset;
    const double half = (reason == Reason::kHit ? kHitRoom : SpliceSearch::kRoomSeconds / 2) * fSampleRate;
    const auto [first, last] = fHits.PlacesFor({wanted - half, wanted + half}, Place(), lengths.overlap);
    return {std::llround(std::clamp(wanted, first, last)), std::llround(first), std::llround(last)};
}

void SoundStretcher::BeginPiece(const Lengths& lengths, const SpliceSearch::Place& found) noexcept {
    fFormer = fPiece;
    fFade.Begin(fPosition, lengths.overlap, {found.likeness, found.rise, !fPiece.isSpectral && found.time < Place()});
    fPiece = {found.time - fPosition};
    EndAt(fPosition + lengths.sequence - lengths.overlap);
}

void SoundStretcher::EndAt(double position) noexcept {
    fEnd = position;
    fListensAt = position - kListenBefore * fSampleRate;
}

bool SoundStretcher::StaysSpectral(std::int64_t frame, double likeness, const Sound& sound) noexcept {
    fWantsSpectral = !(fPiece.isSpectral ? fJudge.SuitsAgain(likeness) : fJudge.SuitsStill(likeness));
    if (!fWantsSpectral) fTries = 0;
    if (!fWantsSpectral || (fPiece.isVoice && !SuitsVoiceFrames())) return false;
    if (!fPiece.isSpectral) return TryToStartSpectral(frame, sound);
    ++fTries;
    EndAt(fPosition + kListenEvery * fSampleRate);
    return true;
}

bool SoundStretcher::TryToStartSpectral(std::int64_t frame, const Sound& sound) noexcept {
    if (fHits.IsHit() || fFade.Level() < kLeastLevel || WouldRise(frame, sound.history)) return false;
    const bool isVoice = SuitsVoiceFrames();
    const double longest = isVoice ? kVoiceFrame * fSampleRate : std::numeric_limits<double>::infinity();
    if (!fSpectral.Start(frame, fPiece.offset, longest, sound.map)) return false;
    fFormer = fPiece;
    fPiece = {fFormer.offset, true, isVoice};
    fGain = 0;
    fFormerGain = 1;
    EndAt(fPosition + kListenEvery * fSampleRate);
    return true;
}

// A voice does not go on that long without a splice that suits it.
bool SoundStretcher::SuitsVoiceFrames() const noexcept {
    return fJudge.HasPitch() && fTries < kMostTries;
}

// Whether a sound that dies away would be heard to rise if it went on with frames of what is due: because what is read
// is ahead of that, or because frames would bring back what they begin with.
bool SoundStretcher::WouldRise(std::int64_t frame, const HistoryBuffer& history) const noexcept {
    const auto compared = static_cast<std::int64_t>(kComparedSeconds * fSampleRate);
    const auto place = std::llround(Place()) - compared / 2;
    const SpliceSearch::Present present = {history, place, static_cast<std::size_t>(compared)};
    const auto lately = place - std::llround(kLately * fSampleRate);
    return fSearch.RiseTo(present, history, frame - compared / 2) > SpliceFade::kMostRise ||
           fSearch.RiseTo(present, history, lately) > kMostFall;
}

} // namespace qoc::dsp
