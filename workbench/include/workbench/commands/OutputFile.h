#pragma once

#include <filesystem>

namespace workbench {

// Throws krocore::config::Error when a file would be replaced that the user has not said may be. Devices and pipes are
// written to, not replaced.
void CheckMayWrite(const std::filesystem::path& file, bool overwrite);

} // namespace workbench
