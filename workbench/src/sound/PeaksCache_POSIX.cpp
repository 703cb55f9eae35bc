#include "workbench/sound/PeaksCache.h"

#include <cstdlib>

namespace workbench {

// XDG Base Directory 0.8: paths that are not absolute don't count.
std::filesystem::path PeaksCache::UsualFolder() {
    const char* const cache = std::getenv("XDG_CACHE_HOME");
    std::filesystem::path folder = cache != nullptr ? cache : "";
    if (!folder.is_absolute()) {
        const char* const home = std::getenv("HOME");
        folder = std::filesystem::path(home != nullptr ? home : ".") / ".cache";
    }
    return folder / "qoaudio" / "peaks";
}

} // namespace workbench
