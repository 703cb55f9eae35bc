#pragma once

#include "krocore/String.h"
#include "kromediatypes/AudioChannelLabel.h"

#include <cstddef>
#include <initializer_list>
#include <utility>
#include <vector>

namespace kromediatypes {

// The channels of a bus in the order in which they lie in a block of sound. A value: copied freely, compared by
// content.
class AudioChannelLayout {
public:
    AudioChannelLayout() = default; // no channels
    AudioChannelLayout(std::initializer_list<AudioChannelLabel> labels) : fLabels(labels) {}
    explicit AudioChannelLayout(std::vector<AudioChannelLabel> labels) : fLabels(std::move(labels)) {}

    static AudioChannelLayout Mono();
    static AudioChannelLayout Stereo();
    static AudioChannelLayout Quad();
    static AudioChannelLayout Surround51();
    static AudioChannelLayout Surround71();
    // `channels` channels without a place.
    static AudioChannelLayout Discrete(std::size_t channels);
    // What a file with that many channels and no further word most likely holds: the layouts above for 1, 2, 4, 6 and 8
    // channels (channel order of WAVE files), otherwise discrete.
    static AudioChannelLayout ForChannelCount(std::size_t channels);

    std::size_t size() const noexcept { return fLabels.size(); }
    bool empty() const noexcept { return fLabels.empty(); }
    // `channel` must be below size().
    AudioChannelLabel operator[](std::size_t channel) const noexcept { return fLabels[channel]; }
    auto begin() const noexcept { return fLabels.begin(); }
    auto end() const noexcept { return fLabels.end(); }

    // What a user calls the channel: its label's description or abbreviation, its number from 1 when it has no label,
    // nothing when there is no such channel.
    krocore::string16 ChannelName(std::size_t channel, bool abbreviated) const;

    bool operator==(const AudioChannelLayout&) const = default;

private:
    std::vector<AudioChannelLabel> fLabels;
};

} // namespace kromediatypes
