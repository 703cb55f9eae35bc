#include "PNG.h"

#include "CairoHandle.h"
#include "MemoryImage.h"
#include "krocore/ReplacementFile.h"
#include "krocore/config/Error.h"
#include "kroui/limner/Limner.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace kroui::limner {

namespace {

// Where the width stands in a PNG file, and the height behind it: after the signature, the first chunk's length and its
// name "IHDR" (ISO/IEC 15948, sections 5.2 and 11.2.2).
constexpr std::size_t kWidthPosition = 16;
constexpr std::size_t kHeightPosition = 20;
constexpr std::size_t kHeaderSize = 24;
constexpr std::array<unsigned char, 8> kSignature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

std::uint32_t BigEndian(std::span<const std::byte> bytes, std::size_t position) {
    std::uint32_t value = 0;
    for (const std::byte b : bytes.subspan(position, 4))
        value = value << 8 | std::to_integer<std::uint32_t>(b);
    return value;
}

// Judged before anything is allocated: a few bytes may claim a picture of any size.
bool HasUsableHeader(std::span<const std::byte> bytes) {
    if (bytes.size() < kHeaderSize || std::memcmp(bytes.data(), kSignature.data(), kSignature.size()) != 0)
        return false;
    const std::uint64_t width = BigEndian(bytes, kWidthPosition);
    const std::uint64_t height = BigEndian(bytes, kHeightPosition);
    return width > 0 && height > 0 && std::max(width, height) <= kMostPixelsASide && width * height <= kMostPixels;
}

cairo_status_t TakeBytes(void* closure, unsigned char* data, unsigned int length) {
    auto& rest = *static_cast<std::span<const std::byte>*>(closure);
    if (length > rest.size()) return CAIRO_STATUS_READ_ERROR;
    std::memcpy(data, rest.data(), length);
    rest = rest.subspan(length);
    return CAIRO_STATUS_SUCCESS;
}

cairo_status_t AppendBytes(void* closure, const unsigned char* data, unsigned int length) {
    static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
}

} // namespace

std::optional<PixelBuffer> ReadPNG(std::span<const std::byte> bytes) {
    if (!HasUsableHeader(bytes)) return std::nullopt;
    const SurfaceHandle decoded(cairo_image_surface_create_from_png_stream(TakeBytes, &bytes));
    if (cairo_surface_status(decoded.get()) != CAIRO_STATUS_SUCCESS) return std::nullopt;

    PixelBuffer buffer =
        MakePixelBuffer(cairo_image_surface_get_width(decoded.get()), cairo_image_surface_get_height(decoded.get()), 0);
    const SurfaceHandle surface = SurfaceOn(buffer);
    const ContextHandle context(cairo_create(surface.get()));
    cairo_set_source_surface(context.get(), decoded.get(), 0, 0);
    cairo_set_operator(context.get(), CAIRO_OPERATOR_SOURCE);
    cairo_paint(context.get());
    cairo_surface_flush(surface.get());
    return buffer;
}

std::string EncodePNG(const Image& image) {
    PixelBuffer copy{image.PixelWidth(), image.PixelHeight(), {}};
    const std::size_t perRow = image.Stride() / sizeof(std::uint32_t);
    for (int y = 0; y < copy.height; ++y) {
        const auto row = image.Pixels().subspan(y * perRow, copy.width);
        copy.pixels.insert(copy.pixels.end(), row.begin(), row.end());
    }
    std::string bytes;
    const SurfaceHandle surface = SurfaceOn(copy);
    const cairo_status_t status = cairo_surface_write_to_png_stream(surface.get(), AppendBytes, &bytes);
    if (status != CAIRO_STATUS_SUCCESS) throw krocore::config::Error(cairo_status_to_string(status));
    return bytes;
}

void WritePNG(const Image& image, const std::filesystem::path& file) {
    krocore::ReplaceFile(file, EncodePNG(image));
}

} // namespace kroui::limner
