#include "krocore/TemporaryFile.h"

#include "SystemFile.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <random>
#include <string>
#include <system_error>

namespace krocore {

namespace {

namespace fs = std::filesystem;

// Names for the handler of a signal, which can neither lock nor allocate.
struct Entry {
    enum State { kFree, kBeingWritten, kInUse };

    std::atomic<State> state{kFree};
    std::array<fs::path::value_type, 4096> path{};
};
std::array<Entry, 8> sEntries;

// Nothing for a name that is too long, and for more files at once than there is room for.
std::optional<std::size_t> Register(const fs::path& path) noexcept {
    const auto& text = path.native();
    for (std::size_t i = 0; i < sEntries.size() && text.size() < sEntries[i].path.size(); ++i) {
        Entry::State expected = Entry::kFree;
        if (!sEntries[i].state.compare_exchange_strong(expected, Entry::kBeingWritten)) continue;
        *std::ranges::copy(text, sEntries[i].path.begin()).out = 0;
        sEntries[i].state.store(Entry::kInUse);
        return i;
    }
    return std::nullopt;
}

// Short, so that it fits wherever the longest name does.
std::string RandomName() {
    std::random_device random;
    return ".unfinished-" + std::to_string(random()) + std::to_string(random());
}

} // namespace

TemporaryFile::TemporaryFile(const fs::path& folder, Access access) {
    std::error_code error;
    do {
        Forget();
        fPath = folder / RandomName();
        // First, for a signal may come as soon as there is a file.
        fEntry = Register(fPath);
        error = system_file::CreateNew(fPath, access == Access::kUsual);
    } while (error == std::errc::file_exists);
    if (!error) return;
    Forget();
    throw fs::filesystem_error("create", fPath, error);
}

TemporaryFile::~TemporaryFile() {
    std::error_code error; // after MoveTo there is nothing to remove
    if (!fPath.empty()) fs::remove(fPath, error);
    Forget();
}

void TemporaryFile::MoveTo(const fs::path& target) {
    if (const std::error_code error = system_file::Sync(fPath)) throw fs::filesystem_error("sync", fPath, error);
    fs::rename(fPath, target);
    Forget();
    fPath.clear();
}

void TemporaryFile::RemoveAll() noexcept {
    for (const Entry& entry : sEntries)
        if (entry.state.load() == Entry::kInUse) system_file::RemoveNow(entry.path.data());
}

void TemporaryFile::Forget() noexcept {
    if (fEntry) sEntries[*fEntry].state.store(Entry::kFree);
    fEntry.reset();
}

} // namespace krocore
