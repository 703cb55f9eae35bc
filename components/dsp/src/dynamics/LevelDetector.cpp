#include "qoc/dsp/dynamics/LevelDetector.h"

#include <cmath>

namespace qoc::dsp {

double LevelDetector::Remainder(double samples) noexcept {
    return samples > 0 ? std::exp(-1 / samples) : 0;
}

double LevelDetector::Next(double power, const Settings& settings) noexcept {
    constexpr double kSinePower = 0.5; // of amplitude 1
    constexpr double kSilentPower = 1e-20;
    if (fIsPower != settings.isPower) {
        fIsPower = settings.isPower;
        fValue = fIsPower ? fValue * fValue * kSinePower : std::sqrt(fValue / kSinePower);
    }
    const double target = fIsPower ? power : std::sqrt(power);
    const double remainder = !fIsPower && target > fValue ? settings.attack : settings.release;
    fValue = target + remainder * (fValue - target);
    const double sinePower = fIsPower ? fValue / kSinePower : fValue * fValue;
    return sinePower > kSilentPower ? 10 * std::log10(sinePower) : kSilence;
}

} // namespace qoc::dsp
