#include "qoc/dsp/filters/BandLimit.h"

#include "qoc/dsp/filters/MatchedDesign.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace qoc::dsp {

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

BandLimit::Edges::Edges(double sampleRate, const Settings& settings) noexcept {
    constexpr double kHighest = 0.49; // of the sample rate
    low = std::min<double>(settings.low, kHighest / BandGain::kNarrowest * sampleRate);
    high = std::min<double>(settings.high, kHighest * sampleRate);
}

std::array<BiquadCoefficients, 2> BandLimit::Edges::Filters(double sampleRate) const noexcept {
    constexpr int kOrder = 2;
    return {MatchedDesign::HighPass(sampleRate, low, kOrder)[0], MatchedDesign::LowPass(sampleRate, high, kOrder)[0]};
}

double BandLimit::DecaySamples(double sampleRate, const Settings& settings) noexcept {
    constexpr double kDecayed = 1e-5; // 100 dB
    if (!settings.isOn) return 0;
    const Edges edges(sampleRate, settings);
    return BandGain::DecaySamples(sampleRate, edges.low, edges.high) +
           BiquadCoefficients::DecaySamples(edges.Filters(sampleRate), kDecayed);
}

void BandLimit::Set(const Settings& settings, bool settle) noexcept {
    const bool jumps = settle || !IsHeard();
    if (!IsHeard()) Reset();
    const Edges edges(fSampleRate, settings);
    fShare.Set(settings.isOn ? 1 : 0, settle);
    fLow.Set(std::log(edges.low), jumps);
    fHigh.Set(std::log(edges.high), jumps);
    fFilters.Set(edges.Filters(fSampleRate), jumps);
    if (fShare.IsSettled()) fShareNow = fShare.Target();
    if (fLow.IsSettled() && fHigh.IsSettled()) fGain.SetBand(fSampleRate, edges.low, edges.high);
}

bool BandLimit::IsSettled() const noexcept {
    return fShare.IsSettled() && fLow.IsSettled() && fHigh.IsSettled() && fFilters.IsSettled();
}

void BandLimit::Advance() noexcept {
    fShareNow = fShare.Next();
    fFilters.Advance();
    if (!fLow.IsSettled() || !fHigh.IsSettled())
        fGain.SetBand(fSampleRate, std::exp(fLow.Next()), std::exp(fHigh.Next()));
}

void BandLimit::Next(std::size_t channel, std::span<const float> sound, float* band) noexcept {
    std::ranges::copy(sound, band);
    if (fShareNow == 0) return;
    for (std::size_t i = 0; i < sound.size(); ++i)
        band[i] = static_cast<float>(sound[i] + fShareNow * (fFilters.Process(channel, sound[i]) - sound[i]));
}

void BandLimit::Change(std::size_t channel, std::span<const float> sound, double* gains) noexcept {
    for (std::size_t i = 0; i < sound.size(); ++i) {
        const double whole = gains[i] * sound[i];
        gains[i] = fShareNow == 0 ? whole : whole + fShareNow * (fGain.Process(channel, sound[i], gains[i]) - whole);
    }
}

} // namespace qoc::dsp
