#pragma once

#include "host/SoundFile.h"

#include <filesystem>
#include <string>
#include <vector>

namespace workbench {

struct RenderRequest {
    std::string effect;
    std::string preset;                // a preset's name or file, applied before the settings; empty for none
    std::vector<std::string> settings; // "PARAM=VALUE", later ones win
    std::filesystem::path input;       // "-" for the standard input
    std::filesystem::path output;      // may be the input; "-" for the standard output
    qohost::SoundKind kind;            // where their names don't tell
};

// Runs a sound file through an effect into another file, block by block: memory does not follow the length. A render
// that takes longer shows its progress on a terminal. Returns an exit code: done or interrupted, in which case `output`
// is as it was. Throws krocore::config::Error.
int Render(const RenderRequest& request);

} // namespace workbench
