#include "krocore/UserFolders.h"

#include <cstdlib>

namespace krocore {

namespace {

struct Place {
    const char* variable;
    const char* inHome;
};

Place PlaceOf(UserFiles files) {
    switch (files) {
    case UserFiles::kConfig: return {"XDG_CONFIG_HOME", ".config"};
    case UserFiles::kCache: return {"XDG_CACHE_HOME", ".cache"};
    case UserFiles::kData: break;
    }
    return {"XDG_DATA_HOME", ".local/share"};
}

} // namespace

// XDG Base Directory 0.8: paths that are not absolute don't count.
std::filesystem::path UserFolder(UserFiles files) {
    const Place place = PlaceOf(files);
    const char* const named = std::getenv(place.variable);
    const std::filesystem::path folder = named != nullptr ? named : "";
    if (folder.is_absolute()) return folder;
    const char* const home = std::getenv("HOME");
    return std::filesystem::path(home != nullptr ? home : ".") / place.inHome;
}

} // namespace krocore
