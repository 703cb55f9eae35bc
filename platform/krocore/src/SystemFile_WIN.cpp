#include "SystemFile.h"

#include <windows.h>

namespace krocore::system_file {

namespace {

std::error_code LastError() noexcept {
    return {static_cast<int>(GetLastError()), std::system_category()};
}

} // namespace

// Files take the rights of their folder.
std::error_code CreateNew(const std::filesystem::path& path, bool /*forAll*/) noexcept {
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return GetLastError() == ERROR_FILE_EXISTS ? std::make_error_code(std::errc::file_exists) : LastError();
    }
    CloseHandle(file);
    return {};
}

std::error_code Sync(const std::filesystem::path& path) noexcept {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return LastError();
    const std::error_code error = FlushFileBuffers(file) == 0 ? LastError() : std::error_code();
    CloseHandle(file);
    return error;
}

bool MayBeWritten(const std::filesystem::path& path) noexcept {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) == 0;
}

std::error_code CopyRights(const std::filesystem::path& from, const std::filesystem::path& to) noexcept {
    const DWORD attributes = GetFileAttributesW(from.c_str());
    return attributes == INVALID_FILE_ATTRIBUTES || SetFileAttributesW(to.c_str(), attributes) == 0 ? LastError()
                                                                                                    : std::error_code();
}

void RemoveNow(const wchar_t* path) noexcept {
    DeleteFileW(path);
}

} // namespace krocore::system_file
