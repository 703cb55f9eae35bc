#include "qoc/dsp/dynamics/LimiterEnvelope.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

namespace {

// A place in a ring, up to once around beyond its end. A division would cost more than all else.
std::size_t Around(std::size_t place, std::size_t size) noexcept {
    return place < size ? place : place - size;
}

} // namespace

void LimiterEnvelope::Prepare(std::size_t longestLookAhead, double sampleRate) {
    fLongest = longestLookAhead;
    fSustained.Prepare(sampleRate);
    fMinimum.Prepare(fLongest + 2 * kHold + 1);
    fFirst.Prepare(fLongest);
    fSecond.Prepare(fLongest);
    fGains.resize(fLongest + 1);
    Start(fLongest);
}

void LimiterEnvelope::Start(std::size_t lookAhead) noexcept {
    fLookAhead = lookAhead;
    fMinimum.Reset();
    fFirst.Reset();
    fSecond.Reset();
    std::ranges::fill(fGains, kOne);
    fPosition = 0;
    fSustained.Start();
    fReleased = 1;
}

void LimiterEnvelope::StartFrom(const LimiterEnvelope& other, std::size_t lookAhead) noexcept {
    Start(lookAhead);
    fSustained = other.fSustained;
    fReleased = other.fReleased;
}

void LimiterEnvelope::SetRelease(double samples) noexcept {
    fSustained.SetRelease(samples);
    fQuickCoefficient = -std::expm1(-1 / (kQuickRelease * samples));
}

LimiterEnvelope::Fixed LimiterEnvelope::Next(Fixed allowed) noexcept {
    const Fixed least = fMinimum.Next(allowed, fLookAhead + 2 * kHold + 1);
    const double sustained = fSustained.Next(static_cast<double>(allowed) / static_cast<double>(kOne));
    fReleased += (sustained > fReleased ? fQuickCoefficient : 1) * (sustained - fReleased);
    fReleased = std::min(fReleased, static_cast<double>(least) / static_cast<double>(kOne));
    const auto released = std::min(least, static_cast<Fixed>(std::ceil(fReleased * static_cast<double>(kOne))));
    // Together they reach fLookAhead samples back.
    const std::size_t half = fLookAhead / 2;
    fPosition = Around(fPosition + 1, fGains.size());
    fGains[fPosition] = fSecond.Next(fFirst.Next(released, half + 1), fLookAhead - half + 1);
    return fGains[Around(fPosition + fGains.size() - (fLongest - fLookAhead), fGains.size())];
}

void LimiterEnvelope::Average::Prepare(std::size_t most) {
    fValues.resize(most);
}

void LimiterEnvelope::Average::Reset() noexcept {
    std::ranges::fill(fValues, kOne);
    fNow = 0;
    fLength = 1;
    fPerLength = 1;
    fSum = kOne;
}

LimiterEnvelope::Fixed LimiterEnvelope::Average::Next(Fixed value, std::size_t length) noexcept {
    const std::size_t size = fValues.size();
    const auto past = [&](std::size_t age) { return fValues[Around(fNow + size - age, size)]; };
    if (length != fLength) fPerLength = 1 / static_cast<double>(length);
    for (; fLength < length; ++fLength)
        fSum += past(fLength);
    for (; fLength > length; --fLength)
        fSum -= past(fLength - 1);
    fSum += value - past(fLength - 1);
    fNow = Around(fNow + 1, size);
    fValues[fNow] = value;
    return static_cast<Fixed>(static_cast<double>(fSum) * fPerLength);
}

void LimiterEnvelope::Minimum::Prepare(std::size_t most) {
    fEntries.resize(most + 1);
}

void LimiterEnvelope::Minimum::Reset() noexcept {
    fFirst = fCount = 0;
    fNow = 0;
}

// Lemire, "Streaming maximum-minimum filter using no more than three comparisons per element" (2006).
LimiterEnvelope::Fixed LimiterEnvelope::Minimum::Next(Fixed value, std::size_t length) noexcept {
    const std::size_t size = fEntries.size();
    ++fNow;
    while (fCount > 0 && fEntries[fFirst].time + length <= fNow) {
        fFirst = Around(fFirst + 1, size);
        --fCount;
    }
    while (fCount > 0 && fEntries[Around(fFirst + fCount - 1, size)].value >= value)
        --fCount;
    fEntries[Around(fFirst + fCount, size)] = {value, fNow};
    ++fCount;
    return fEntries[fFirst].value;
}

} // namespace qoc::dsp
