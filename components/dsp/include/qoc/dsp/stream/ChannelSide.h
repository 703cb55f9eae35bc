#pragma once

#include "kromediatypes/AudioChannelLayout.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qoc::dsp {

// Where a channel's loudspeaker stands, for effects that treat left and right differently.
enum class ChannelSide : std::uint8_t { kMiddle, kLeft, kRight };

// A mono channel, a centre, an effects channel and one without a label stand in the middle.
ChannelSide SideOf(kromediatypes::AudioChannelLabel label) noexcept;
// Of every channel.
std::vector<ChannelSide> SidesOf(const kromediatypes::AudioChannelLayout& layout);
// For every channel the one that mirrors it, left for right; the channel itself where there is none.
std::vector<std::size_t> MirrorsOf(const kromediatypes::AudioChannelLayout& layout);

} // namespace qoc::dsp
