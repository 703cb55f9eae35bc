#include "kroui/controls/UI_RadioButton.h"

#include "controls/buttons/CheckLabel.h"
#include "kroui/controls/TextMeasure.h"
#include "kroui/ui/AdapterRegistry.h"

#include <algorithm>
#include <vector>

namespace kroui::controls {

using drawing::Assign;
using ui::Key;
using ui::MakeProperty;
using ui::PropertyType;

namespace {

const ui::AdapterRegistrar<UI_RadioButton> sRegistrar("kroui::controls::UI_RadioButton");

constexpr float kDiscSize = 14;
constexpr float kDotSize = 6;

// Calls `visit` for each button of the group under the parent, in order; `visit` returns whether to go on.
template <class Visit>
void ForEachInGroup(const UI_RadioButton& button, Visit visit) {
    const ui::UI_Node* const parent = button.UI_GetParent();
    if (!parent) return;
    for (const auto& child : parent->Children()) {
        auto* const other = dynamic_cast<UI_RadioButton*>(child.get());
        if (other && other->Group() == button.Group() && !visit(*other)) return;
    }
}

} // namespace

void UI_RadioButton::SetText(std::u16string_view text) {
    if (text == std::u16string_view(fText.Text())) return;
    fText.SetText(text);
    UI_Invalidate();
}

void UI_RadioButton::SetTextReference(std::string_view reference) {
    fText.SetReference(reference);
    UI_Invalidate();
}

void UI_RadioButton::SetFontSize(float size) {
    if (Assign(fFontSize, drawing::Bounded(size, drawing::kSmallestFont, drawing::kLargestFont))) UI_Invalidate();
}

bool UI_RadioButton::ChangeByClick() {
    if (IsChecked()) return false;
    ForEachInGroup(*this, [this](UI_RadioButton& other) {
        if (&other != this) other.SetValue(0);
        return true;
    });
    SetValue(1);
    // Before, the button was no stop for the focus.
    TakeFocusByClick();
    return true;
}

UI_RadioButton* UI_RadioButton::Neighbour(bool forward) const {
    std::vector<UI_RadioButton*> group;
    ForEachInGroup(*this, [&](UI_RadioButton& other) {
        if (&other == this || other.CanBeChosen()) group.push_back(&other);
        return true;
    });
    const auto self = std::find(group.begin(), group.end(), this);
    if (self == group.end() || group.size() < 2) return nullptr;
    const auto index = static_cast<std::size_t>(self - group.begin());
    return group[(index + (forward ? 1 : group.size() - 1)) % group.size()];
}

bool UI_RadioButton::UI_DoKeyEvent(const ui::KeyEvent& event) {
    const bool isForward = event.key == Key::kDown || event.key == Key::kRight;
    const bool isBackward = event.key == Key::kUp || event.key == Key::kLeft;
    if (!IsEnabled() || event.modifiers != ui::kNoModifier || (!isForward && !isBackward))
        return UI_Button::UI_DoKeyEvent(event);
    const boost::intrusive_ptr<UI_RadioButton> next(Neighbour(isForward));
    if (!next) return false;
    next->ClickByKey();
    next->UI_TakeFocus();
    return true;
}

bool UI_RadioButton::UI_CanTakeFocus() const {
    if (!UI_Button::UI_CanTakeFocus()) return false;
    if (IsChecked() || UI_HasFocus()) return true;
    const UI_RadioButton* stop = nullptr; // the one that is on, or the first
    ForEachInGroup(*this, [&](const UI_RadioButton& other) {
        if (!other.CanBeChosen() || (stop && !other.IsChecked())) return true;
        stop = &other;
        return !other.IsChecked();
    });
    return !stop || stop == this;
}

Size UI_RadioButton::UI_GetNaturalSize() const {
    return drawing::NaturalMarkSize(*this, kDiscSize, fText.Text(), fFontSize);
}

float UI_RadioButton::UI_GetBaseline() const {
    return CentredBaseline(*this, UI_GetNaturalSize().height, {fFontSize});
}

void UI_RadioButton::UI_Draw(limner::Limner* context) {
    const ui::PixelGrid grid(*this, *context);
    const Rect disc = drawing::MarkRect(*this, grid, kDiscSize);
    const float radius = disc.width / 2;
    const drawing::MarkColors colors = drawing::ColorsOfMark(*this, false);
    context->FillRoundRect(disc, radius, colors.fill);
    context->FrameRoundRect(disc, radius, colors.outline, grid.Line(StrokeSize1()));
    if (IsChecked()) {
        const float inset = (disc.width - kDotSize) / 2;
        const Rect dot = disc.Inset(inset, inset);
        context->FillRoundRect(dot, dot.width / 2, colors.mark);
    }
    if (ShowsFocus()) drawing::DrawHalo(*context, disc, radius, GetColor(ui::kColorAccent), UI_GetLocalRect());
    drawing::DrawMarkText(*context, *this, disc, fText.Text(), fFontSize);
}

ui::AccessibleInfo UI_RadioButton::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info = UI_Button::UI_GetAccessibleInfo();
    info.role = ui::Role::kRadioButton;
    return info;
}

const ui::PropertyTable& UI_RadioButton::UI_GetPropertyTable() const {
    return PropertiesOfRadioButton();
}

const ui::PropertyTable& UI_RadioButton::PropertiesOfRadioButton() {
    using T = UI_RadioButton;
    static constexpr ui::PropertyRow kRows[] = {
        MakeProperty<PropertyType::kFloat, &T::FontSize, &T::SetFontSize>("fontSize"),
        MakeProperty<PropertyType::kUnicode, &T::TextReference, &T::SetTextReference>("text"),
    };
    static const ui::PropertyTable sTable{"kroui::controls::UI_RadioButton", kRows, &PropertiesOfButton()};
    return sTable;
}

} // namespace kroui::controls
