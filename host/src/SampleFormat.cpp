#include "host/SampleFormat.h"

#include "AudioFileEncodings.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qohost {

namespace {

constexpr double kDecibelsADecade = 20;

bool HoldsEverything(int encoding) {
    switch (encoding & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_FLOAT:
    case SF_FORMAT_DOUBLE:
    case SF_FORMAT_VORBIS:
    case SF_FORMAT_OPUS: return true;
    default: return false;
    }
}

// Half a step beyond full scale is rounded to it.
float LimitOf(int encoding) {
    constexpr int kFinestBits = 24;
    if (HoldsEverything(encoding)) return std::numeric_limits<float>::infinity();
    const int bits = WholeNumberBits(encoding) > 0 ? std::min(WholeNumberBits(encoding), kFinestBits) : kFinestBits;
    return static_cast<float>(1 + std::ldexp(0.5, 1 - bits));
}

float PeakOf(const Sound& sound) {
    float peak = 0;
    for (const auto& channel : sound.channels)
        for (const float sample : channel)
            // What is no number stays in the peak.
            if (!(std::abs(sample) <= peak)) peak = std::abs(sample);
    return peak;
}

} // namespace

ClippingMeter::ClippingMeter(int encoding) : fLimit(LimitOf(encoding)) {
}

void ClippingMeter::Measure(std::span<const float* const> channels, std::size_t frames) noexcept {
    for (const float* const channel : channels) {
        for (std::size_t i = 0; i < frames; ++i) {
            if (!(std::abs(channel[i]) > fLimit)) continue;
            ++fClipped;
            fPeak = std::max(fPeak, std::abs(channel[i]));
        }
    }
    fAll += channels.size() * frames;
}

Clipping ClippingMeter::Result() const {
    if (fClipped == 0) return {};
    return {.samples = fClipped,
            .part = static_cast<double>(fClipped) / static_cast<double>(fAll),
            .decibels = kDecibelsADecade * std::log10(static_cast<double>(fPeak))};
}

void NormalizePeak(Sound& sound, double decibels) {
    const float peak = PeakOf(sound);
    if (!(peak > 0) || !std::isfinite(peak)) return;
    const double factor = std::pow(10.0, decibels / kDecibelsADecade) / peak;
    for (auto& channel : sound.channels)
        for (float& sample : channel)
            sample = static_cast<float>(sample * factor);
}

} // namespace qohost
