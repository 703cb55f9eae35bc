#pragma once

#include "kroui/limner/Limner.h"
#include "kroui/ui/UI_Node.h"

#include <cmath>

namespace kroui::controls::drawing {

// The pixels of the window under a node: brings edges to whole pixels wherever the node stands.
class PixelGrid {
public:
    PixelGrid(const ui::UI_Node& node, const limner::Limner& context);

    float X(float x) const { return std::round((fOrigin.x + x) * fScale) / fScale - fOrigin.x; }
    float Y(float y) const { return std::round((fOrigin.y + y) * fScale) / fScale - fOrigin.y; }
    Rect Snap(const Rect& rect) const;
    // A square of about `side` with its middle near `centre`.
    Rect Square(Point centre, float side) const;
    // The line width nearest to `width` that is whole pixels, at least one; 0 stays 0.
    float Line(float width = 1) const;

private:
    Point fOrigin;
    float fScale;
};

// A tick in a square box.
void DrawCheckMark(limner::Limner& context, const Rect& box, const limner::Color& color);
// An arrow head without a shaft, `width` wide, pointing down (direction 1) or up (-1).
void DrawChevron(limner::Limner& context, Point centre, float width, int direction, const limner::Color& color);
// What shows the focus around a box or disc: a soft ring of kHaloWidth outside `rect`, within
// `bounds`.
void DrawHalo(limner::Limner& context, const Rect& rect, float radius, const limner::Color& accent, const Rect& bounds);
constexpr float kHaloWidth = 2;

// A picture keeps its colours, so the ground under it takes only so much of the accent.
constexpr float kAccentUnderPicture = 0.3F;

// The biggest rectangle of a picture's proportions in `room`, in its middle, no bigger than the picture.
Rect FitPicture(Size picture, const Rect& room);

// Sets a member; whether it is another now.
template <class T>
bool Assign(T& member, const T& value) {
    if (member == value) return false;
    member = value;
    return true;
}

// Holds a number from an archive or a caller within bounds; what is no number becomes the low one.
float Bounded(float value, float low, float high);
constexpr float kSmallestFont = 1;
constexpr float kLargestFont = 200;

// Numbers that archives give for enumerations; unknown ones become the first.
limner::TextAlignment KnownAlignment(limner::TextAlignment alignment);
limner::TextTruncation KnownTruncation(limner::TextTruncation truncation);

// "on" or "off" in the user's language.
krocore::string16 OnOffText(bool on);

} // namespace kroui::controls::drawing
