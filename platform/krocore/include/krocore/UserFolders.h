#pragma once

#include <cstdint>
#include <filesystem>

namespace krocore {

// What programs keep for a user.
enum class UserFiles : std::uint8_t {
    kData,   // what the user has made
    kConfig, // what the user has chosen
    kCache   // what can be made again
};

// Where programs keep it, each in a folder of its own name: $XDG_DATA_HOME, $XDG_CONFIG_HOME and $XDG_CACHE_HOME,
// without those ~/.local/share, ~/.config and ~/.cache; on Windows %APPDATA%, for what can be made again
// %LOCALAPPDATA%. It need not be there. Any thread, while nobody changes the environment.
std::filesystem::path UserFolder(UserFiles files);

} // namespace krocore
