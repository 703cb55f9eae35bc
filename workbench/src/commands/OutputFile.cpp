#include "workbench/commands/OutputFile.h"

#include "host/ByteStream.h"
#include "krocore/FilePath.h"
#include "krocore/config/Error.h"

#include <fmt/format.h>

#include <system_error>

namespace workbench {

void CheckMayWrite(const std::filesystem::path& file, bool overwrite) {
    std::error_code error;
    if (overwrite || qohost::IsStream(file) || !std::filesystem::is_regular_file(file, error)) return;
    throw krocore::config::Error(
        fmt::format("{}: the file is there already; --overwrite replaces it", krocore::PathText(file)));
}

} // namespace workbench
