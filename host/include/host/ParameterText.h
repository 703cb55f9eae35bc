#pragma once

#include "kroaudiofilterhost/AudioFilter.h"

#include <string>
#include <string_view>
#include <vector>

namespace qohost {

// A parameter and the normalised value that it is to have.
struct ParameterSetting {
    int index = 0;
    float value = 0;
};

// Reads "PARAM=VALUE" as a command line has it, and changes nothing. User-interface thread, as is the next.
//
// PARAM is the parameter's number from 0, its id ("gain1") or its name as a user reads it ("Gain 1"); case, spaces and
// punctuation don't count. The id of a numbered family without a number ("gain") means all of the family.
//
// VALUE is in natural units, with or without the unit ("-6", "-6 dB", "8k"), a switch's word ("on", "off"), an item's
// name, or "n:" and a normalised number ("n:0.5"), which is taken as it is. A natural value must lie in the parameter's
// range.
//
// Throws krocore::config::Error that says what is wrong and what would be right.
std::vector<ParameterSetting> ParseParameterText(const kroaudiofilterhost::AudioFilter& filter, std::string_view text);

// The parameter's present value in the form that ParseParameterText reads: "gain1=-6 dB". Empty for an index that has
// no description.
std::string WriteParameterText(const kroaudiofilterhost::AudioFilter& filter, int index);

} // namespace qohost
