#include "StreamDescriptor.h"

#include <cerrno>
#include <charconv>
#include <string_view>
#include <unistd.h>

namespace qohost {

std::optional<int> DescriptorOf(const std::filesystem::path& path, StreamDirection direction) {
    const std::string_view name = path.native();
    if (name == "-") return direction == StreamDirection::kInput ? STDIN_FILENO : STDOUT_FILENO;
    if (name == "/dev/stdin") return STDIN_FILENO;
    if (name == "/dev/stdout") return STDOUT_FILENO;
    if (name == "/dev/stderr") return STDERR_FILENO;
    constexpr std::string_view kFolder = "/dev/fd/";
    if (!name.starts_with(kFolder)) return std::nullopt;
    int descriptor = 0;
    const char* const end = name.data() + name.size();
    const auto [rest, error] = std::from_chars(name.data() + kFolder.size(), end, descriptor);
    return error == std::errc() && rest == end ? std::optional(descriptor) : std::nullopt;
}

std::ptrdiff_t ReadSome(int descriptor, std::span<char> bytes) noexcept {
    for (;;) {
        const ssize_t count = read(descriptor, bytes.data(), bytes.size());
        if (count >= 0 || errno != EINTR) return count;
    }
}

std::ptrdiff_t WriteSome(int descriptor, std::span<const char> bytes) noexcept {
    for (;;) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count >= 0 || errno != EINTR) return count;
    }
}

} // namespace qohost
