#include "kroui/limner/CairoSupplier.h"

#include "CairoLimner.h"
#include "DrawingCaches.h"
#include "MemoryImage.h"
#include "PNG.h"
#include "SupplierCaches.h"

#include <cmath>

namespace kroui::limner {

CairoSupplier::CairoSupplier() : fCaches(std::make_unique<Caches>()) {
}

CairoSupplier::~CairoSupplier() = default;

TextExtent CairoSupplier::MeasureText(std::u16string_view text, const Font& font) const {
    return fCaches->texts.Find(text, {font}).extent;
}

TextExtent CairoSupplier::MeasureParagraph(std::u16string_view text, const Font& font, float width) const {
    return fCaches->texts.Find(text, {font, TextForm::kParagraph, width}).extent;
}

void CairoSupplier::CaretPositions(std::u16string_view text, const Font& font, std::vector<float>& positions) const {
    fCaches->shaper->CaretPositions(text, font, positions);
}

std::uint64_t CairoSupplier::ShapedTextCount() const {
    return fCaches->texts.ShapedCount();
}

ImagePtr CairoSupplier::DecodePNG(std::span<const std::byte> bytes, float scale) const {
    std::optional<PixelBuffer> pixels = ReadPNG(bytes);
    if (!pixels || !(scale > 0)) return nullptr;
    return new MemoryImage(std::move(*pixels), scale);
}

ImagePtr CairoSupplier::DrawImage(Size size, float scale, const boost::function<void(Limner&)>& draw) const {
    const int width = PixelsFor(size.width, scale);
    const int height = PixelsFor(size.height, scale);
    const bool isTooLarge =
        std::max(width, height) > kMostPixelsASide || static_cast<std::int64_t>(width) * height > kMostPixels;
    if (width == 0 || height == 0 || isTooLarge) return nullptr;
    PixelBuffer pixels = MakePixelBuffer(width, height, 0);
    {
        CairoLimner limner(pixels, *fCaches, scale, pixels.Bounds());
        draw(limner);
    }
    return new MemoryImage(std::move(pixels), scale);
}

} // namespace kroui::limner
