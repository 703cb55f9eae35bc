#pragma once

#include "kroui/limner/Types.h"

#include <cstdint>
#include <vector>

namespace kroui::limner {

// A character that no font has; it is drawn as an empty box.
inline constexpr std::uint32_t kMissingGlyph = 0xFFFFFFFF;

// A glyph at a place relative to the beginning of its line's baseline, in view units.
struct ShapedGlyph {
    std::uint32_t index = 0;
    float x = 0;
    float y = 0;
    float advance = 0;
};

// Neighbouring glyphs of one typeface (a number that FontRasters gives out).
struct ShapedRun {
    int typeface = 0;
    int begin = 0;
    int end = 0;
};

struct ShapedLine {
    float width = 0;
    float baseline = 0; // below the top of the text
    int beginRun = 0;
    int endRun = 0;
};

// A text that is ready to be drawn at any scale, in view units.
struct ShapedText {
    TextExtent extent;
    float fontSize = 0;
    std::vector<ShapedGlyph> glyphs;
    std::vector<ShapedRun> runs;
    std::vector<ShapedLine> lines;
};

// How a text is broken into lines.
enum class TextForm : std::uint8_t {
    kLine,          // one line, however wide
    kEllipsisStart, // one line of at most `width`
    kEllipsisEnd,
    kParagraph // wrapped at `width`
};

struct TextStyle {
    Font font;
    TextForm form = TextForm::kLine;
    float width = 0;
    friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

} // namespace kroui::limner
