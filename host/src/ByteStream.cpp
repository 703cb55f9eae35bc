#include "host/ByteStream.h"

#include "StreamDescriptor.h"
#include "krocore/FilePath.h"
#include "krocore/Localizer.h"
#include "krocore/ReplacementFile.h"
#include "krocore/config/Error.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <functional>
#include <system_error>

namespace qohost {

namespace {

namespace fs = std::filesystem;

using Sink = std::function<void(std::string_view)>;

[[noreturn]] void Refuse(const char* key, const std::string& name, const std::string& reason = {}) {
    throw krocore::config::Error(krocore::ToStdString(
        krocore::ReplacePlaceholders(krocore::Localize(key), {krocore::ToUTF16(name), krocore::ToUTF16(reason)})));
}

std::string Reason(int error) {
    return std::generic_category().message(error);
}

constexpr const char* kUnreadable = "$$$/qohost/ByteStream/Unreadable=@0: can't be read (@1).";
constexpr const char* kUnwritable = "$$$/qohost/ByteStream/Unwritable=@0: can't be written (@1).";
constexpr const char* kNoFile =
    "$$$/qohost/ByteStream/NoFile=@0: this is no file but a device or a pipe. The name - reads the standard input.";

void ReadStream(const fs::path& stream, const Sink& sink) {
    const int descriptor = DescriptorOf(stream, StreamDirection::kInput).value();
    std::array<char, 65536> buffer;
    for (;;) {
        const std::ptrdiff_t count = ReadSome(descriptor, buffer);
        if (count < 0) Refuse(kUnreadable, InputName(stream), Reason(errno));
        if (count == 0) return;
        sink({buffer.data(), static_cast<std::size_t>(count)});
    }
}

void WriteStream(const fs::path& stream, std::string_view bytes) {
    const int descriptor = DescriptorOf(stream, StreamDirection::kOutput).value();
    while (!bytes.empty()) {
        const std::ptrdiff_t count = WriteSome(descriptor, bytes);
        if (count <= 0) Refuse(kUnwritable, OutputName(stream), Reason(count < 0 ? errno : EIO));
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

void ReadFile(const fs::path& file, const std::string& name, const Sink& sink) {
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    std::array<char, 65536> buffer;
    while (stream.read(buffer.data(), buffer.size()) || stream.gcount() > 0)
        sink({buffer.data(), static_cast<std::size_t>(stream.gcount())});
    if (!stream.eof()) Refuse(kUnreadable, name, Reason(errno != 0 ? errno : EIO));
}

} // namespace

bool IsStream(const fs::path& path) {
    return DescriptorOf(path, StreamDirection::kInput).has_value();
}

std::string InputName(const fs::path& path) {
    if (path != "-") return krocore::PathText(path);
    return krocore::ToStdString(krocore::Localize("$$$/qohost/ByteStream/Input=standard input"));
}

std::string OutputName(const fs::path& path) {
    if (path != "-") return krocore::PathText(path);
    return krocore::ToStdString(krocore::Localize("$$$/qohost/ByteStream/Output=standard output"));
}

void KeepStream(const fs::path& stream, const fs::path& file) {
    errno = 0;
    std::ofstream kept(file, std::ios::binary);
    ReadStream(stream, [&](std::string_view bytes) {
        if (!kept.write(bytes.data(), static_cast<std::streamsize>(bytes.size())))
            Refuse(kUnwritable, krocore::PathText(file), Reason(errno != 0 ? errno : EIO));
    });
    kept.close();
    if (!kept) Refuse(kUnwritable, krocore::PathText(file), Reason(errno != 0 ? errno : EIO));
}

void SendFile(const fs::path& file, const fs::path& stream) {
    ReadFile(file, krocore::PathText(file), [&](std::string_view bytes) { WriteStream(stream, bytes); });
}

std::string ReadBytes(const fs::path& path, std::size_t limit) {
    std::string all;
    const Sink sink = [&](std::string_view bytes) {
        if (all.size() + bytes.size() > limit)
            Refuse("$$$/qohost/ByteStream/TooLong=@0: the file is larger than @1 bytes.", InputName(path),
                   std::to_string(limit));
        all += bytes;
    };
    if (IsStream(path)) {
        ReadStream(path, sink);
        return all;
    }
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) Refuse(kUnreadable, krocore::PathText(path), error.message());
    if (fs::is_directory(status)) Refuse(kUnreadable, krocore::PathText(path), Reason(EISDIR));
    if (!fs::is_regular_file(status)) Refuse(kNoFile, krocore::PathText(path));
    ReadFile(path, krocore::PathText(path), sink);
    return all;
}

void WriteBytes(const fs::path& path, std::string_view bytes) {
    if (IsStream(path))
        WriteStream(path, bytes);
    else
        krocore::ReplaceFile(path, bytes);
}

} // namespace qohost
