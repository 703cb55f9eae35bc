#include "WrittenFile.h"

#include "SoundFileProblem.h"

#include <cerrno>
#include <system_error>

namespace qohost {

namespace {

WrittenFile& Self(void* file) {
    return *static_cast<WrittenFile*>(file);
}

std::ios_base::seekdir DirectionOf(int whence) {
    if (whence == SEEK_CUR) return std::ios_base::cur;
    return whence == SEEK_END ? std::ios_base::end : std::ios_base::beg;
}

} // namespace

WrittenFile::WrittenFile(const std::filesystem::path& path, SF_INFO info)
    : fStream(path, std::ios::binary | std::ios::in | std::ios::out | std::ios::trunc) {
    if (!fStream) Note();
    SF_VIRTUAL_IO calls{&Length, &Seek, &Read, &Write, &Tell};
    fHandle.reset(sf_open_virtual(&calls, SFM_WRITE, &info, this));
    if (!fHandle) fLibraryProblem = ReasonOf(sf_strerror(nullptr));
}

std::string WrittenFile::Problem() const {
    return fError != 0 ? std::generic_category().message(fError) : fLibraryProblem;
}

void WrittenFile::Close() {
    if (const int error = sf_close(fHandle.release()); error != 0) fLibraryProblem = ReasonOf(sf_error_number(error));
    errno = 0;
    fStream.close();
    if (!fStream) Note();
}

sf_count_t WrittenFile::Length(void* file) {
    std::fstream& stream = Self(file).fStream;
    const auto place = stream.tellp();
    stream.seekp(0, std::ios::end);
    const auto length = stream.tellp();
    stream.seekp(place);
    return length;
}

sf_count_t WrittenFile::Seek(sf_count_t offset, int whence, void* file) {
    Self(file).fStream.seekp(offset, DirectionOf(whence));
    return Tell(file);
}

sf_count_t WrittenFile::Read(void* bytes, sf_count_t count, void* file) {
    std::fstream& stream = Self(file).fStream;
    stream.read(static_cast<char*>(bytes), count);
    const auto read = stream.gcount();
    if (stream.eof()) stream.clear();
    return read;
}

sf_count_t WrittenFile::Write(const void* bytes, sf_count_t count, void* file) {
    errno = 0;
    if (Self(file).fStream.write(static_cast<const char*>(bytes), count)) return count;
    Self(file).Note();
    return 0;
}

sf_count_t WrittenFile::Tell(void* file) {
    return Self(file).fStream.tellp();
}

void WrittenFile::Note() {
    if (fError == 0) fError = errno != 0 ? errno : EIO;
}

} // namespace qohost
