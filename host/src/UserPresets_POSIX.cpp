#include "host/UserPresets.h"

#include <cstdlib>

namespace qohost {

// XDG Base Directory 0.8: paths that are not absolute don't count.
std::filesystem::path UserPresets::UsualFolder() {
    const char* const data = std::getenv("XDG_DATA_HOME");
    std::filesystem::path folder = data != nullptr ? data : "";
    if (!folder.is_absolute()) {
        const char* const home = std::getenv("HOME");
        folder = std::filesystem::path(home != nullptr ? home : ".") / ".local" / "share";
    }
    return folder / "qoaudio" / "presets";
}

} // namespace qohost
