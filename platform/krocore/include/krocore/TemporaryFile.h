#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>

namespace krocore {

// A file of its own for as long as this lives: hidden, empty at first, under a name that was free. Any thread.
class TemporaryFile {
public:
    enum class Access { kOwner, kUsual }; // read and written by its owner alone; as the process makes files

    // Throws std::filesystem::filesystem_error when the folder can't take a file.
    explicit TemporaryFile(const std::filesystem::path& folder, Access access = Access::kOwner);
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    // Removes the file.
    ~TemporaryFile();

    const std::filesystem::path& Path() const noexcept { return fPath; }

    // Puts it in the place of another file in the same folder; from then on it is no longer this one's to remove. Its
    // contents have to be closed. They are on the disk before the name is. Throws std::filesystem::filesystem_error.
    void MoveTo(const std::filesystem::path& target);

    // For the handler of a signal that ends the process: removes all that are there now. Async-signal-safe.
    static void RemoveAll() noexcept;

private:
    void Forget() noexcept;

    std::filesystem::path fPath;
    std::optional<std::size_t> fEntry; // where RemoveAll finds it
};

} // namespace krocore
