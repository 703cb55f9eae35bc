#pragma once

#include "kromediatypes/AudioChannelLayout.h"

#include <cstddef>
#include <vector>

namespace qohost {

// How the channels of a sound are heard on an output device: a gain from each channel to each output.
class ChannelMatrix {
public:
    ChannelMatrix() = default;

    // Mono goes to every output. On two outputs, sides go to their side, center and surround center to both at -3 dB,
    // the LFE is left out (downmix of ITU-R BS.775), and channels without a place by turns left and right. One output
    // gets the mean. With as many outputs as channels, or more, channel n goes to output n.
    ChannelMatrix(const kromediatypes::AudioChannelLayout& layout, std::size_t outputs);

    std::size_t Outputs() const noexcept { return fOutputs; }
    // `output` and `channel` below the counts.
    float Gain(std::size_t output, std::size_t channel) const noexcept { return fGains[output * fChannels + channel]; }

private:
    std::size_t fChannels = 0;
    std::size_t fOutputs = 0;
    std::vector<float> fGains;
};

} // namespace qohost
