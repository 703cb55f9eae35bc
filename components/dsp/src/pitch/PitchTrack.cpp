#include "qoc/dsp/pitch/PitchTrack.h"

#include <algorithm>

namespace qoc::dsp {

namespace {

// Two periods further apart than a whole tone are two notes, not one that glides.
constexpr double kLargestGlide = 1.122;

bool AreOneNote(double a, double b) {
    return std::max(a, b) < kLargestGlide * std::min(a, b);
}

} // namespace

void PitchTrack::Add(double time, std::optional<double> period) noexcept {
    fPoints[fCount % kCapacity] = {time, period};
    ++fCount;
}

std::optional<double> PitchTrack::PeriodAt(double time) const noexcept {
    const std::size_t kept = std::min(fCount, kCapacity);
    std::size_t age = 0;
    while (age < kept && Latest(age).time > time)
        ++age;
    if (age == kept) return std::nullopt;
    const Point& before = Latest(age);
    if (age == 0) return before.period;
    const Point& after = Latest(age - 1);
    const double part = (time - before.time) / (after.time - before.time);
    if (before.period && after.period && AreOneNote(*before.period, *after.period))
        return *before.period + part * (*after.period - *before.period);
    return part < 0.5 ? before.period : after.period;
}

} // namespace qoc::dsp
