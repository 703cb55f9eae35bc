#include "qoc/dsp/stream/ChannelSide.h"

#include <algorithm>

namespace qoc::dsp {

using namespace kromediatypes;

namespace {

AudioChannelLabel MirrorOf(AudioChannelLabel label) noexcept {
    switch (label) {
    case kAudioChannelLabelLeft: return kAudioChannelLabelRight;
    case kAudioChannelLabelRight: return kAudioChannelLabelLeft;
    case kAudioChannelLabelLeftSurround: return kAudioChannelLabelRightSurround;
    case kAudioChannelLabelRightSurround: return kAudioChannelLabelLeftSurround;
    case kAudioChannelLabelLeftRearSurround: return kAudioChannelLabelRightRearSurround;
    case kAudioChannelLabelRightRearSurround: return kAudioChannelLabelLeftRearSurround;
    default: return kAudioChannelLabelUnknown;
    }
}

} // namespace

ChannelSide SideOf(AudioChannelLabel label) noexcept {
    switch (label) {
    case kAudioChannelLabelLeft:
    case kAudioChannelLabelLeftSurround:
    case kAudioChannelLabelLeftRearSurround: return ChannelSide::kLeft;
    case kAudioChannelLabelRight:
    case kAudioChannelLabelRightSurround:
    case kAudioChannelLabelRightRearSurround: return ChannelSide::kRight;
    default: return ChannelSide::kMiddle;
    }
}

std::vector<ChannelSide> SidesOf(const AudioChannelLayout& layout) {
    std::vector<ChannelSide> sides(layout.size());
    std::ranges::transform(layout, sides.begin(), SideOf);
    return sides;
}

std::vector<std::size_t> MirrorsOf(const AudioChannelLayout& layout) {
    std::vector<std::size_t> mirrors;
    for (std::size_t channel = 0; channel < layout.size(); ++channel) {
        const AudioChannelLabel label = MirrorOf(layout[channel]);
        const auto found = label == kAudioChannelLabelUnknown ? layout.end() : std::ranges::find(layout, label);
        mirrors.push_back(found == layout.end() ? channel : static_cast<std::size_t>(found - layout.begin()));
    }
    return mirrors;
}

} // namespace qoc::dsp
