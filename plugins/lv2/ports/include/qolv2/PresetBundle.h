#pragma once

#include "host/Preset.h"
#include "qolv2/PluginCatalogue.h"
#include "qolv2/TurtleText.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace qolv2 {

// Presets as plug-in hosts take them (LV2's presets extension): the values of ports, and all of the state. Any thread.

// "Keep the Bass" is keep-the-bass.
std::string NameInURI(std::string_view name);

// What the description of a preset begins with: what it is of, and how it is called.
TurtleStatements PresetOf(const PluginDescription& plugin, std::string_view name);
// All of it, with the settings of a filter that is prepared for the plug-in's channels.
TurtleStatements PresetOf(const PluginDescription& plugin, std::string_view name,
                          const kroaudiofilterhost::AudioFilter& filter);

// Where hosts look for a user's bundles: ~/.lv2. The preset's own there is named for the effect and the preset.
std::filesystem::path UsualPresetBundle(const qoc::components::EffectDescription& effect, std::string_view name);
// Writes a bundle with the preset for all plug-ins of the effect, and makes the folder. Throws krocore::config::Error.
void WritePresetBundle(const std::filesystem::path& bundle, const qoc::components::EffectDescription& effect,
                       const qohost::Preset& preset);

// Whether the path is one of a bundle or a Turtle file, by its looks.
bool IsPresetBundle(const std::filesystem::path& path);
// The first preset with a state of ours in a Turtle file, or in the files of a bundle: what a host has saved. Throws
// krocore::config::Error when there is none.
qohost::Preset ReadPresetBundle(const std::filesystem::path& path);

} // namespace qolv2
