#pragma once

#include "workbench/commands/Table.h"

#include <string_view>

namespace workbench {

// The effects: name for command lines, title, category, and whether it can process and has a panel. With words to look
// for those that EffectSearch finds, and the preset or word by which. The panels library must be initialised.
Table EffectTable(std::string_view words = {});

// The parameters of an effect as it is for stereo: for people index, id, name, range with unit, default; for programs
// numbers in natural units. Throws krocore::config::Error for a name that is none.
Table ParameterTable(std::string_view effectName);

// The presets that come with an effect, then those that the user has saved, with their files. Throws likewise.
Table PresetTable(std::string_view effectName);

} // namespace workbench
