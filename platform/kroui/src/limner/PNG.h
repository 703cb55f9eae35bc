#pragma once

#include "PixelCanvas.h"

#include <cstddef>
#include <optional>
#include <span>

namespace kroui::limner {

// The pixels of a PNG file; none if the bytes are no complete PNG file or its picture is too large.
std::optional<PixelBuffer> ReadPNG(std::span<const std::byte> bytes);

} // namespace kroui::limner
