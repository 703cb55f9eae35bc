#include "workbench/sound/PeaksCache.h"

#include <cstdlib>

namespace workbench {

std::filesystem::path PeaksCache::UsualFolder() {
    const wchar_t* const data = _wgetenv(L"LOCALAPPDATA");
    return std::filesystem::path(data != nullptr ? data : L".") / "qoaudio" / "peaks";
}

} // namespace workbench
