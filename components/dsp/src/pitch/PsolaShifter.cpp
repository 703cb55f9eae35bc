#include "qoc/dsp/pitch/PsolaShifter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qoc::dsp {

namespace {

// Blackman-Harris window (F. J. Harris 1978), four terms, at -1...1.
double Window(double place) {
    const double angle = std::numbers::pi * place;
    return 0.35875 + 0.48829 * std::cos(angle) + 0.14128 * std::cos(2 * angle) + 0.01168 * std::cos(3 * angle);
}

double Sinc(double x) {
    const double angle = std::numbers::pi * x;
    return std::abs(angle) < 1e-9 ? 1.0 : std::sin(angle) / angle;
}

} // namespace

void PsolaShifter::Prepare(std::size_t latency) {
    fLatency = static_cast<std::int64_t>(latency);
    Reset();
}

void PsolaShifter::Reset() noexcept {
    fFading = fRising = Grain();
    fStart = 0;
    fLength = 1;
    fDone = 1;
    fVoiced = false;
}

std::size_t PsolaShifter::FramesUntilMark() const noexcept {
    const auto segment = static_cast<std::size_t>(std::ceil(fLength - fStart));
    return segment > fDone ? segment - fDone : 0;
}

void PsolaShifter::StartGrain(const HistoryBuffer& history, std::size_t guide, double period, double ratio) noexcept {
    if (!fVoiced) {
        fVoiced = true;
        StartNext(DistanceToPeak(history, guide, period), 0);
        return;
    }
    fVoiced = true;
    const double length = period / ratio;
    StartNext(length, Wrap(fRising.shift + period - length, period));
}

void PsolaShifter::StartPlainGrain(double frames) noexcept {
    fVoiced = false;
    StartNext(frames, 0);
}

void PsolaShifter::Render(const HistoryBuffer& history, std::span<float* const> outputs, std::size_t offset,
                          std::size_t frames) noexcept {
    const bool isOne = fFading.shift == fRising.shift;
    for (std::size_t i = 0; i < frames && !isOne; ++i)
        fFade[i] = static_cast<float>((fStart + static_cast<double>(fDone + i)) / fLength);
    for (std::size_t channel = 0; channel < outputs.size(); ++channel) {
        float* output = outputs[channel] + offset;
        Read(history, channel, fFading, frames, output);
        if (isOne) continue;
        Read(history, channel, fRising, frames, fRisingSound.data());
        for (std::size_t i = 0; i < frames; ++i)
            output[i] += fFade[i] * (fRisingSound[i] - output[i]);
    }
    fDone += frames;
}

void PsolaShifter::SetShift(Grain& grain, double shift) noexcept {
    grain.shift = shift;
    grain.whole = static_cast<std::int64_t>(std::floor(shift));
    const double fraction = shift - std::floor(shift);
    grain.isWhole = fraction == 0;
    if (grain.isWhole) return;
    double sum = 0;
    std::array<double, 2 * kHalfTaps> taps;
    for (int tap = 0; tap < 2 * kHalfTaps; ++tap) {
        const double distance = tap - (kHalfTaps - 1) - fraction;
        taps[tap] = Sinc(distance) * Window(distance / kHalfTaps);
        sum += taps[tap];
    }
    for (int tap = 0; tap < 2 * kHalfTaps; ++tap)
        grain.taps[tap] = static_cast<float>(taps[tap] / sum);
}

void PsolaShifter::StartNext(double length, double shift) noexcept {
    fStart += static_cast<double>(fDone) - fLength;
    fDone = 0;
    fLength = length;
    fFading = fRising;
    SetShift(fRising, shift);
}

double PsolaShifter::DistanceToPeak(const HistoryBuffer& history, std::size_t guide, double period) const noexcept {
    const auto count = static_cast<std::int64_t>(std::min(std::ceil(period), static_cast<double>(fLatency)));
    const float* sound = history.At(guide, history.Now() - fLatency);
    const float* peak =
        std::max_element(sound, sound + count, [](float a, float b) { return std::abs(a) < std::abs(b); });
    const auto distance = static_cast<double>(peak - sound);
    return distance < period / 2 ? distance + period : distance;
}

// Whole periods more or less: to the place nearest to where the grain would be unmoved, as far as the latency allows.
double PsolaShifter::Wrap(double shift, double period) const noexcept {
    const double highest = std::min(period / 2, static_cast<double>(fLatency - kHalfTaps - 1));
    return shift - period * std::ceil((shift - highest) / period);
}

void PsolaShifter::Read(const HistoryBuffer& history, std::size_t channel, const Grain& grain, std::size_t frames,
                        float* target) const noexcept {
    const std::int64_t first = history.Now() - static_cast<std::int64_t>(frames) - fLatency + grain.whole;
    if (grain.isWhole) {
        std::copy_n(history.At(channel, first), frames, target);
        return;
    }
    const float* source = history.At(channel, first - (kHalfTaps - 1));
    std::fill_n(target, frames, 0.0F);
    for (std::size_t tap = 0; tap < grain.taps.size(); ++tap) {
        for (std::size_t i = 0; i < frames; ++i)
            target[i] += grain.taps[tap] * source[tap + i];
    }
}

} // namespace qoc::dsp
