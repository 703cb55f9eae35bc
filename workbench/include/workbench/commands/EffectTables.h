#pragma once

#include "workbench/commands/Table.h"

#include <cstddef>
#include <string_view>

namespace workbench {

// The effects: name for command lines, title, category, and whether it can process and has a panel. With words to look
// for those that EffectSearch finds, and the preset or word by which. The panels library must be initialised.
Table EffectTable(std::string_view words = {});

struct SoundFormat {
    float sampleRate = 44100; // hertz
    std::size_t channels = 2;
};

// The parameters of an effect as it is for sound of the format: for people index, id, name, range with unit, default;
// for programs numbers in natural units. Throws krocore::config::Error for a name that is none and for a format that
// the effect can't take.
Table ParameterTable(std::string_view effectName, const SoundFormat& format = {});

// The presets that come with an effect, then those that the user has saved, with their files. Throws likewise.
Table PresetTable(std::string_view effectName);

} // namespace workbench
