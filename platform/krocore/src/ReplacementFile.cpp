#include "krocore/ReplacementFile.h"

#include "SystemFile.h"
#include "krocore/FilePath.h"
#include "krocore/Localizer.h"
#include "krocore/config/Error.h"

#include <cerrno>
#include <fstream>
#include <string>
#include <system_error>

namespace krocore {

namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40; // in a row, as the system allows

// Also where the last link leads to nothing yet.
fs::path FollowLinks(fs::path path) {
    for (int links = 0; fs::is_symlink(fs::symlink_status(path)); ++links) {
        if (links == kMostLinks)
            throw fs::filesystem_error("follow", path, std::make_error_code(std::errc::too_many_symbolic_link_levels));
        path = path.parent_path() / fs::read_symlink(path);
    }
    return path;
}

fs::path FolderOf(const fs::path& file) {
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

} // namespace

ReplacementFile::ReplacementFile(const fs::path& target) : fAskedFor(target) {
    try {
        fTarget = FollowLinks(target);
        CheckTarget();
        const bool isNew = !fs::exists(fTarget);
        fTemporary.emplace(FolderOf(fTarget), isNew ? TemporaryFile::Access::kUsual : TemporaryFile::Access::kOwner);
    } catch (const fs::filesystem_error& error) {
        Fail(error.code().message());
    }
}

void ReplacementFile::Commit() {
    try {
        CheckTarget();
        if (fs::exists(fTarget)) {
            if (const std::error_code error = system_file::CopyRights(fTarget, Path())) Fail(error.message());
        }
        fTemporary->MoveTo(fTarget);
    } catch (const fs::filesystem_error& error) {
        Fail(error.code().message());
    }
}

void ReplacementFile::Fail(std::string_view reason) const {
    throw config::Error(ToStdString(
        ReplacePlaceholders(Localize("$$$/krocore/ReplacementFile/Unwritable=@0: the file can't be written (@1)."),
                            {ToUTF16(PathText(fAskedFor)), ToUTF16(reason)})));
}

void ReplacementFile::CheckTarget() const {
    const fs::file_status status = fs::status(fTarget);
    if (!fs::exists(status)) return;
    if (fs::is_directory(status)) Fail("it is a folder");
    if (!fs::is_regular_file(status)) Fail("it is no file but a device or a pipe");
    if (!system_file::MayBeWritten(fTarget)) Fail("it is read-only");
}

void ReplaceFile(const fs::path& target, std::string_view contents) {
    ReplacementFile replacement(target);
    errno = 0;
    std::ofstream stream(replacement.Path(), std::ios::binary);
    stream.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    stream.close();
    if (!stream) replacement.Fail(std::generic_category().message(errno != 0 ? errno : EIO));
    replacement.Commit();
}

} // namespace krocore
