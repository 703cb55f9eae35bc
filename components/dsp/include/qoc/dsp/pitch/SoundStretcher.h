#pragma once

#include "qoc/dsp/delay/HistoryBuffer.h"
#include "qoc/dsp/pitch/OnsetDetector.h"
#include "qoc/dsp/pitch/SpliceSearch.h"
#include "qoc/dsp/pitch/TimeMap.h"

#include <cstddef>
#include <cstdint>

namespace qoc::dsp {

// Makes a sound longer or shorter without changing its pitch, following a TimeMap: tells where in the sound to read
// for the frame that is due. The sound is read in pieces, each at its own pace and in its middle at the frame that the
// map has for it, or a little beside it: a piece begins where the sound goes on like the one before (Verhelst and
// Roelands, "An overlap-add technique based on waveform similarity", 1993), and they overlap for a fade. The beginning
// of a hit is never repeated, left out or faded: the piece before it ends early enough for the next one to bring it
// when it is due. Nor does a sound that dies away rise again where a piece goes back. Lengths are in samples of the
// stretched sound. Owned by the pitch shifter. Everything but Prepare is real time safe.
class SoundStretcher {
public:
    // Of the ratios of the map.
    static constexpr double kLowestRatio = 0.5;
    static constexpr double kHighestRatio = 2;

    struct Lengths {
        double sequence = 0; // of a piece with both its fades; 0: by the ratio, with a fade of its own
        double overlap = 0;  // of a fade, up to half the sequence
    };
    // What goes on in the sound: all up to Reach() behind the frame that is due is known.
    struct Sound {
        const TimeMap& map;
        const HistoryBuffer& history;
        const OnsetDetector& onsets;
    };

    // `longest`: of the sequences that will be set. Allocates, and resets.
    void Prepare(std::size_t channels, double sampleRate, double longest);
    void Reset() noexcept;
    // Of the pieces that are still to begin.
    void SetLengths(const Lengths& lengths) noexcept { fLengths = lengths; }

    // How far from the frame that is due the sound may be read that is heard at it, in samples.
    static double FarthestOff(const Lengths& lengths, double sampleRate) noexcept;
    // How far ahead of the frame that is due the map and the history have to be, and the history behind it.
    std::size_t Reach() const noexcept { return fReach; }

    // Leaves the sound as it is: from `frame` on, a piece that is due now.
    void Follow(std::int64_t frame, const TimeMap& map) noexcept;
    // Goes to the next frame, `frame`.
    void Advance(std::int64_t frame, const Sound& sound) noexcept;

    // Where to read at the frame: in its piece and, while that fades in, in the one before, which goes out. The gains
    // keep the level, whether the two are alike or not.
    double Place() const noexcept { return fPosition + fOffset; }
    double FormerPlace() const noexcept { return fPosition + fFormerOffset; }
    float Gain() const noexcept { return fGain; }
    float FormerGain() const noexcept { return fFormerGain; }

private:
    // The next hit that has not begun to sound, and the position at which it is due.
    struct Hit {
        std::int64_t onset = OnsetDetector::kNone;
        double due = 0;
    };

    enum class Reason { kNone, kEnd, kHit, kTooFar };

    Lengths LengthsAt(float ratio) const noexcept;
    void FindHit(std::int64_t frame, const Sound& sound) noexcept;
    Reason ReasonToSplice(std::int64_t frame, const Sound& sound) noexcept;
    // By how much the hit comes late if the piece goes on.
    double LateBy(const Hit& hit) const noexcept { return static_cast<double>(hit.onset) - fOffset - hit.due; }
    bool IsDue(const Hit& hit) const noexcept;
    bool WaitForHit(const Sound& sound, double overlap) noexcept;
    void Splice(std::int64_t frame, Reason reason, const Sound& sound) noexcept;
    double WantedOffset(const Lengths& lengths, const TimeMap& map) const noexcept;
    SpliceSearch::Room RoomFor(Reason reason, const Lengths& lengths, const Sound& sound) const noexcept;
    void Fade() noexcept;

    double fSampleRate = 44100;
    double fFarthest = 0;
    std::size_t fReach = 0;
    SpliceSearch fSearch;
    Lengths fLengths;
    double fPosition = 0;
    double fOffset = 0; // from positions to places in the sound
    double fFormerOffset = 0;
    double fBegin = 0; // positions of the last fade and the next
    double fFade = 1;
    double fEnd = 0;
    double fLikeness = 1; // of the two pieces of the fade
    double fLevel = 1;    // of the piece, below 1 while it would be louder than the one before
    double fFormerLevel = 1;
    double fRecovery = 0; // of what the level lacks, a sample
    float fGain = 1;
    float fFormerGain = 0;
    Hit fHit;
    std::int64_t fServed = 0; // the last hit that a piece was begun for
};

} // namespace qoc::dsp
