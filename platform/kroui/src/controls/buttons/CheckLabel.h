#pragma once

#include "controls/base/ControlDrawing.h"
#include "kroui/controls/UI_Button.h"

#include <string_view>

namespace kroui::controls::drawing {

// The colours of the mark of a check box or radio button: a raised field with an outline, filled with the accent while
// it is on.
struct MarkColors {
    limner::Color fill;
    limner::Color outline;
    limner::Color mark;
};
MarkColors ColorsOfMark(const UI_Button& button, bool filledWhenOn);

// Where the mark of `side` stands: on the left, in the middle, with room for the halo around it.
Rect MarkRect(const UI_Button& button, const ui::PixelGrid& grid, float side);

// The size that mark and text take.
Size NaturalMarkSize(const UI_Button& button, float side, std::u16string_view text, float fontSize);

// The text beside the mark, shortened where there is no room for it.
void DrawMarkText(limner::Limner& context, const UI_Button& button, const Rect& mark, std::u16string_view text,
                  float fontSize);

} // namespace kroui::controls::drawing
