#include "qoc/components/BandLimit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace qoc::components {

void BandLimit::Prepare(std::size_t channels, double sampleRate) {
    fSampleRate = sampleRate;
    fFilters.Prepare(sampleRate, channels, 2);
    fGain.Prepare(channels);
    for (SmoothedValue* const value : {&fShare, &fLow, &fHigh})
        value->Prepare(sampleRate);
}

void BandLimit::Reset() noexcept {
    fFilters.Reset();
    fGain.Reset();
}

void BandLimit::Set(const Settings& settings, bool settle) noexcept {
    constexpr double kHighest = 0.49; // of the sample rate
    constexpr double kButterworthQ = std::numbers::sqrt2 / 2;
    const bool jumps = settle || !IsHeard();
    if (!IsHeard()) Reset();
    const double low = std::min<double>(settings.low, kHighest / BandGain::kNarrowest * fSampleRate);
    const double high = std::min<double>(settings.high, kHighest * fSampleRate);
    fShare.Set(settings.isOn ? 1 : 0, settle);
    fLow.Set(std::log(low), jumps);
    fHigh.Set(std::log(high), jumps);
    fFilters.Set(std::array{BiquadCoefficients::HighPass(fSampleRate, low, kButterworthQ),
                            BiquadCoefficients::LowPass(fSampleRate, high, kButterworthQ)},
                 jumps);
    if (fShare.IsSettled()) fShareNow = fShare.Target();
    if (fLow.IsSettled() && fHigh.IsSettled()) fGain.SetBand(fSampleRate, low, high);
}

void BandLimit::Advance() noexcept {
    fShareNow = fShare.Next();
    fFilters.Advance();
    if (!fLow.IsSettled() || !fHigh.IsSettled())
        fGain.SetBand(fSampleRate, std::exp(fLow.Next()), std::exp(fHigh.Next()));
}

float BandLimit::Next(std::size_t channel, float sample) noexcept {
    if (fShareNow == 0) return sample;
    return static_cast<float>(sample + fShareNow * (fFilters.Process(channel, sample) - sample));
}

double BandLimit::ChangedInBand(std::size_t channel, double sample, double gain) noexcept {
    const double whole = gain * sample;
    return whole + fShareNow * (fGain.Process(channel, sample, gain) - whole);
}

} // namespace qoc::components
