#include "host/UserPresets.h"

#include <cstdlib>

namespace qohost {

std::filesystem::path UserPresets::UsualFolder() {
    const wchar_t* const data = _wgetenv(L"APPDATA");
    return std::filesystem::path(data != nullptr ? data : L".") / "qoaudio" / "presets";
}

} // namespace qohost
