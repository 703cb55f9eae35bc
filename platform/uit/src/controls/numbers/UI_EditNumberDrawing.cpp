// What UI_EditNumber shows.

#include "uit/controls/UI_EditNumber.h"

#include "kroui/controls/TextMeasure.h"

#include <algorithm>

namespace uit::controls {

using kroui::Rect;
using kroui::controls::HotTextLook;
using kroui::controls::SliderLook;
using kroui::limner::Font;
using kroui::limner::Limner;

namespace {

constexpr float kSmallestNumber = 9; // font of a number in a narrow column
constexpr float kFontStep = 0.5F;

// The greatest font between two sizes that a text fits into a width with.
Font FittingFont(const kroui::ui::UI_Node& node, std::u16string_view text, float largest, float smallest, float width) {
    float size = largest;
    while (size > smallest && kroui::controls::TextWidth(node, text, {size}) > width)
        size = std::max(smallest, size - kFontStep);
    return {size};
}

} // namespace

void UI_EditNumber::UI_Draw(Limner* context) {
    KeepPlaces();
    DrawLabel(*context);
    DrawDescription(*context, fDescription1, Layout().description1);
    DrawDescription(*context, fDescription2, Layout().description2);
    if (fUseSlider) DrawSlider(*context);
    DrawNumber(*context);
}

void UI_EditNumber::DrawLabel(Limner& context) const {
    const Rect& place = Layout().label;
    if (place.IsEmpty() || !context.ClipBounds().Intersects(place)) return;
    kroui::limner::TextPlacement placement{fAlignment, kroui::limner::TextTruncation::kEnd, false};
    placement.alignment = fUseInline ? kroui::limner::TextAlignment::kRight : kroui::limner::TextAlignment::kLeft;
    if (IsVertical()) placement.alignment = kroui::limner::TextAlignment::kCentre;
    const int color = IsEnabled() ? kroui::ui::kColorText : kroui::ui::kColorDisabledText;
    context.DrawText(GetLabel(), {fFontSize}, GetColor(color), place, placement);
}

void UI_EditNumber::DrawDescription(Limner& context, std::u16string_view text, const Rect& place) const {
    if (text.empty() || !context.ClipBounds().Intersects(place)) return;
    const Font font =
        FittingFont(*this, text, std::min(fFontSize, kLargestDescription), kSmallestDescription, place.width);
    const int color = IsEnabled() ? kroui::ui::kColorDimText : kroui::ui::kColorDisabledText;
    const kroui::limner::TextPlacement placement{kroui::limner::TextAlignment::kCentre,
                                                 kroui::limner::TextTruncation::kEnd, false};
    context.DrawText(text, font, GetColor(color), place, placement);
}

void UI_EditNumber::DrawSlider(Limner& context) {
    const SliderLook look = Slider();
    if (PlacedParts().rulerFits) {
        fRulers.AlignTo(look);
        Ruler().Draw(context, *this, look, Layout().rulerRoom);
        SecondRuler().Draw(context, *this, look, Layout().rulerRoom);
    }
    if (context.ClipBounds().Intersects(Layout().slider)) look.Draw(context, *this);
}

void UI_EditNumber::DrawNumber(Limner& context) const {
    const EditNumberLayout& layout = Layout();
    const kroui::limner::SupplierInterface* const supplier = UI_GetDrawSupplier();
    if (!supplier || !context.ClipBounds().Intersects(Union(layout.number, layout.unit))) return;
    const krocore::string16 text = FormatValue();
    HotTextLook look = Number(text);
    HotTextLook::Places places = look.PlaceIn(layout.number, *supplier);
    places.unit = layout.unit;
    look.unit = GetUnitLabel();
    if (fEntry.IsOpen()) {
        look.text = {};
        look.focused = false;
        places.text.width = 0;
    }
    look.Draw(context, *this, places);
}

SliderLook UI_EditNumber::Slider() const {
    SliderLook look;
    look.track = Layout().track;
    look.position = SliderPosition(GetValue());
    // The bar shows how far the scale has been gone through: from where it begins, or from 0.
    look.origin = Ruler().RunsBackwards(IsVertical()) ? 1 : 0;
    if (GestureMinimum() < 0 && GestureMaximum() > 0) look.origin = SliderPosition(0);
    look.vertical = IsVertical();
    look.inverted = RunsBackwards();
    look.knob = fKnob;
    look.arrow = fArrow;
    look.enabled = IsEnabled();
    look.hovered = fPointing.hovered == Part::kSlider;
    look.pressed = fPointing.pressed == Part::kSlider;
    look.focused = ShowsFocus();
    return look;
}

// In a narrow column the number takes what it can.
Font UI_EditNumber::NumberFont(std::u16string_view text) const {
    if (!IsVertical()) return {fFontSize};
    // The same for all values, so that the numbers of several columns look alike.
    krocore::string16 usual(fDigits, u'0');
    if (GetDecimalPlaces() > 0) usual += u'.';
    if (GetMinValue() < 0) usual += (GetFormatFlags() & krocore::kFormatAlwaysSign) != 0 ? u'+' : u'-';
    const float smallest = std::min(fFontSize, kSmallestNumber);
    const float width = Layout().number.width;
    const Font font = FittingFont(*this, usual, fFontSize, smallest, width);
    return FittingFont(*this, text, font.size, smallest, width);
}

// In a column of its own a number without a unit stands in the middle.
kroui::limner::TextAlignment UI_EditNumber::NumberAlignment() const {
    const bool isAlone = IsVertical() && Layout().unit.IsEmpty();
    return isAlone ? kroui::limner::TextAlignment::kCentre : fAlignment;
}

HotTextLook UI_EditNumber::Number(std::u16string_view text) const {
    HotTextLook look;
    look.text = text;
    look.font = NumberFont(text);
    look.alignment = NumberAlignment();
    look.enabled = IsEnabled();
    look.hovered = fPointing.hovered == Part::kNumber || fPointing.pressed == Part::kNumber;
    look.focused = ShowsFocus() && !fUseSlider;
    return look;
}

} // namespace uit::controls
