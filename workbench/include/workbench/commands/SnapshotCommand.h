#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace workbench {

struct SnapshotRequest {
    std::string effect;
    std::string scripts;               // the name of a pair of scripts instead of an effect
    std::filesystem::path watch;       // a folder whose files stand in front of the library's, or empty
    std::vector<std::string> settings; // "PARAM=VALUE"
    std::string theme = "dark";        // or "light"
    float scale = 1;
    std::size_t channels = 2;
    std::filesystem::path output;
};

// Draws an effect's panel into a PNG file, without a screen. Throws krocore::config::Error.
void Snapshot(const SnapshotRequest& request);

// Draws every panel in both themes at scale 1 and 2 into a folder, which is made if it is not there: amplify-dark.png,
// amplify-dark@2x.png. Returns the number of files. Throws krocore::config::Error.
int Gallery(const std::filesystem::path& folder);

} // namespace workbench
