#pragma once

#include <filesystem>

namespace qohost {

// Whether a sound file is shorter than its own beginning says, for every kind of file that says so. libsndfile takes
// such files as if they were meant to end there.
bool IsCutOff(const std::filesystem::path& file);

} // namespace qohost
