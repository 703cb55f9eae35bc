#include "qoc/dsp/filters/NotchSection.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <numbers>

namespace qoc::dsp {

void NotchSection::Prepare(double sampleRate) noexcept {
    fSampleRate = sampleRate;
    for (SmoothedValue* value : {&fPitch, &fDamping, &fGain})
        value->Prepare(sampleRate);
}

void NotchSection::Set(const Setting& setting, bool settle) noexcept {
    const bool isHeard = !IsNeutral();
    fTargetFrequency = setting.frequency;
    fPitch.Set(std::log(setting.frequency), settle || !isHeard);
    fDamping.Set(1 / setting.q, settle || !isHeard);
    fGain.Set(setting.gain, settle);
    if (IsSettled()) fCoefficients = Design(fTargetFrequency, fDamping.Target(), fGain.Target());
}

// By the integrators' gain, which is tan(w / 2).
bool NotchSection::NeedsDouble() const noexcept {
    constexpr double kMostInFloat = 10; // 0.468 of the sample rate
    const double target = std::tan(std::numbers::pi * fTargetFrequency / fSampleRate);
    return !IsNeutral() && std::max(target, fCoefficients.tuning) > kMostInFloat;
}

const NotchSection::Coefficients& NotchSection::Next() noexcept {
    if (IsSettled()) return fCoefficients;
    const double pitch = fPitch.Next();
    fCoefficients = Design(fPitch.IsSettled() ? fTargetFrequency : std::exp(pitch), fDamping.Next(), fGain.Next());
    return fCoefficients;
}

BiquadCoefficients NotchSection::ToBiquad(double sampleRate, const Setting& setting) noexcept {
    const double gain = 20 * std::log10(static_cast<double>(setting.gain));
    const double q = setting.q / std::sqrt(static_cast<double>(setting.gain));
    return BiquadCoefficients::Peaking(sampleRate, setting.frequency, q, gain);
}

NotchSection::Coefficients NotchSection::Design(double frequency, double damping, double gain) const noexcept {
    const double tuning = std::tan(std::numbers::pi * frequency / fSampleRate);
    const double feedback = tuning + damping;
    return {tuning, feedback, tuning / (1 + tuning * feedback), (gain - 1) * damping};
}

} // namespace qoc::dsp
