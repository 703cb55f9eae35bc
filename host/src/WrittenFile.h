#pragma once

#include "SoundFileHandle.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace qohost {

// A sound file that libsndfile writes through a stream of ours: it does not tell all that fails, least of all what it
// writes last, when it closes the file.
class WrittenFile {
public:
    // Over a file that is there. `info` is what to write.
    WrittenFile(const std::filesystem::path& path, SF_INFO info);

    // Null when libsndfile can't write like this.
    SNDFILE* Handle() const noexcept { return fHandle.get(); }
    // Empty as long as nothing went wrong; otherwise why, for a user.
    std::string Problem() const;

    // Writes what is left.
    void Close();

private:
    static sf_count_t Length(void* file);
    static sf_count_t Seek(sf_count_t offset, int whence, void* file);
    static sf_count_t Read(void* bytes, sf_count_t count, void* file);
    static sf_count_t Write(const void* bytes, sf_count_t count, void* file);
    static sf_count_t Tell(void* file);

    void Note();

    std::fstream fStream;
    int fError = 0; // of the system, the first one
    std::string fLibraryProblem;
    SoundFileHandle fHandle; // goes first: it still writes
};

} // namespace qohost
