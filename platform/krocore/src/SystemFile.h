#pragma once

#include <filesystem>
#include <system_error>

// What the standard library does not offer about files.
namespace krocore::system_file {

// Makes an empty file; std::errc::file_exists when anything has that name. `forAll`: others may read or write it as far
// as the process lets them by default, otherwise only its owner.
std::error_code CreateNew(const std::filesystem::path& path, bool forAll) noexcept;

// Waits until the contents are on the disk.
std::error_code Sync(const std::filesystem::path& path) noexcept;

// Whether the process may write to a file that is there. Nobody may write to one that is marked read-only.
bool MayBeWritten(const std::filesystem::path& path) noexcept;

// Gives a file the access rights of another, and its owner and group as far as the process can.
std::error_code CopyRights(const std::filesystem::path& from, const std::filesystem::path& to) noexcept;

// Async-signal-safe.
void RemoveNow(const std::filesystem::path::value_type* path) noexcept;

} // namespace krocore::system_file
