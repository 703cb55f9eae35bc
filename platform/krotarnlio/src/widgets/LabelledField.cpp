#include "LabelledField.h"

#include "kroui/controls/TextMeasure.h"

#include <algorithm>

namespace krotarnlio {

namespace {

constexpr float kLabelGap = 12; // as between the label and the slider of a number

} // namespace

LabelledField::LabelledField(krocore::string16 label, boost::intrusive_ptr<kroui::controls::UI_ControlView> field)
    : fLabel(std::move(label)), fField(std::move(field)) {
    SetLayoutChildren(false);
    ChildPushBack(fField);
}

float LabelledField::LabelWidth() const {
    return kroui::controls::TextWidth(*this, fLabel);
}

void LabelledField::SetText(krocore::string16 label) {
    if (label == fLabel) return;
    fLabel = std::move(label);
    PlaceField();
    UI_Invalidate();
}

float LabelledField::FieldLeft() const {
    return fLabel.empty() ? 0 : LabelWidth() + kLabelGap;
}

void LabelledField::PlaceField() {
    const float left = FieldLeft();
    const kroui::Rect all = UI_GetLocalRect();
    fField->UI_SetFrame({left, 0, std::max(all.width - left, 0.0F), all.height});
}

kroui::Size LabelledField::UI_GetNaturalSize() const {
    const kroui::Size field = fField->UI_GetNaturalSize();
    return {FieldLeft() + field.width, field.height};
}

float LabelledField::UI_GetBaseline() const {
    return fField->UI_GetBaseline();
}

void LabelledField::UI_Draw(kroui::limner::Limner* context) {
    const kroui::Rect label{0, 0, LabelWidth(), UI_GetLocalRect().height};
    const auto color = GetColor(IsEnabled() ? kroui::ui::kColorText : kroui::ui::kColorDisabledText);
    context->DrawText(fLabel, {}, color, label, {kroui::limner::TextAlignment::kRight});
}

void LabelledField::UI_SizeChanged(const kroui::RectT<float>& rect) {
    UI_ControlView::UI_SizeChanged(rect);
    PlaceField();
}

kroui::ui::AccessibleInfo LabelledField::UI_GetAccessibleInfo() const {
    kroui::ui::AccessibleInfo info = UI_ControlView::UI_GetAccessibleInfo();
    info.role = kroui::ui::Role::kGroup;
    info.name = fLabel;
    return info;
}

void LabelledField::ControlStateChanged() {
    fField->SetEnabled(IsEnabled());
    UI_ControlView::ControlStateChanged();
}

} // namespace krotarnlio
