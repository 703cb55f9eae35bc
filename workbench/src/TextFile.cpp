#include "workbench/TextFile.h"

#include <algorithm>
#include <fstream>
#include <iterator>
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
    std::ifstream stream(file, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad()) return {};
    return bytes;
}

std::string LowerExtension(const std::filesystem::path& file) {
    return Lower(file.extension().string());
}

std::string LowerStem(const std::filesystem::path& file) {
    return Lower(file.stem().string());
}

} // namespace workbench
