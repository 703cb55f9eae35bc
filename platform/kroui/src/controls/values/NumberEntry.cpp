#include "kroui/controls/NumberEntry.h"

#include "krocore/Localizer.h"
#include "krocore/NumberFormat.h"
#include "kroui/ui/UI_Window.h"

#include <algorithm>

namespace kroui::controls {

using Finish = UI_TextField::Finish;

NumberEntry::~NumberEntry() {
    if (!fField) return;
    fField->SetFinishHandler({});
    if (fField->UI_GetWindow()) fField->UI_GetWindow()->HideOverlay(fField.get());
}

void NumberEntry::Open(const Rect& frame, std::u16string_view text, std::u16string_view unit, const limner::Font& font,
                       limner::TextAlignment alignment) {
    if (IsOpen()) return;
    fGesture.Flush();
    if (!fField) MakeField();
    fUnit = unit;
    fTextBefore = text;
    fField->SetFontSize(font.size);
    fField->SetAlignment(alignment);
    fField->SetText(text);
    fField->SetError({});
    PlaceField(frame);
    fIsOpen = true;
    fField->UI_TakeFocus();
    fField->SelectAll();
    fNode.UI_Invalidate();
}

void NumberEntry::Close() {
    if (!IsOpen()) return;
    fField->SetError({});
    fIsOpen = false;
    if (fField->UI_HasFocus()) fNode.UI_TakeFocus();
    RemoveField();
    fNode.UI_Invalidate();
}

bool NumberEntry::IsNumberStart(std::u16string_view text) {
    constexpr std::u16string_view kStarts = u"0123456789+-.,\u2212";
    return !text.empty() && kStarts.find(text.front()) != std::u16string_view::npos;
}

void NumberEntry::MakeField() {
    fField = boost::intrusive_ptr<UI_TextField>(new UI_TextField);
    fField->SetFinishHandler([this](Finish finish) { OnFinish(finish); });
}

// A field that is wider than its number's control would lie behind the control's neighbours.
void NumberEntry::PlaceField(const Rect& frame) {
    const Rect own = fNode.UI_GetLocalRect();
    const bool fits = frame.left >= own.left && frame.Right() <= own.Right();
    if (fits) {
        fField->SetTheme(nullptr);
        fField->UI_SetFrame(frame);
        fNode.ChildPushBack(fField);
        return;
    }
    const Point origin = fNode.UI_LocalToWindow({});
    Rect inWindow = frame.Offset(origin.x, origin.y);
    const float rightmost = std::max(0.0F, fNode.UI_GetWindow()->GetSize().width - inWindow.width);
    inWindow.left = std::clamp(inWindow.left, 0.0F, rightmost);
    fField->SetTheme(&fNode.GetTheme());
    fNode.UI_GetWindow()->ShowOverlay(fField, inWindow, false);
}

void NumberEntry::RemoveField() {
    if (fField->UI_GetParent()) {
        fField->UI_Invalidate();
        fNode.ChildRemove(fField.get());
    } else if (fField->UI_GetWindow()) {
        fField->UI_GetWindow()->HideOverlay(fField.get());
    }
}

void NumberEntry::OnFinish(Finish finish) {
    if (!IsOpen()) return;
    const std::optional<double> value = Read();
    const bool isNumber = value.has_value();
    const bool isChanged = fField->GetText() != fTextBefore;
    const bool isLeft = finish == Finish::kEscape || finish == Finish::kFocusLost;
    if (!isNumber && isChanged && !isLeft) {
        ShowError();
        return;
    }
    Close();
    if (finish != Finish::kEscape && isNumber && isChanged) fGesture.SetOnce(*value);
    const bool isTab = finish == Finish::kTab || finish == Finish::kBackTab;
    if (isTab && fNode.UI_GetWindow()) fNode.UI_GetWindow()->MoveFocus(finish == Finish::kTab);
}

std::optional<double> NumberEntry::Read() const {
    return fReader ? fReader(fField->GetText()) : krocore::ParseTypedNumber(fField->GetText(), fUnit);
}

void NumberEntry::ShowError() {
    const krocore::string16 message =
        krocore::Localize("$$$/kroui/NumberEntry/NotANumber=\"@0\" is not a number. Escape brings the old value back.");
    fField->SetError(krocore::ReplacePlaceholders(message, {fField->GetText()}));
    fField->SelectAll();
    if (fField->UI_GetWindow()) fField->UI_GetWindow()->ShowTip(*fField);
}

} // namespace kroui::controls
