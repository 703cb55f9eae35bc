#pragma once

#include "kromediatypes/AudioChannelLayout.h"

#include <cstddef>
#include <vector>

namespace qohost {

// A whole sound in memory: one buffer a channel, all equally long, nominally -1...1. A value.
struct Sound {
    float sampleRate = 44100.0F; // hertz
    kromediatypes::AudioChannelLayout layout;
    std::vector<std::vector<float>> channels; // as many as the layout has

    std::size_t Frames() const noexcept { return channels.empty() ? 0 : channels.front().size(); }
    double Seconds() const noexcept { return static_cast<double>(Frames()) / sampleRate; }

    // Silence.
    static Sound Silent(float sampleRate, const kromediatypes::AudioChannelLayout& layout, std::size_t frames);
};

} // namespace qohost
