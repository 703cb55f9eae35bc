#include "qoc/dsp/reverb/RoomChannels.h"

#include "qoc/dsp/stream/SaneSample.h"

#include <numeric>

namespace qoc::dsp {

void RoomChannels::Prepare(double sampleRate, const kromediatypes::AudioChannelLayout& layout) {
    fChannels.clear();
    for (std::size_t channel = 0; channel < layout.size(); ++channel) {
        if (layout[channel] != kromediatypes::kAudioChannelLabelLFE) fChannels.push_back(channel);
    }
    fDry.assign(layout.size(), 0.0F);
    fSound.assign(fChannels.size(), 0.0F);
    fMeanShare.Prepare(sampleRate);
}

void RoomChannels::SetSums(bool sums, bool settle) noexcept {
    fMeanShare.Set(sums ? 1 : 0, settle);
}

void RoomChannels::Take(const kromediatypes::AudioBlock& block, std::size_t frame) noexcept {
    for (std::size_t channel = 0; channel < fDry.size(); ++channel)
        fDry[channel] = SaneSample(block.inputs[channel][frame]);
    for (std::size_t i = 0; i < fChannels.size(); ++i)
        fSound[i] = fDry[fChannels[i]];
    const float share = fMeanShare.Next();
    if (share == 0) return;
    const float mean = std::accumulate(fSound.begin(), fSound.end(), 0.0F) / static_cast<float>(fSound.size());
    for (float& sample : fSound)
        sample += share * (mean - sample);
}

} // namespace qoc::dsp
