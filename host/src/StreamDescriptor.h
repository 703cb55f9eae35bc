#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>

namespace qohost {

enum class StreamDirection { kInput, kOutput };

// The open descriptor that a path stands for; nothing for the path of a file.
std::optional<int> DescriptorOf(const std::filesystem::path& path, StreamDirection direction);

// As many bytes as are there, waiting for the first. 0 at the end, -1 with errno on failure.
std::ptrdiff_t ReadSome(int descriptor, std::span<char> bytes) noexcept;
// As many bytes as it takes. -1 with errno on failure.
std::ptrdiff_t WriteSome(int descriptor, std::span<const char> bytes) noexcept;

} // namespace qohost
