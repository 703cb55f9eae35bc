#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace qohost {

// Files and streams by name, for command lines. On any thread, which waits for the disk or the other end.

// What stands in place of a file's name: "-" for the standard input or output and, where the system has them, names of
// open descriptors such as "/dev/stdin" and "/dev/fd/3". A file called "-" is "./-".
bool IsStream(const std::filesystem::path& path);

// How messages call it: a file by its path, "-" in words.
std::string InputName(const std::filesystem::path& path);
std::string OutputName(const std::filesystem::path& path);

// All that comes from a stream, into a file that is there. Throws krocore::config::Error.
void KeepStream(const std::filesystem::path& stream, const std::filesystem::path& file);
// All of a file, to a stream. Throws krocore::config::Error, also when nobody takes it.
void SendFile(const std::filesystem::path& file, const std::filesystem::path& stream);

// The whole of a file or stream, at most `limit` bytes of it. Throws krocore::config::Error that names it: it is not
// there, no file, longer, or can't be read.
std::string ReadBytes(const std::filesystem::path& path, std::size_t limit);
// A file as krocore::ReplaceFile does, or a stream. Throws krocore::config::Error that names it.
void WriteBytes(const std::filesystem::path& path, std::string_view bytes);

} // namespace qohost
