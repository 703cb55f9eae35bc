#pragma once

#include "kroui/limner/Limner.h"

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

    // How many texts had to be shaped so far, which is what text costs.
    std::uint64_t ShapedTextCount() const;

private:
    struct Caches;
    std::unique_ptr<Caches> fCaches;

    friend class PixelSurface;
};

} // namespace kroui::limner
