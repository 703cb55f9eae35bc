#pragma once

#include "kroui/Geometry.h"

#include <cstdint>

namespace kroui::limner {

// Red, green, blue and opacity, each 0...1, not premultiplied.
struct Color {
    float red = 0;
    float green = 0;
    float blue = 0;
    float alpha = 1;

    constexpr Color WithAlpha(float a) const { return {red, green, blue, a}; }
    static constexpr Color FromRGB(std::uint32_t rrggbb) {
        return {static_cast<float>(rrggbb >> 16 & 255) / 255, static_cast<float>(rrggbb >> 8 & 255) / 255,
                static_cast<float>(rrggbb & 255) / 255, 1};
    }
    friend bool operator==(const Color&, const Color&) = default;
};

enum class LineCap : std::uint8_t { kButt, kRound, kSquare };
enum class LineJoin : std::uint8_t { kMiter, kRound, kBevel };

// How a path is stroked. Width in view units. A dash of 0 is a solid line, otherwise on and off lengths are both
// `dash`.
struct Pen {
    Color color;
    float width = 1;
    LineCap cap = LineCap::kButt;
    LineJoin join = LineJoin::kMiter;
    float dash = 0;
};

struct Brush {
    Color color;
};

// The system's sans family at a size in view units; digits are of equal width.
struct Font {
    float size = 12;
    bool bold = false;
    friend bool operator==(const Font&, const Font&) = default;
};

enum class TextAlignment : std::uint8_t { kLeft = 0, kCentre = 1, kRight = 2 };
enum class TextTruncation : std::uint8_t { kNone = 0, kStart = 1, kEnd = 2 };

// How a text stands in its rectangle: vertically always centred on the line's ascent and descent.
struct TextPlacement {
    TextAlignment alignment = TextAlignment::kLeft;
    TextTruncation truncation = TextTruncation::kNone;
    bool multiLine = false; // wraps at the rectangle's width; lines then start at the top
};

// What a text takes: its advance width and its line height (the font's ascent + descent; all lines if wrapped).
struct TextExtent {
    float width = 0;
    float height = 0;
    float ascent = 0;
};

} // namespace kroui::limner
