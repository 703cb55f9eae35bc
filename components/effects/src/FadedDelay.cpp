#include "qoc/components/FadedDelay.h"

#include <algorithm>
#include <cmath>

namespace qoc::components {

namespace {

constexpr double kFadeSeconds = 0.03;

} // namespace

void FadedDelay::Prepare(double sampleRate, std::size_t channels, std::size_t longest) {
    fChannels = channels;
    fFrames = longest + 1;
    fRing.assign(fFrames * channels, 0.0F);
    fFadeLength = static_cast<std::size_t>(std::ceil(kFadeSeconds * sampleRate));
}

void FadedDelay::Reset() noexcept {
    std::ranges::fill(fRing, 0.0F);
    fPosition = 0;
}

void FadedDelay::Set(std::size_t delay, bool settle) noexcept {
    fPending = std::min(delay, fFrames - 1);
    if (settle) {
        fFrom = fTo = fPending;
        fFadeRemaining = 0;
    } else if (fFadeRemaining == 0 && fPending != fTo) {
        fTo = fPending;
        fFadeRemaining = fFadeLength;
    }
}

void FadedDelay::Process(float* frame) noexcept {
    std::copy_n(frame, fChannels, fRing.data() + fPosition * fChannels);
    std::copy_n(FrameBefore(fTo), fChannels, frame);
    if (fFadeRemaining > 0) {
        const float share = static_cast<float>(fFadeRemaining) / static_cast<float>(fFadeLength);
        const float* const before = FrameBefore(fFrom);
        for (std::size_t channel = 0; channel < fChannels; ++channel)
            frame[channel] += share * (before[channel] - frame[channel]);
    }
    Advance();
}

const float* FadedDelay::FrameBefore(std::size_t delay) const noexcept {
    const std::size_t position = fPosition >= delay ? fPosition - delay : fPosition + fFrames - delay;
    return fRing.data() + position * fChannels;
}

void FadedDelay::Advance() noexcept {
    if (++fPosition == fFrames) fPosition = 0;
    if (fFadeRemaining == 0 || --fFadeRemaining > 0) return;
    fFrom = fTo;
    Set(fPending, false);
}

} // namespace qoc::components
