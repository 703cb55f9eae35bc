#pragma once

#include "kroui/limner/Limner.h"
#include "kroui/ui/PixelGrid.h"

namespace kroui::controls::drawing {

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
