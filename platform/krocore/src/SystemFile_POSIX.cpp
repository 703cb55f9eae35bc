#include "SystemFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace krocore::system_file {

namespace {

constexpr mode_t kOwnerOnly = 0600;
constexpr mode_t kAll = 0666;
constexpr mode_t kAnyWrite = 0222;
constexpr mode_t kRights = 07777;

std::error_code LastError() noexcept {
    return {errno, std::generic_category()};
}

} // namespace

std::error_code CreateNew(const std::filesystem::path& path, bool forAll) noexcept {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, forAll ? kAll : kOwnerOnly);
    return file < 0 || close(file) != 0 ? LastError() : std::error_code();
}

std::error_code Sync(const std::filesystem::path& path) noexcept {
    const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (file < 0) return LastError();
    // Some file systems have nothing to wait for.
    const std::error_code error = fsync(file) != 0 && errno != EINVAL ? LastError() : std::error_code();
    close(file);
    return error;
}

// The superuser could write to every file.
bool MayBeWritten(const std::filesystem::path& path) noexcept {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && (status.st_mode & kAnyWrite) != 0 &&
           faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

std::error_code CopyRights(const std::filesystem::path& from, const std::filesystem::path& to) noexcept {
    struct stat wanted {};
    struct stat present {};
    if (stat(from.c_str(), &wanted) != 0 || stat(to.c_str(), &present) != 0) return LastError();
    mode_t mode = wanted.st_mode & kRights;
    const bool isOthers = wanted.st_uid != present.st_uid || wanted.st_gid != present.st_gid;
    // Nobody gets the rights that were another's to give.
    if (isOthers && chown(to.c_str(), wanted.st_uid, wanted.st_gid) != 0)
        mode &= ~static_cast<mode_t>(S_ISUID | S_ISGID);
    return chmod(to.c_str(), mode) != 0 ? LastError() : std::error_code();
}

void RemoveNow(const char* path) noexcept {
    unlink(path);
}

} // namespace krocore::system_file
