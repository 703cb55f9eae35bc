#include "host/ReplacementFile.h"

#include <random>
#include <string>
#include <system_error>

namespace qohost {

namespace {

namespace fs = std::filesystem;

fs::path Resolved(const fs::path& target) {
    std::error_code error;
    fs::path resolved = fs::weakly_canonical(target, error);
    return error ? target : resolved;
}

fs::path FreeNameBeside(const fs::path& target) {
    std::random_device random;
    std::error_code error;
    for (;;) {
        fs::path name = ".";
        name += target.filename();
        name += std::to_string(random());
        name += ".part";
        fs::path path = target.parent_path() / name;
        if (!fs::exists(path, error)) return path;
    }
}

} // namespace

ReplacementFile::ReplacementFile(const fs::path& target) : fTarget(Resolved(target)), fPath(FreeNameBeside(fTarget)) {
}

ReplacementFile::~ReplacementFile() {
    std::error_code error; // after Commit there is nothing to remove
    fs::remove(fPath, error);
}

// A device or a pipe would be gone, with a file in its place.
void ReplacementFile::Commit() {
    if (fs::exists(fTarget) && !fs::is_regular_file(fTarget)) {
        const auto reason = fs::is_directory(fTarget) ? std::errc::is_a_directory : std::errc::operation_not_permitted;
        throw fs::filesystem_error("replace", fTarget, std::make_error_code(reason));
    }
    if (fs::exists(fTarget)) fs::permissions(fPath, fs::status(fTarget).permissions());
    fs::rename(fPath, fTarget);
}

} // namespace qohost
