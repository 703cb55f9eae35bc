#include "qoc/components/BandLimit.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qoc::components {

void BandLimit::Prepare(std::size_t channels, double sampleRate) {
    fSampleRate = sampleRate;
    fChannels.assign(channels, {});
    for (SmoothedValue* const value : {&fShare, &fLow, &fHigh})
        value->Prepare(sampleRate);
}

void BandLimit::Reset() noexcept {
    for (Channel& channel : fChannels) {
        channel.high.Reset();
        channel.low.Reset();
    }
}

void BandLimit::Set(const Settings& settings, bool settle) noexcept {
    constexpr float kHighest = 0.49F; // of the sample rate
    const bool wasHeard = IsHeard();
    if (!wasHeard) Reset();
    const auto set = [](SmoothedValue& value, float target, bool jump) {
        jump ? value.Settle(target) : value.SetTarget(target);
    };
    const auto highest = kHighest * static_cast<float>(fSampleRate);
    set(fShare, settings.isOn ? 1.0F : 0.0F, settle);
    set(fLow, std::log(std::min(settings.low, highest)), settle || !wasHeard);
    set(fHigh, std::log(std::min(settings.high, highest)), settle || !wasHeard);
    fShareNow = fShare.IsSettled() ? fShare.Target() : fShareNow;
    if (fLow.IsSettled() && fHigh.IsSettled()) Design(std::exp(fLow.Target()), std::exp(fHigh.Target()));
}

void BandLimit::Advance() noexcept {
    fShareNow = fShare.Next();
    if (!fLow.IsSettled() || !fHigh.IsSettled()) Design(std::exp(fLow.Next()), std::exp(fHigh.Next()));
}

float BandLimit::Next(std::size_t channel, float sample) noexcept {
    if (fShareNow == 0) return sample;
    Channel& each = fChannels[channel];
    const double limited = each.low.Process(each.high.Process(sample));
    return static_cast<float>(sample + fShareNow * (limited - sample));
}

void BandLimit::Design(double low, double high) noexcept {
    const double q = std::numbers::sqrt2 / 2; // Butterworth
    const BiquadCoefficients highPass = BiquadCoefficients::HighPass(fSampleRate, low, q);
    const BiquadCoefficients lowPass = BiquadCoefficients::LowPass(fSampleRate, high, q);
    for (Channel& channel : fChannels) {
        channel.high.SetCoefficients(highPass);
        channel.low.SetCoefficients(lowPass);
    }
}

} // namespace qoc::components
