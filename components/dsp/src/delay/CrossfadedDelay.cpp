#include "qoc/dsp/delay/CrossfadedDelay.h"

#include <algorithm>

namespace qoc::dsp {

void CrossfadedDelay::Prepare(double sampleRate, std::size_t channels, std::size_t longest) {
    fLongest = longest;
    fLines.assign(channels, {});
    for (DelayLine& line : fLines)
        line.Prepare(longest + kPieceFrames);
    fTap.Prepare(sampleRate);
}

void CrossfadedDelay::Reset() noexcept {
    for (DelayLine& line : fLines)
        line.Reset();
}

void CrossfadedDelay::Set(std::size_t delay, bool settle) noexcept {
    fTap.Set(std::min(delay, fLongest), settle);
}

void CrossfadedDelay::Process(std::span<SoundPiece> channels, std::size_t frames) noexcept {
    if (fTap.IsSettled()) {
        const std::size_t delay = fTap.Next().delay;
        for (std::size_t channel = 0; channel < fLines.size(); ++channel) {
            const auto sound = std::span(channels[channel]).first(frames);
            fLines[channel].Write(sound);
            fLines[channel].Read(delay + frames - 1, sound);
        }
        return;
    }
    for (std::size_t i = 0; i < frames; ++i) {
        const CrossfadedTap::Place place = fTap.Next();
        for (std::size_t channel = 0; channel < fLines.size(); ++channel) {
            fLines[channel].Write(channels[channel][i]);
            channels[channel][i] = place.In(fLines[channel]);
        }
    }
}

} // namespace qoc::dsp
