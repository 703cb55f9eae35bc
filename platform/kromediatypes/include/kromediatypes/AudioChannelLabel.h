#pragma once

#include "krocore/String.h"

#include <cstdint>

namespace kromediatypes {

// Where a channel of a bus is meant to be heard.
enum AudioChannelLabel : std::uint32_t {
    kAudioChannelLabelUnknown = 0, // no place: a user sees the channel's number
    kAudioChannelLabelLeft,
    kAudioChannelLabelRight,
    kAudioChannelLabelCenter,
    kAudioChannelLabelLFE,
    kAudioChannelLabelLeftSurround,
    kAudioChannelLabelRightSurround,
    kAudioChannelLabelLeftRearSurround,
    kAudioChannelLabelRightRearSurround,
    kAudioChannelLabelCenterSurround,
    kAudioChannelLabelMono,
};

// The label in the user's language ("Left Surround"); with `withAbbreviation` the short form follows in parentheses
// ("Left Surround (Ls)"). Empty for the unknown label and for a number that is no label. User-interface thread.
krocore::string16 AudioChannelLabelDescription(AudioChannelLabel label, bool withAbbreviation);

// The short form ("Ls"), empty as above. User-interface thread.
krocore::string16 AudioChannelLabelAbbreviations(AudioChannelLabel label);

} // namespace kromediatypes
