#pragma once

#include <filesystem>

namespace qohost {

// A file that is written in place of another: it has a name of its own beside its target until it is complete. If it is
// never committed, it is removed and the target stays as it was.
class ReplacementFile {
public:
    // Finds a free name in the target's folder (where links lead, if the target is one). Creates nothing.
    explicit ReplacementFile(const std::filesystem::path& target);
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;
    ~ReplacementFile();

    // Where to write.
    const std::filesystem::path& Path() const noexcept { return fPath; }

    // Moves what was written, and closed, to the target, with the access rights of the file that was there. Throws
    // std::filesystem::filesystem_error.
    void Commit();

private:
    std::filesystem::path fTarget;
    std::filesystem::path fPath;
};

} // namespace qohost
