#pragma once

#include "FontRasters.h"
#include "ShapedText.h"

#include <memory>
#include <string_view>
#include <vector>

namespace kroui::limner {

// Turns text into placed glyphs. Slow against drawing: TextCache keeps what comes out of it. Glyphs stand where the
// unhinted outlines want them, so that a layout is the same at every scale. Figures are all of one width.
// User-interface thread.
class TextShaper {
public:
    virtual ~TextShaper() = default;

    // Control characters are shown as spaces, except for line ends in a paragraph; halves of a pair that stand alone as
    // U+FFFD. Font sizes are held to what can be drawn.
    virtual ShapedText Shape(std::u16string_view text, const TextStyle& style) = 0;
    // Where the caret stands before each UTF-16 unit and after the last, from the beginning of the line in view units.
    // Both halves of a pair have the same place.
    virtual void CaretPositions(std::u16string_view text, const Font& font, std::vector<float>& positions) = 0;

protected:
    TextShaper() = default;
    TextShaper(const TextShaper&) = default;
    TextShaper& operator=(const TextShaper&) = default;
};

// The shaper over the system's fonts, which gives its typefaces to `rasters`.
std::unique_ptr<TextShaper> MakeSystemTextShaper(FontRasters& rasters);

} // namespace kroui::limner
