#pragma once

#include "TextShaper.h"

#include <pango/pango.h>

#include <memory>
#include <vector>

namespace kroui::limner {

class PangoTextShaper final : public TextShaper {
public:
    explicit PangoTextShaper(FontRasters& rasters);

    ShapedText Shape(std::u16string_view text, const TextStyle& style) override;
    void CaretPositions(std::u16string_view text, const Font& font, std::vector<float>& positions) override;

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
