#pragma once

#include "krocore/TemporaryFile.h"

#include <filesystem>
#include <optional>
#include <string_view>

namespace krocore {

// The one way in which a file is written: under a hidden name beside its place until it is complete and on the disk,
// then moved there with the access rights of the file that was there. If it is never committed, or a signal ends the
// process (see TemporaryFile::RemoveAll), the target stays as it was and nothing is left. Links are followed.
//
// Everything here throws krocore::config::Error "TARGET: the file can't be written (REASON).". Any thread.
class ReplacementFile {
public:
    // Refuses what is no file - a folder, a device, a pipe -, a file that is read-only or that the process may not
    // write to, and a folder that takes no file.
    explicit ReplacementFile(const std::filesystem::path& target);

    // Where to write. There is an empty file already.
    const std::filesystem::path& Path() const noexcept { return fTemporary->Path(); }

    // Takes what was written, and closed. Refuses as the constructor does, should the target have become such.
    void Commit();

    // Throws the error about this target, for those who write to Path().
    [[noreturn]] void Fail(std::string_view reason) const;

private:
    void CheckTarget() const;

    std::filesystem::path fAskedFor;
    std::filesystem::path fTarget; // where links lead
    std::optional<TemporaryFile> fTemporary;
};

// A whole file at once.
void ReplaceFile(const std::filesystem::path& target, std::string_view contents);

} // namespace krocore
