#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace workbench {

// All bytes of a file; nothing if it can't be read.
std::optional<std::string> ReadFile(const std::filesystem::path& file);

// A file's extension or stem, in lower case, for comparing: ".trn".
std::string LowerExtension(const std::filesystem::path& file);
std::string LowerStem(const std::filesystem::path& file);

} // namespace workbench
