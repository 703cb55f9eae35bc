#include "kroui/controls/UI_HotText.h"

#include "controls/base/ControlDrawing.h"
#include "kroui/controls/TextMeasure.h"

#include "kroui/ui/AdapterRegistry.h"

namespace kroui::controls {

using ui::Key;
using ui::MakeProperty;
using ui::MouseEvent;
using ui::PropertyType;

namespace {

const ui::AdapterRegistrar<UI_HotText> sRegistrar("kroui::controls::UI_HotText");

} // namespace

UI_HotText::UI_HotText() {
    SetWantsKeyboardFocus(true);
}

void UI_HotText::SetText(std::u16string_view text) {
    if (text == fText) return;
    fText = text;
    UI_Invalidate();
}

void UI_HotText::SetTextLabel(std::u16string_view label) {
    if (label == fTextLabel.Text()) return;
    fTextLabel.SetText(label);
    UI_Invalidate();
}

void UI_HotText::SetTextLabelReference(std::string_view reference) {
    fTextLabel.SetReference(reference);
    UI_Invalidate();
}

void UI_HotText::SetFontSize(float size) {
    const float held = drawing::Bounded(size, drawing::kSmallestFont, drawing::kLargestFont);
    if (drawing::Assign(fFont.size, held)) UI_Invalidate();
}

Size UI_HotText::UI_GetNaturalSize() const {
    const krocore::string8& unit = fTextLabel.Reference();
    const float unitWidth = unit.empty() ? 0 : HotTextLook::kUnitGap + TextWidth(*this, fTextLabel.Text(), fFont);
    return {NaturalTextWidth() + unitWidth + 2 * HotTextLook::kPadding, kRowHeight};
}

float UI_HotText::UI_GetBaseline() const {
    return CentredBaseline(*this, kRowHeight, fFont);
}

float UI_HotText::NaturalTextWidth() const {
    return TextWidth(*this, ShownText(), fFont);
}

void UI_HotText::UI_Draw(limner::Limner* context) {
    const limner::SupplierInterface* const supplier = UI_GetDrawSupplier();
    if (!supplier) return;
    const krocore::string16 text = ShownText();
    const HotTextLook look = Look(text);
    look.Draw(*context, *this, look.PlaceIn(UI_GetLocalRect(), *supplier));
}

bool UI_HotText::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    UI_InteractiveControlView::UI_DoMouseEvent(node, event);
    if (node || !IsEnabled()) return false;
    switch (event.action) {
    case MouseEvent::Action::kPressed:
        if (event.button != 1) return false;
        UI_TakeFocus();
        SetDownState(true);
        return true;
    case MouseEvent::Action::kDragged: SetDownState(UI_GetLocalRect().Contains(event.position)); return true;
    case MouseEvent::Action::kReleased: {
        const bool isClick = DownState();
        SetDownState(false);
        if (isClick) SendChanged();
        return true;
    }
    case MouseEvent::Action::kCaptureLost: SetDownState(false); return true;
    default: return false;
    }
}

bool UI_HotText::UI_DoKeyEvent(const ui::KeyEvent& event) {
    if (!IsEnabled() || event.modifiers != ui::kNoModifier) return false;
    if (event.key != Key::kEnter && event.key != Key::kSpace) return false;
    SendChanged();
    return true;
}

ui::Cursor UI_HotText::UI_GetCursor(Point /*point*/) const {
    return IsEnabled() ? ui::Cursor::kHand : ui::Cursor::kArrow;
}

ui::AccessibleInfo UI_HotText::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info = UI_InteractiveControlView::UI_GetAccessibleInfo();
    info.role = ui::Role::kButton;
    if (IsEnabled()) info.actions = ui::AccessibleActions(ui::AccessibleAction::kPress);
    return info;
}

bool UI_HotText::UI_DoAccessibleAction(const ui::AccessibleRequest& request) {
    return request.action == ui::AccessibleAction::kPress && UI_DoKeyEvent({.key = Key::kEnter});
}

const ui::PropertyTable& UI_HotText::UI_GetPropertyTable() const {
    return PropertiesOfHotText();
}

const ui::PropertyTable& UI_HotText::PropertiesOfHotText() {
    static constexpr ui::PropertyRow kRows[] = {
        MakeProperty<PropertyType::kFloat, &UI_HotText::FontSize, &UI_HotText::SetFontSize>("fontSize"),
        MakeProperty<PropertyType::kUnicode, &UI_HotText::TextLabelReference, &UI_HotText::SetTextLabelReference>(
            "textLabel"),
    };
    static const ui::PropertyTable sTable{"kroui::controls::UI_HotText", kRows, &PropertiesOfInteractiveControlView()};
    return sTable;
}

HotTextLook UI_HotText::Look(std::u16string_view text) const {
    HotTextLook look;
    look.text = text;
    look.unit = fTextLabel.Text();
    look.font = fFont;
    look.enabled = IsEnabled();
    look.hovered = IsHovered() || DownState();
    look.focused = ShowsFocus();
    return look;
}

} // namespace kroui::controls
