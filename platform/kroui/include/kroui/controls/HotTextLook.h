#pragma once

#include "kroui/ui/UI_Node.h"

namespace kroui::controls {

// A text that can be dragged or clicked, in the accent colour over a dotted line, with a dim unit behind it; drawn by
// all controls that show one. Views must outlive the object.
struct HotTextLook {
    std::u16string_view text;
    std::u16string_view unit;
    limner::Font font;
    limner::TextAlignment alignment = limner::TextAlignment::kRight;
    bool enabled = true;
    bool hovered = false;
    bool focused = false;

    // Room that the frame of the focus and of the entry field takes to the left and right of the text.
    static constexpr float kPadding = 4;
    static constexpr float kUnitGap = 6;

    struct Places {
        Rect text;
        Rect unit; // empty if there is none
    };
    // Where text and unit stand in a rectangle; they keep their order, the alignment moves both.
    Places PlaceIn(const Rect& rect, const limner::SupplierInterface& supplier) const;
    // Where a field to type the text stands: around it and inside of `rect`, and not over the unit.
    static Rect FieldFrame(const Rect& rect, const Places& places, limner::TextAlignment alignment);
    void Draw(limner::Limner& context, const ui::UI_Node& node, const Places& places) const;
};

} // namespace kroui::controls
