#include "kroui/controls/UI_DisplayNumber.h"

#include "controls/base/ControlDrawing.h"
#include "kroui/controls/HotTextLook.h"
#include "kroui/controls/TextMeasure.h"

#include <algorithm>

namespace kroui::controls {

using drawing::Assign;

namespace {

constexpr int kMostPlaces = 15;
constexpr float kLabelGap = 12;
constexpr float kUnitGap = 2; // on top of the number's padding

bool AssignText(krocore::string16& member, std::u16string_view text) {
    if (member == text) return false;
    member = text;
    return true;
}

} // namespace

void UI_DisplayNumber::SetValue(double value) {
    const krocore::string16 before = ShownText();
    fValue = value;
    if (ShownText() != before) UI_InvalidateRect(NumberRect());
}

void UI_DisplayNumber::SetText(std::u16string_view text) {
    if (AssignText(fText, text)) UI_InvalidateRect(NumberRect());
}

void UI_DisplayNumber::SetLabel(std::u16string_view label) {
    if (AssignText(fLabel, label)) LookChanged();
}

void UI_DisplayNumber::SetUnitLabel(std::u16string_view unit) {
    if (AssignText(fUnit, unit)) LookChanged();
}

void UI_DisplayNumber::SetLabelWidth(float width) {
    if (Assign(fLabelWidth, width)) LookChanged();
}

float UI_DisplayNumber::MeasureLabelWidth() const {
    return TextWidth(*this, fLabel);
}

void UI_DisplayNumber::SetDigits(std::uint32_t digits) {
    if (Assign(fDigits, digits)) LookChanged();
}

void UI_DisplayNumber::SetDecimalPlaces(int places) {
    if (Assign(fDecimalPlaces, std::clamp(places, 0, kMostPlaces))) LookChanged();
}

void UI_DisplayNumber::SetFormatFlags(std::uint32_t flags) {
    if (Assign(fFormatFlags, flags)) LookChanged();
}

void UI_DisplayNumber::SetAlignment(limner::TextAlignment alignment) {
    if (Assign(fAlignment, drawing::KnownAlignment(alignment))) LookChanged();
}

krocore::string16 UI_DisplayNumber::ShownText() const {
    return fText.empty() ? krocore::FormatNumber(fValue, fDecimalPlaces, fFormatFlags) : fText;
}

void UI_DisplayNumber::LookChanged() {
    fMeasuredLabel = -1;
    UI_Invalidate();
}

float UI_DisplayNumber::LabelWidth() const {
    if (fLabelWidth > 0) return fLabelWidth;
    if (fMeasuredLabel >= 0) return fMeasuredLabel;
    const float width = MeasureLabelWidth();
    if (UI_GetDrawSupplier()) fMeasuredLabel = width; // and no estimate
    return width;
}

float UI_DisplayNumber::NumberWidth() const {
    const float needed = fDigits > 0 ? DigitsWidth(*this, fDigits) : TextWidth(*this, ShownText());
    return needed + 2 * HotTextLook::kPadding;
}

Rect UI_DisplayNumber::NumberRect() const {
    const Rect all = UI_GetLocalRect();
    const float label = LabelWidth();
    // As an edit number without a slider has it: the padding takes a part of the gap.
    const float left = label > 0 ? label + kLabelGap - HotTextLook::kPadding : 0;
    const float unit = fUnit.empty() ? 0 : kUnitGap + TextWidth(*this, fUnit);
    const float room = std::max(0.0F, all.width - left - unit);
    return {left, 0, fDigits > 0 ? std::min(room, NumberWidth()) : room, all.height};
}

Size UI_DisplayNumber::UI_GetNaturalSize() const {
    const float label = LabelWidth();
    const float left = label > 0 ? label + kLabelGap - HotTextLook::kPadding : 0;
    const float unit = fUnit.empty() ? 0 : kUnitGap + TextWidth(*this, fUnit);
    return {left + NumberWidth() + unit, kRowHeight};
}

float UI_DisplayNumber::UI_GetBaseline() const {
    return CentredBaseline(*this, kRowHeight);
}

void UI_DisplayNumber::UI_Draw(limner::Limner* context) {
    const Rect all = UI_GetLocalRect();
    const Rect number = NumberRect();
    const auto colorOf = [this](int role) { return GetColor(IsEnabled() ? role : ui::kColorDisabledText); };
    if (!fLabel.empty())
        context->DrawText(fLabel, {}, colorOf(ui::kColorText), {0, 0, LabelWidth(), all.height},
                          {limner::TextAlignment::kRight, limner::TextTruncation::kEnd});
    context->DrawText(ShownText(), {}, colorOf(ui::kColorText), number.Inset(HotTextLook::kPadding, 0),
                      {fAlignment, limner::TextTruncation::kEnd});
    const float unitLeft = number.Right() + kUnitGap;
    if (!fUnit.empty())
        context->DrawText(fUnit, {}, colorOf(ui::kColorDimText), {unitLeft, 0, all.width - unitLeft, all.height},
                          {limner::TextAlignment::kLeft, limner::TextTruncation::kEnd});
}

void UI_DisplayNumber::UI_NodeChanged(NodeChange change) {
    if (change == kAttached) fMeasuredLabel = -1;
    UI_ControlView::UI_NodeChanged(change);
}

ui::AccessibleInfo UI_DisplayNumber::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info = UI_ControlView::UI_GetAccessibleInfo();
    info.role = ui::Role::kText;
    info.value = ShownText();
    if (!fUnit.empty()) info.value.append(u" ").append(fUnit);
    return info;
}

} // namespace kroui::controls
