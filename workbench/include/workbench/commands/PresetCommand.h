#pragma once

#include "kroaudiofilterhost/AudioFilter.h"
#include "qoc/components/EffectCatalogue.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace workbench {

struct PresetRequest {
    std::string effect;
    std::string preset;                // to begin with: a name or a file; empty for the defaults
    std::vector<std::string> settings; // "PARAM=VALUE", later ones win
    std::filesystem::path output;
    bool isForHosts = false; // an LV2 bundle, in the user's folder of bundles if `output` is a name alone
    bool overwrite = false;  // replaces a file that is there
};

// Gives a prepared filter the preset that `text` names: one that comes with the effect (case is ignored), one that the
// user has saved, or else a file. What could not be taken from it is told on standard error. An empty text changes
// nothing. Throws krocore::config::Error, with nothing set.
void ApplyPresetNamed(kroaudiofilterhost::AudioFilter& filter, const qoc::components::EffectDescription& effect,
                      std::string_view text);

// Writes a preset file, or a bundle for plug-in hosts, whose preset is called as the file. Throws
// krocore::config::Error.
void MakePreset(const PresetRequest& request);

} // namespace workbench
