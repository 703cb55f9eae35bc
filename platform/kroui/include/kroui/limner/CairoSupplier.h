#pragma once

#include "kroui/limner/Limner.h"

#include <cstdint>
#include <memory>

namespace kroui::limner {

// The drawing supplier over Cairo and Pango. Text is shaped once per text and font for the whole process and kept in a
// cache of bounded size; rounded boxes are drawn from cached stamps. One object serves all views and windows.
class CairoSupplier : public SupplierInterface {
public:
    CairoSupplier();
    ~CairoSupplier() override;
    CairoSupplier(const CairoSupplier&) = delete;
    CairoSupplier& operator=(const CairoSupplier&) = delete;

    TextExtent MeasureText(std::u16string_view text, const Font& font) const override;
    TextExtent MeasureParagraph(std::u16string_view text, const Font& font, float width) const override;
    void CaretPositions(std::u16string_view text, const Font& font, std::vector<float>& positions) const override;
    ImagePtr DecodePNG(std::span<const std::byte> bytes, float scale) const override;
    ImagePtr DrawImage(Size size, float scale, const boost::function<void(Limner&)>& draw) const override;

private:
    struct Caches;
    std::unique_ptr<Caches> fCaches;

    friend class PixelSurface;
};

// The pixels of a window: an opaque surface that is drawn on part by part and shown by a window back-end. Pixels are
// 0xFFRRGGBB in rows of Stride() bytes.
class PixelSurface {
public:
    explicit PixelSurface(const CairoSupplier& supplier);
    ~PixelSurface();
    PixelSurface(const PixelSurface&) = delete;
    PixelSurface& operator=(const PixelSurface&) = delete;

    // Gives the surface a size in view units and a scale; what was on it is lost when either differs.
    void SetSize(Size size, float scale);
    int PixelWidth() const;
    int PixelHeight() const;
    int Stride() const;
    float Scale() const;
    const std::uint32_t* Pixels() const;

    // Calls `draw` with a context clipped to `part` (view units, rounded outward to whole pixels by the caller).
    void Draw(const Rect& part, const boost::function<void(Limner&)>& draw);

    // A picture with a copy of the pixels.
    ImagePtr Snapshot() const;

private:
    struct Surface;
    std::unique_ptr<Surface> fSurface;
};

} // namespace kroui::limner
