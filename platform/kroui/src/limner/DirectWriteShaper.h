#pragma once

#include "TextShaper.h"

#include <dwrite.h>

#include <memory>
#include <string>
#include <vector>

namespace kroui::limner {

// Text by Windows' own fonts and shaping: fallback for every script, both directions, figures of one width.
class DirectWriteShaper final : public TextShaper {
public:
    // Throws krocore::config::Error where the system has no DirectWrite.
    explicit DirectWriteShaper(FontRasters& rasters);

    ShapedText Shape(std::u16string_view text, const TextStyle& style) override;
    void CaretPositions(std::u16string_view text, const Font& font, std::vector<float>& positions) override;

private:
    struct Releaser {
        void operator()(IUnknown* object) const { object->Release(); }
    };
    template <class T>
    using Handle = std::unique_ptr<T, Releaser>;

    // A font with what DirectWrite says about it.
    struct KnownFont {
        Font font;
        Handle<IDWriteTextFormat> format;
        float ascent = 0;
        float descent = 0;
    };
    // A face at a size, as text was drawn with it.
    struct KnownFace {
        Handle<IDWriteFontFace> face;
        float size = 0;
        int typeface = 0; // of the rasters
    };
    class Renderer;

    const KnownFont& Know(const Font& font);
    void FindFamily();
    int TypefaceOf(IDWriteFontFace* face, float size);
    Handle<IDWriteTextLayout> LayoutOf(const std::u16string& text, const KnownFont& font, float width, bool wraps);
    std::vector<DWRITE_CLUSTER_METRICS> ClustersOf(IDWriteTextLayout& layout);
    // The lines that were drawn, under each other with their widths.
    void PlaceLines(IDWriteTextLayout& layout, const KnownFont& font, bool isParagraph, ShapedText& shaped);
    std::vector<float> WidthsOf(IDWriteTextLayout& layout, const std::vector<DWRITE_LINE_METRICS>& lines);
    std::u16string Shortened(const std::u16string& text, const KnownFont& font, const TextStyle& style);

    FontRasters& fRasters;
    Handle<IDWriteFactory> fFactory;
    Handle<IDWriteTypography> fTypography;
    std::wstring fFamily;
    std::vector<KnownFont> fFonts;
    std::vector<KnownFace> fFaces;
};

} // namespace kroui::limner
