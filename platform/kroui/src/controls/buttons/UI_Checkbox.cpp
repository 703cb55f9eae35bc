#include "kroui/controls/UI_Checkbox.h"

#include "controls/buttons/CheckLabel.h"
#include "kroui/controls/TextMeasure.h"
#include "kroui/ui/AdapterRegistry.h"

namespace kroui::controls {

using drawing::Assign;
using ui::MakeProperty;
using ui::PropertyType;

namespace {

const ui::AdapterRegistrar<UI_Checkbox> sRegistrar("kroui::controls::UI_Checkbox");

constexpr float kSmallestBox = 6;
constexpr float kLargestBox = 100;
constexpr float kRoundness = 0.2F; // corner radius by side

} // namespace

void UI_Checkbox::SetValue(int value) {
    if (Assign(fChecked, value != 0)) UI_Invalidate();
}

void UI_Checkbox::SetText(std::u16string_view text) {
    if (text == std::u16string_view(fText.Text())) return;
    fText.SetText(text);
    UI_Invalidate();
}

void UI_Checkbox::SetTextReference(std::string_view reference) {
    fText.SetReference(reference);
    UI_Invalidate();
}

void UI_Checkbox::SetFontSize(float size) {
    if (Assign(fFontSize, drawing::Bounded(size, drawing::kSmallestFont, drawing::kLargestFont))) UI_Invalidate();
}

void UI_Checkbox::SetCheckSize(float size) {
    if (Assign(fCheckSize, drawing::Bounded(size, kSmallestBox, kLargestBox))) UI_Invalidate();
}

Size UI_Checkbox::UI_GetNaturalSize() const {
    return drawing::NaturalMarkSize(*this, fCheckSize, fText.Text(), fFontSize);
}

float UI_Checkbox::UI_GetBaseline() const {
    return CentredBaseline(*this, UI_GetNaturalSize().height, {fFontSize});
}

void UI_Checkbox::UI_Draw(limner::Limner* context) {
    const ui::PixelGrid grid(*this, *context);
    const Rect box = drawing::MarkRect(*this, grid, fCheckSize);
    const float radius = fCheckSize * kRoundness;
    const drawing::MarkColors colors = drawing::ColorsOfMark(*this, true);
    context->FillRoundRect(box, radius, colors.fill);
    if (!fChecked || !IsEnabled()) context->FrameRoundRect(box, radius, colors.outline, grid.Line(StrokeSize1()));
    if (fChecked) drawing::DrawCheckMark(*context, box, colors.mark);
    if (ShowsFocus()) drawing::DrawHalo(*context, box, radius, GetColor(ui::kColorAccent), UI_GetLocalRect());
    drawing::DrawMarkText(*context, *this, box, fText.Text(), fFontSize);
}

ui::AccessibleInfo UI_Checkbox::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info = UI_Button::UI_GetAccessibleInfo();
    info.role = ui::Role::kCheckBox;
    return info;
}

const ui::PropertyTable& UI_Checkbox::UI_GetPropertyTable() const {
    return PropertiesOfCheckbox();
}

const ui::PropertyTable& UI_Checkbox::PropertiesOfCheckbox() {
    using T = UI_Checkbox;
    static constexpr ui::PropertyRow kRows[] = {
        MakeProperty<PropertyType::kFloat, &T::CheckSize, &T::SetCheckSize>("checkSize"),
        MakeProperty<PropertyType::kBool, &T::IsChecked, &T::SetChecked>("checked"),
        MakeProperty<PropertyType::kFloat, &T::FontSize, &T::SetFontSize>("fontSize"),
        MakeProperty<PropertyType::kUnicode, &T::TextReference, &T::SetTextReference>("text"),
    };
    static const ui::PropertyTable sTable{"kroui::controls::UI_Checkbox", kRows, &PropertiesOfButton()};
    return sTable;
}

} // namespace kroui::controls
