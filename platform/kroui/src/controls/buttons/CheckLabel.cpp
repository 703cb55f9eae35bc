#include "controls/buttons/CheckLabel.h"

#include "kroui/controls/TextMeasure.h"

#include <algorithm>
#include <cmath>

namespace kroui::controls::drawing {

namespace {

constexpr float kTextGap = 7;
constexpr float kPressedAccent = 0.75F;

} // namespace

MarkColors ColorsOfMark(const UI_Button& button, bool filledWhenOn) {
    const bool isHot = button.IsEnabled() && (button.IsHovered() || button.IsPressed());
    const limner::Color accent = button.GetColor(ui::kColorAccent);
    const limner::Color ground = button.GetColor(isHot ? ui::kColorRaisedHover : ui::kColorRaised);
    const limner::Color disabled = button.GetColor(ui::kColorDisabledText);
    if (!button.IsEnabled()) return {ground, disabled, disabled};
    const limner::Color shade = button.IsPressed() ? accent.WithAlpha(kPressedAccent) : accent;
    if (!button.IsChecked()) return {ground, isHot ? accent : button.GetColor(ui::kColorKnobLine), shade};
    if (!filledWhenOn) return {ground, shade, shade};
    return {shade, shade, button.GetColor(ui::kColorAccentText)};
}

Rect MarkRect(const UI_Button& button, const ui::PixelGrid& grid, float side) {
    const Rect area = button.UI_GetLocalRect().Offset(button.ContentOffsetX(), button.ContentOffsetY());
    return grid.Square({area.left + kHaloWidth + side / 2, area.Centre().y}, side);
}

Size NaturalMarkSize(const UI_Button& button, float side, std::u16string_view text, float fontSize) {
    const float width = kHaloWidth + std::ceil(side) + (text.empty() ? kHaloWidth : kTextGap);
    return {width + TextWidth(button, text, {fontSize}), std::max(kRowHeight, side + 2 * kHaloWidth)};
}

void DrawMarkText(limner::Limner& context, const UI_Button& button, const Rect& mark, std::u16string_view text,
                  float fontSize) {
    if (text.empty()) return;
    const Rect area = button.UI_GetLocalRect().Offset(button.ContentOffsetX(), button.ContentOffsetY());
    const float left = mark.Right() + kTextGap;
    const limner::Color color = button.GetColor(button.IsEnabled() ? ui::kColorText : ui::kColorDisabledText);
    context.DrawText(text, {fontSize}, color, {left, area.top, area.Right() - left, area.height},
                     {limner::TextAlignment::kLeft, limner::TextTruncation::kEnd});
}

} // namespace kroui::controls::drawing
