#include "qoc/dsp/reverb/ReverbFigures.h"

#include "qoc/dsp/reverb/ReverbTank.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

float DirectRatio(float dry, float wet) noexcept {
    if (dry == wet) return 0;
    const float decibels = 20 * std::log10(dry / wet);
    return std::clamp(decibels, -kMostDirectRatio, kMostDirectRatio);
}

double MeanLineLength(double decay) noexcept {
    constexpr double kShare = 0.07;
    return std::clamp(kShare * decay, 0.006, ReverbTank::kLongestMean);
}

double AudibleSeconds(double decay) noexcept {
    constexpr double kFirstPass = 0.05; // through allpasses and lines
    return 1.5 * decay + kFirstPass;
}

} // namespace qoc::dsp
