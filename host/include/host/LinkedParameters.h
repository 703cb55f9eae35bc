#pragma once

#include "host/ParameterText.h"

#include <string>
#include <vector>

namespace qohost {

// Parameters that a switch of the filter makes one value: a panel moves them together while it is on, and so does
// whoever else sets them.
struct LinkedParameters {
    int linkSwitch = 0;
    std::vector<int> members; // that can be set, at least two
};

std::vector<LinkedParameters> FindLinkedParameters(const kroaudiofilterhost::AudioFilter& filter);

// Settings that are to be made, one after the other, completed so that linked parameters stay one value:
// - of a group that will be linked, what is set of one member holds for all;
// - members that are set to different values switch the link off, unless the settings switch it on. Each such switch is
//   told in a sentence.
// Throws krocore::config::Error, with the settings as they were, for different values under a link that they switch on.
std::vector<std::string> CompleteLinkedSettings(const kroaudiofilterhost::AudioFilter& filter,
                                                std::vector<ParameterSetting>& settings);

} // namespace qohost
