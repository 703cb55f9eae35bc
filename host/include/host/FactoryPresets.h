#pragma once

#include "host/Preset.h"
#include "qoc/components/EffectCatalogue.h"

namespace qohost {

// The presets that come with an effect, as they stand embedded in this library. The first is "Default". Any thread.
// Throws krocore::config::Error if the library was built
// with a broken file.
std::vector<Preset> FactoryPresets(const qoc::components::EffectDescription& effect);

} // namespace qohost
