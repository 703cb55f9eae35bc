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

double FactorForPeak(float peak, double decibels) {
    if (!(peak > 0) || !std::isfinite(peak)) return 1;
    return std::pow(10.0, decibels / kDecibelsADecade) / peak;
}

} // namespace qohost
