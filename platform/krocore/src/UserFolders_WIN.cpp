#include "krocore/UserFolders.h"

#include <cstdlib>

namespace krocore {

std::filesystem::path UserFolder(UserFiles files) {
    const wchar_t* const data = _wgetenv(files == UserFiles::kCache ? L"LOCALAPPDATA" : L"APPDATA");
    return data != nullptr ? data : L".";
}

} // namespace krocore
