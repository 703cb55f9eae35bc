#pragma once

#include "qoc/dsp/pitch/OnsetDetector.h"
#include "qoc/dsp/pitch/TimeMap.h"

#include <cstdint>

namespace qoc::dsp {

// Says what a stretcher has to do for hits to be heard once and when they are due: which one comes next, until when the
// sound must go on as it is, and where it may go on instead. Positions are of the stretched sound, places of the sound
// that is read. Owned by the stretcher. Real time safe.
class HitSchedule {
public:
    static constexpr double kLongestFade = 0.004; // seconds, before a hit

    struct Range {
        double first = 0;
        double last = 0;
    };

    void Prepare(double sampleRate) noexcept { fSampleRate = sampleRate; }
    void Reset() noexcept;

    // Looks what is near `place`, which is being read; onsets up to `known` are.
    void Look(double place, std::int64_t known, const TimeMap& map, const OnsetDetector& onsets) noexcept;
    // Whether a hit sounds now, or nearly.
    bool IsHit() const noexcept { return fIsHit; }
    // Where hits begin that frames must not reach into.
    std::int64_t LastHeard() const noexcept { return fHeard; }
    std::int64_t Next() const noexcept { return fNext; }

    // Whether the sound has to be spliced now for the next hit to come when it is due, if positions are read at
    // `offset` from them: at the last moment at which a fade can end before the hit.
    bool IsDue(double position, double offset) const noexcept;
    // The same, if what is heard now can't bring the hit at all.
    bool IsDueAnyway(double position) const noexcept;
    // As if there were no next hit.
    void Forget() noexcept { fNext = OnsetDetector::kNone; }
    // Nothing else is to be done for the next hit.
    void Serve() noexcept { fServed = fNext; }

    // How much longer the place must be read on so that no fade of that length meets a hit.
    double TimeToWait(double place, double fade, const OnsetDetector& onsets) const noexcept;
    // The offset that brings the next hit when it is due, if that is before `end`; otherwise `usual`.
    double OffsetBefore(double end, double usual) const noexcept;
    // The places that a splice may go to: neither back into a hit that has been heard nor beyond one that has not.
    Range PlacesFor(const Range& wanted, double place, double fade) const noexcept;

private:
    double After(std::int64_t onset) const noexcept;

    double fSampleRate = 44100;
    std::int64_t fHeard = -OnsetDetector::kNone;
    std::int64_t fNext = OnsetDetector::kNone;
    double fDue = 0; // position of the next
    std::int64_t fServed = -OnsetDetector::kNone;
    bool fIsHit = false;
};

} // namespace qoc::dsp
