#include "qoc/dsp/pitch/SpectralSplice.h"

#include "math/ComplexProduct.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace qoc::dsp {

namespace {

struct Sums {
    std::complex<float> product;
    float before = 0;
    float sounded = 0;
};

Sums SumUp(const SpectralSplice::Channel& channel, std::size_t begin, std::size_t end) noexcept {
    Sums sums;
    for (std::size_t bin = begin; bin < end; ++bin) {
        sums.product += Product(channel.sounded[bin], std::conj(channel.before[bin]));
        sums.before += std::norm(channel.before[bin]);
        sums.sounded += std::norm(channel.sounded[bin]);
    }
    return sums;
}

// The integral over the product of two squared Hann windows, so much of their length apart, against that of one.
double WindowsInCommon(double apart) noexcept {
    constexpr int kPoints = 64;
    const auto square = [](double place) {
        const double sine = std::sin(std::numbers::pi * place);
        return sine * sine * sine * sine;
    };
    double sum = 0;
    for (int i = 0; i < kPoints; ++i) {
        const double place = apart + (1 - apart) * (i + 0.5) / kPoints;
        sum += square(place) * square(place - apart) * (1 - apart) / kPoints;
    }
    return sum / (35.0 / 128);
}

} // namespace

void SpectralSplice::Prepare(std::size_t bins) {
    fPower.assign(bins, 0.0F);
    fEnds.assign(bins, 0);
    fEnds.clear();
}

// The regions are found first, which takes about as long as the steps that turn them take each.
void SpectralSplice::Turn(std::span<const Channel> channels, std::size_t step, std::size_t steps) noexcept {
    if (step == 0) {
        FindRegions(channels);
        fTurned = 0;
    }
    const std::size_t bins = channels.front().present.size();
    const std::size_t end = step + 1 == steps ? bins : step * bins / (steps - 1);
    for (; fTurned < fEnds.size() && (fTurned == 0 ? 0 : fEnds[fTurned - 1]) < end; ++fTurned)
        TurnRegion(channels, fTurned == 0 ? 0 : fEnds[fTurned - 1], fEnds[fTurned]);
}

void SpectralSplice::TurnRegion(std::span<const Channel> channels, std::size_t begin, std::size_t end) const noexcept {
    Common common;
    for (const Channel& channel : channels) {
        const Sums sums = SumUp(channel, begin, end);
        common.product += sums.product;
        common.before += sums.before;
        common.sounded += sums.sounded;
    }
    const std::complex<float> turn = TurnOf(common);
    for (const Channel& channel : channels) {
        for (std::size_t bin = begin; bin < end; ++bin)
            channel.sounded[bin] = Product(channel.present[bin], turn);
    }
}

// The power of a sum of frames, of which each has `coherence` in common with the next, against that of equal ones.
// While a ratio glides that is asked for with every frame.
void SpectralSplice::SetOverlap(double frames) noexcept {
    if (frames == fOverlap) return;
    fOverlap = frames;
    constexpr int kMost = 16;
    std::array<double, kMost> common; // by how many frames apart
    const int count = std::min(kMost, static_cast<int>(std::ceil(frames)));
    for (int apart = 1; apart < count; ++apart)
        common[static_cast<std::size_t>(apart)] = 2 * WindowsInCommon(apart / frames);
    for (std::size_t i = 0; i < fGains.size(); ++i) {
        const double coherence = static_cast<double>(i) / static_cast<double>(fGains.size() - 1);
        double power = 1;
        double equal = 1;
        double share = 1;
        for (int apart = 1; apart < count; ++apart) {
            power += common[static_cast<std::size_t>(apart)] * (share *= coherence);
            equal += common[static_cast<std::size_t>(apart)];
        }
        fGains[i] = static_cast<float>(std::sqrt(equal / power));
    }
}

// None where there was nothing, or too much.
std::complex<float> SpectralSplice::TurnOf(const Common& common) const noexcept {
    const double size = std::sqrt(std::norm(common.product));
    const float gain = GainAt(size / std::sqrt(common.before * common.sounded));
    if (!(size > 0) || !std::isfinite(size)) return gain;
    const double scale = 1 / size;
    return {gain * static_cast<float>(scale * common.product.real()),
            gain * static_cast<float>(scale * common.product.imag())};
}

float SpectralSplice::GainAt(double coherence) const noexcept {
    if (!(coherence < 1)) return 1;
    const double place = coherence * static_cast<double>(fGains.size() - 1);
    const auto before = static_cast<std::size_t>(place);
    return std::lerp(fGains[before], fGains[before + 1], static_cast<float>(place - static_cast<double>(before)));
}

// A region ends at the lowest bin between two peaks.
void SpectralSplice::FindRegions(std::span<const Channel> channels) noexcept {
    const std::size_t bins = channels.front().present.size();
    std::fill_n(fPower.begin(), bins, 0.0F);
    for (const Channel& channel : channels) {
        for (std::size_t bin = 0; bin < bins; ++bin)
            fPower[bin] += std::norm(channel.present[bin]);
    }
    fEnds.clear();
    std::size_t lowest = 0; // since the last peak
    bool hasPeak = false;
    for (std::size_t bin = 0; bin < bins; ++bin) {
        if (fPower[bin] < fPower[lowest]) lowest = bin;
        if (!IsPeak(bin, bins)) continue;
        if (hasPeak) fEnds.push_back(lowest);
        hasPeak = true;
        lowest = bin;
    }
    fEnds.push_back(bins);
}

bool SpectralSplice::IsPeak(std::size_t bin, std::size_t bins) const noexcept {
    const bool isAboveBefore = bin == 0 || fPower[bin] > fPower[bin - 1];
    return isAboveBefore && (bin + 1 == bins || fPower[bin] >= fPower[bin + 1]);
}

} // namespace qoc::dsp
