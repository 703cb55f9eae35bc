#include "qoc/dsp/stream/SmoothedValue.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

double SmoothedValue::CoefficientAt(double sampleRate) noexcept {
    return 1.0 - std::exp(-1.0 / (kTimeConstant * sampleRate));
}

std::size_t SmoothedValue::SettlingSamplesAt(double sampleRate) noexcept {
    return static_cast<std::size_t>(std::ceil(kSettlingTimeConstants * kTimeConstant * sampleRate));
}

void SmoothedValue::Prepare(double sampleRate) noexcept {
    fCoefficient = CoefficientAt(sampleRate);
    fSettlingSamples = SettlingSamplesAt(sampleRate);
    Settle(fTarget);
}

void SmoothedValue::Settle(float value) noexcept {
    fTarget = value;
    fFirst = fSecond = value;
    fRemaining = 0;
}

void SmoothedValue::SetTarget(float target) noexcept {
    if (target == fTarget) return;
    fTarget = target;
    fRemaining = fSettlingSamples;
}

float SmoothedValue::Next() noexcept {
    if (fRemaining == 0) return fTarget;
    if (--fRemaining == 0) {
        Settle(fTarget);
    } else {
        fFirst += fCoefficient * (fTarget - fFirst);
        fSecond += fCoefficient * (fFirst - fSecond);
    }
    return static_cast<float>(fSecond);
}

void SmoothedValue::Next(std::span<float> values) noexcept {
    if (IsSettled()) {
        std::ranges::fill(values, fTarget);
    } else {
        std::ranges::generate(values, [this] { return Next(); });
    }
}

// Each low-pass stays between where it is and where it goes.
float SmoothedValue::LeastAhead() const noexcept {
    return std::min({fTarget, static_cast<float>(fFirst), static_cast<float>(fSecond)});
}

float SmoothedValue::MostAhead() const noexcept {
    return std::max({fTarget, static_cast<float>(fFirst), static_cast<float>(fSecond)});
}

} // namespace qoc::dsp
