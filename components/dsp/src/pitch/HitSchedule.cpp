#include "qoc/dsp/pitch/HitSchedule.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

namespace {

// What of a hit is heard once: from a little before its onset until it has lost its edge.
constexpr double kBeforeOnset = 0.001; // seconds
constexpr double kAfterOnset = 0.012;
// So early it is looked at as one.
constexpr double kSoon = 0.005;
// A hit may come so much too early or too late.
constexpr double kTolerance = 0.004;

} // namespace

void HitSchedule::Reset() noexcept {
    fHeard = fServed = -OnsetDetector::kNone;
    fNext = OnsetDetector::kNone;
    fIsHit = false;
}

double HitSchedule::After(std::int64_t onset) const noexcept {
    return static_cast<double>(onset) + kAfterOnset * fSampleRate;
}

void HitSchedule::Look(double place, std::int64_t known, const TimeMap& map, const OnsetDetector& onsets) noexcept {
    fHeard = onsets.LastBefore(std::llround(place));
    fIsHit = place < After(onsets.LastBefore(std::llround(place + kSoon * fSampleRate)));
    fNext = onsets.FirstFrom(std::llround(std::ceil(place + kBeforeOnset * fSampleRate)));
    if (fNext > known) {
        Forget();
    } else {
        fDue = map.PositionAt(fNext);
    }
}

bool HitSchedule::IsDue(double position, double offset) const noexcept {
    if (fNext == OnsetDetector::kNone) return false;
    const double late = static_cast<double>(fNext) - offset - fDue;
    if (std::abs(late) < kTolerance * fSampleRate) return false;
    return IsDueAnyway(position - std::min(late, 0.0));
}

bool HitSchedule::IsDueAnyway(double position) const noexcept {
    if (fNext == OnsetDetector::kNone || fNext == fServed) return false;
    return fDue - position <= (kLongestFade + kBeforeOnset + kTolerance) * fSampleRate;
}

double HitSchedule::TimeToWait(double place, double fade, const OnsetDetector& onsets) const noexcept {
    const double end = place + fade + kBeforeOnset * fSampleRate;
    return std::max(0.0, After(onsets.LastBefore(std::llround(end))) - place);
}

double HitSchedule::OffsetBefore(double end, double usual) const noexcept {
    const bool isThere = fNext != OnsetDetector::kNone && fDue < end;
    return isThere ? static_cast<double>(fNext) - fDue : usual;
}

HitSchedule::Range HitSchedule::PlacesFor(const Range& wanted, double place, double fade) const noexcept {
    const double first = std::max(wanted.first, std::min(After(fHeard), place));
    const double next = fNext == OnsetDetector::kNone ? wanted.last : static_cast<double>(fNext);
    const double last =
        std::min(wanted.last, next - (fNext == OnsetDetector::kNone ? 0 : kBeforeOnset * fSampleRate + fade));
    return {first, std::max(first, last)};
}

} // namespace qoc::dsp
