#pragma once

#include "FontRasters.h"
#include "ShapedText.h"

#include <pango/pango.h>

#include <memory>
#include <string_view>
#include <vector>

namespace kroui::limner {

// Turns text into placed glyphs with Pango. Slow against drawing: TextCache keeps what comes out of it. Glyphs stand
// where the unhinted outlines want them, so that a layout is the same at every scale.
class TextShaper {
public:
    explicit TextShaper(FontRasters& rasters);

    ShapedText Shape(std::u16string_view text, const TextStyle& style);
    void CaretPositions(std::u16string_view text, const Font& font, std::vector<float>& positions);

private:
    template <auto Release>
    struct Releaser {
        template <class T>
        void operator()(T* object) const {
            Release(object);
        }
    };
    template <class T>
    using ObjectHandle = std::unique_ptr<T, Releaser<g_object_unref>>;
    using DescriptionHandle = std::unique_ptr<PangoFontDescription, Releaser<pango_font_description_free>>;

    // A font with what Pango says about it.
    struct KnownFont {
        Font font;
        DescriptionHandle description;
        float ascent = 0;
        float descent = 0;
    };
    const KnownFont& Know(const Font& font);
    void SetLayout(std::u16string_view text, const TextStyle& style, const KnownFont& font,
                   std::vector<int>* utf8Offsets);
    void AppendLine(PangoLayoutLine* line, ShapedText& shaped);
    void AppendRun(const PangoGlyphItem& item, float& x, ShapedText& shaped);

    FontRasters& fRasters;
    ObjectHandle<PangoFontMap> fFontMap;
    ObjectHandle<PangoContext> fContext;
    ObjectHandle<PangoLayout> fLayout;
    std::vector<KnownFont> fFonts;
};

} // namespace kroui::limner
