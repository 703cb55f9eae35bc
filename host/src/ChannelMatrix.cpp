#include "ChannelMatrix.h"

#include <algorithm>

namespace qohost {

namespace {

using namespace kromediatypes;

struct StereoGain {
    float left;
    float right;
};

// ITU-R BS.775-3, table 2: what belongs to both sides goes in at -3 dB.
constexpr float kBothSides = 0.70710678F;

StereoGain StereoGainOf(AudioChannelLabel label, std::size_t channel) {
    switch (label) {
    case kAudioChannelLabelLeft:
    case kAudioChannelLabelLeftSurround:
    case kAudioChannelLabelLeftRearSurround: return {1, 0};
    case kAudioChannelLabelRight:
    case kAudioChannelLabelRightSurround:
    case kAudioChannelLabelRightRearSurround: return {0, 1};
    case kAudioChannelLabelCenter:
    case kAudioChannelLabelCenterSurround: return {kBothSides, kBothSides};
    case kAudioChannelLabelLFE: return {0, 0};
    default: return channel % 2 == 0 ? StereoGain{1, 0} : StereoGain{0, 1};
    }
}

} // namespace

ChannelMatrix::ChannelMatrix(const AudioChannelLayout& layout, std::size_t outputs)
    : fChannels(layout.size()), fOutputs(outputs), fGains(fChannels * fOutputs) {
    const bool isFoldedToStereo = outputs == 2 && fChannels > 2;
    for (std::size_t channel = 0; channel < fChannels; ++channel) {
        for (std::size_t output = 0; output < outputs; ++output) {
            float& gain = fGains[output * fChannels + channel];
            if (fChannels == 1) {
                gain = 1;
            } else if (outputs == 1) {
                gain = 1.0F / static_cast<float>(fChannels);
            } else if (isFoldedToStereo) {
                const StereoGain stereo = StereoGainOf(layout[channel], channel);
                gain = output == 0 ? stereo.left : stereo.right;
            } else {
                gain = output == channel ? 1.0F : 0.0F;
            }
        }
    }
}

} // namespace qohost
