#include "kromediatypes/AudioChannelLayout.h"

#include <string>

namespace kromediatypes {

AudioChannelLayout AudioChannelLayout::Mono() {
    return {kAudioChannelLabelMono};
}

AudioChannelLayout AudioChannelLayout::Stereo() {
    return {kAudioChannelLabelLeft, kAudioChannelLabelRight};
}

AudioChannelLayout AudioChannelLayout::Quad() {
    return {kAudioChannelLabelLeft, kAudioChannelLabelRight, kAudioChannelLabelLeftSurround,
            kAudioChannelLabelRightSurround};
}

AudioChannelLayout AudioChannelLayout::Surround51() {
    return {kAudioChannelLabelLeft, kAudioChannelLabelRight,        kAudioChannelLabelCenter,
            kAudioChannelLabelLFE,  kAudioChannelLabelLeftSurround, kAudioChannelLabelRightSurround};
}

AudioChannelLayout AudioChannelLayout::Surround71() {
    return {kAudioChannelLabelLeft,
            kAudioChannelLabelRight,
            kAudioChannelLabelCenter,
            kAudioChannelLabelLFE,
            kAudioChannelLabelLeftRearSurround,
            kAudioChannelLabelRightRearSurround,
            kAudioChannelLabelLeftSurround,
            kAudioChannelLabelRightSurround};
}

AudioChannelLayout AudioChannelLayout::Discrete(std::size_t channels) {
    AudioChannelLayout layout;
    layout.fLabels.assign(channels, kAudioChannelLabelUnknown);
    return layout;
}

AudioChannelLayout AudioChannelLayout::ForChannelCount(std::size_t channels) {
    switch (channels) {
    case 1: return Mono();
    case 2: return Stereo();
    case 4: return Quad();
    case 6: return Surround51();
    case 8: return Surround71();
    default: return Discrete(channels);
    }
}

krocore::string16 AudioChannelLayout::ChannelName(std::size_t channel, bool abbreviated) const {
    if (channel >= fLabels.size()) return {};
    const AudioChannelLabel label = fLabels[channel];
    if (label == kAudioChannelLabelUnknown) return krocore::FromASCII(std::to_string(channel + 1));
    return abbreviated ? AudioChannelLabelAbbreviations(label) : AudioChannelLabelDescription(label, false);
}

} // namespace kromediatypes
