#include "StreamDescriptor.h"

#include <fcntl.h>
#include <io.h>
#include <stdio.h>

namespace qohost {

std::optional<int> DescriptorOf(const std::filesystem::path& path, StreamDirection direction) {
    if (path != "-") return std::nullopt;
    const int descriptor = _fileno(direction == StreamDirection::kInput ? stdin : stdout);
    _setmode(descriptor, _O_BINARY);
    return descriptor;
}

std::ptrdiff_t ReadSome(int descriptor, std::span<char> bytes) noexcept {
    return _read(descriptor, bytes.data(), static_cast<unsigned>(bytes.size()));
}

std::ptrdiff_t WriteSome(int descriptor, std::span<const char> bytes) noexcept {
    return _write(descriptor, bytes.data(), static_cast<unsigned>(bytes.size()));
}

} // namespace qohost
