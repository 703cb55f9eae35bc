#include "qoc/dsp/reverb/RoomChannels.h"

#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>

namespace qoc::dsp {

void RoomChannels::Prepare(double sampleRate, const kromediatypes::AudioChannelLayout& layout) {
    fChannels.clear();
    for (std::size_t channel = 0; channel < layout.size(); ++channel) {
        if (layout[channel] != kromediatypes::kAudioChannelLabelLFE) fChannels.push_back(channel);
    }
    fDry.assign(layout.size(), {});
    fMeanShare.Prepare(sampleRate);
}

void RoomChannels::SetSums(bool sums, bool settle) noexcept {
    fMeanShare.Set(sums ? 1 : 0, settle);
}

void RoomChannels::Take(const kromediatypes::AudioBlock& block, std::size_t begin, std::size_t frames,
                        std::span<SoundPiece> sound) noexcept {
    for (std::size_t channel = 0; channel < fDry.size(); ++channel) {
        const float* const input = block.inputs[channel] + begin;
        std::transform(input, input + frames, fDry[channel].begin(), SaneSample);
    }
    for (std::size_t i = 0; i < fChannels.size(); ++i)
        sound[i] = fDry[fChannels[i]];
    if (fMeanShare.IsSettled() && fMeanShare.Target() == 0) return;
    SoundPiece share{};
    fMeanShare.Next(std::span(share).first(frames));
    SoundPiece mean{};
    for (const SoundPiece& piece : sound) {
        for (std::size_t k = 0; k < kPieceFrames; ++k)
            mean[k] += piece[k];
    }
    for (SoundPiece& piece : sound) {
        for (std::size_t k = 0; k < kPieceFrames; ++k)
            piece[k] += share[k] * (mean[k] / static_cast<float>(sound.size()) - piece[k]);
    }
}

} // namespace qoc::dsp
