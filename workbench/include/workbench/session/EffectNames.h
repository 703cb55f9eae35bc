#pragma once

#include "qoc/components/EffectCatalogue.h"

#include <span>
#include <string>
#include <string_view>

namespace workbench {

// The effect that a user names by its identifier constant without "k" and "ComponentID", case ignored:
// "graphiceq10bands". Throws krocore::config::Error when there is none, saying what is nearest or how to list them.
const qoc::components::EffectDescription& EffectFromName(std::string_view name);

// A new instance of the effect. Throws krocore::config::Error when it has no processing yet.
boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> NewFilter(const qoc::components::EffectDescription& effect);

// Gives a prepared filter the values that settings of the form "PARAM=VALUE" name; later ones win. Linked parameters
// follow as CompleteLinkedSettings says (host/LinkedParameters.h); its notes are told on standard error. Throws
// krocore::config::Error, with nothing set.
void ApplySettings(kroaudiofilterhost::AudioFilter& filter, std::span<const std::string> settings);

} // namespace workbench
