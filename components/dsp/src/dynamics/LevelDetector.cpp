#include "qoc/dsp/dynamics/LevelDetector.h"

#include "qoc/dsp/math/Decibels.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

namespace {

constexpr double kSinePower = 0.5;     // of amplitude 1
constexpr double kSilentPower = 1e-20; // of LevelDetector::kSilence

} // namespace

double LevelDetector::Remainder(double samples) noexcept {
    return samples > 0 ? std::exp(-1 / samples) : 0;
}

void LevelDetector::Next(std::span<double> powers, const Settings& settings) noexcept {
    if (fIsPower != settings.isPower) {
        fIsPower = settings.isPower;
        fValue = fIsPower ? fValue * fValue * kSinePower : std::sqrt(fValue / kSinePower);
    }
    fIsPower ? FollowPower(powers, settings.release) : FollowPeaks(powers, settings);
    ToDecibels(powers);
}

// Both leave the power of a sine against one of amplitude 1.
void LevelDetector::FollowPeaks(std::span<double> powers, const Settings& settings) noexcept {
    for (double& power : powers) {
        const double target = std::sqrt(power);
        const double remainder = target > fValue ? settings.attack : settings.release;
        fValue = target + remainder * (fValue - target);
        power = std::max(kSilentPower, fValue * fValue);
    }
}

void LevelDetector::FollowPower(std::span<double> powers, double remainder) noexcept {
    for (double& power : powers) {
        fValue = power + remainder * (fValue - power);
        power = std::max(kSilentPower, fValue / kSinePower);
    }
}

} // namespace qoc::dsp
