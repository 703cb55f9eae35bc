#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace krocore {

// Names of files as text, UTF-8 on every system: what std::filesystem makes of plain strings is not, on Windows.
inline std::string PathText(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

inline std::filesystem::path PathFromText(std::string_view utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}

} // namespace krocore
