#include "qoc/components/LimiterGain.h"

#include <algorithm>
#include <cmath>

namespace qoc::components {

void LimiterGain::Prepare(std::size_t longestLookAhead) {
    fLongest = longestLookAhead;
    fLookAhead = std::min(fLookAhead, fLongest);
    fMinimum.Prepare(fLongest + 2 * kHold + 1);
    fFirst.Prepare(fLongest);
    fSecond.Prepare(fLongest);
    fAllowed.resize(fLongest + kHold + 1);
    fGains.resize(fLongest + kHold + 1);
    Reset();
}

void LimiterGain::Reset() noexcept {
    fMinimum.Reset();
    fFirst.Reset();
    fSecond.Reset();
    std::ranges::fill(fAllowed, kOne);
    std::ranges::fill(fGains, kOne);
    fPosition = 0;
    fReleased = 1;
}

void LimiterGain::SetLookAhead(std::size_t samples) noexcept {
    fLookAhead = std::clamp<std::size_t>(samples, 2, fLongest);
}

void LimiterGain::SetRelease(double samples) noexcept {
    fReleaseCoefficient = 1 - std::exp(-1 / samples);
}

float LimiterGain::Next(float allowed) noexcept {
    // Rounded down, so that no rounding lets a peak through.
    const auto asked = static_cast<Fixed>(static_cast<double>(allowed) * static_cast<double>(kOne));
    const Fixed least = fMinimum.Next(asked, fLookAhead + 2 * kHold + 1);
    const double held = static_cast<double>(least) / static_cast<double>(kOne);
    fReleased = held <= fReleased ? held : fReleased + fReleaseCoefficient * (held - fReleased);
    const auto released = std::min(least, static_cast<Fixed>(std::ceil(fReleased * static_cast<double>(kOne))));
    // Together they reach fLookAhead samples back.
    const std::size_t half = fLookAhead / 2;
    const Fixed smooth = fSecond.Next(fFirst.Next(released, half + 1), fLookAhead - half + 1);
    fPosition = (fPosition + 1) % fGains.size();
    const Fixed course = Delayed(smooth, fGains, fLongest - fLookAhead);
    // While the look-ahead is being changed, the course may come late.
    const Fixed gain = std::min(course, Delayed(asked, fAllowed, fLongest + kHold));
    return static_cast<float>(static_cast<double>(gain) / static_cast<double>(kOne));
}

LimiterGain::Fixed LimiterGain::Delayed(Fixed value, std::vector<Fixed>& ring, std::size_t delay) const noexcept {
    ring[fPosition] = value;
    return ring[(fPosition + ring.size() - delay) % ring.size()];
}

void LimiterGain::Average::Prepare(std::size_t most) {
    fValues.resize(most);
}

void LimiterGain::Average::Reset() noexcept {
    std::ranges::fill(fValues, kOne);
    fNow = 0;
    fLength = 1;
    fSum = kOne;
}

LimiterGain::Fixed LimiterGain::Average::Next(Fixed value, std::size_t length) noexcept {
    const std::size_t size = fValues.size();
    const auto past = [&](std::size_t age) { return fValues[(fNow + size - age) % size]; };
    for (; fLength < length; ++fLength)
        fSum += past(fLength);
    for (; fLength > length; --fLength)
        fSum -= past(fLength - 1);
    fSum += value - past(fLength - 1);
    fNow = (fNow + 1) % size;
    fValues[fNow] = value;
    return fSum / static_cast<Fixed>(fLength);
}

void LimiterGain::Minimum::Prepare(std::size_t most) {
    fEntries.resize(most + 1);
}

void LimiterGain::Minimum::Reset() noexcept {
    fFirst = fCount = 0;
    fNow = 0;
}

// Lemire, "Streaming maximum-minimum filter using no more than three comparisons per element" (2006).
LimiterGain::Fixed LimiterGain::Minimum::Next(Fixed value, std::size_t length) noexcept {
    const std::size_t size = fEntries.size();
    ++fNow;
    while (fCount > 0 && fEntries[fFirst].time + length <= fNow) {
        fFirst = (fFirst + 1) % size;
        --fCount;
    }
    while (fCount > 0 && fEntries[(fFirst + fCount - 1) % size].value >= value)
        --fCount;
    fEntries[(fFirst + fCount) % size] = {value, fNow};
    ++fCount;
    return fEntries[fFirst].value;
}

} // namespace qoc::components
