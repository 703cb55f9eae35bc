#pragma once

// What people read and set, in the units that are computed with, and back.
namespace krocore {

constexpr double FractionOfPercent(double percent) noexcept {
    return percent / 100;
}

constexpr double PercentOfFraction(double fraction) noexcept {
    return fraction * 100;
}

constexpr double SecondsOfMilliseconds(double milliseconds) noexcept {
    return milliseconds * 1e-3;
}

constexpr double MillisecondsOfSeconds(double seconds) noexcept {
    return seconds * 1e3;
}

} // namespace krocore
