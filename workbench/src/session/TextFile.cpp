#include "workbench/session/TextFile.h"

#include "krocore/FilePath.h"

#include <algorithm>
#include <fstream>
#include <system_error>

namespace workbench {

namespace {

std::string Lower(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

} // namespace

std::optional<std::string> ReadFile(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) return {};
    const auto size = std::filesystem::file_size(file, error);
    std::ifstream stream(file, std::ios::binary);
    if (error || !stream) return {};
    std::string bytes(static_cast<std::size_t>(size), '\0');
    stream.read(bytes.data(), static_cast<std::streamsize>(size));
    if (stream.bad()) return {};
    bytes.resize(static_cast<std::size_t>(stream.gcount())); // shorter, if it is being written
    return bytes;
}

std::string LowerExtension(const std::filesystem::path& file) {
    return Lower(krocore::PathText(file.extension()));
}

std::string LowerStem(const std::filesystem::path& file) {
    return Lower(krocore::PathText(file.stem()));
}

} // namespace workbench
