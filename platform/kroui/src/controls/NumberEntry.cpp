#include "kroui/controls/NumberEntry.h"

#include "krocore/Localizer.h"
#include "krocore/NumberFormat.h"
#include "kroui/ui/UI_Window.h"

namespace kroui::controls {

using Finish = UI_TextField::Finish;

NumberEntry::~NumberEntry() {
    if (fField) fField->SetFinishHandler({});
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
    fField->UI_SetFrame(frame);
    fField->UI_Show(true);
    fField->UI_TakeFocus();
    fField->SelectAll();
    fNode.UI_Invalidate();
}

void NumberEntry::Close() {
    if (!IsOpen()) return;
    const boost::intrusive_ptr<ui::UI_Node> keepAlive(&fNode);
    fField->SetError({});
    if (fField->UI_HasFocus()) fNode.UI_TakeFocus();
    fField->UI_Show(false);
    fNode.UI_Invalidate();
}

bool NumberEntry::IsNumberStart(std::u16string_view text) {
    constexpr std::u16string_view kStarts = u"0123456789+-.,\u2212";
    return !text.empty() && kStarts.find(text.front()) != std::u16string_view::npos;
}

void NumberEntry::MakeField() {
    fField = boost::intrusive_ptr<UI_TextField>(new UI_TextField);
    fField->UI_Show(false);
    fField->SetFinishHandler([this](Finish finish) { OnFinish(finish); });
    fNode.ChildPushBack(fField);
}

void NumberEntry::OnFinish(Finish finish) {
    if (!IsOpen()) return;
    const boost::intrusive_ptr<ui::UI_Node> keepAlive(&fNode);
    double value = 0;
    const bool isNumber = Read(value);
    const bool isChanged = fField->GetText() != fTextBefore;
    const bool isLeft = finish == Finish::kEscape || finish == Finish::kFocusLost;
    if (!isNumber && isChanged && !isLeft) {
        ShowError();
        return;
    }
    Close();
    if (finish != Finish::kEscape && isNumber && isChanged) fGesture.SetOnce(value);
    const bool isTab = finish == Finish::kTab || finish == Finish::kBackTab;
    if (isTab && fNode.UI_GetWindow()) fNode.UI_GetWindow()->MoveFocus(finish == Finish::kTab);
}

bool NumberEntry::Read(double& value) const {
    const std::optional<double> typed = krocore::ParseTypedNumber(fField->GetText(), fUnit);
    value = typed.value_or(0);
    return typed.has_value();
}

void NumberEntry::ShowError() {
    const krocore::string16 message =
        krocore::Localize("$$$/kroui/NumberEntry/NotANumber=\"@0\" is not a number. Escape brings the old value back.");
    fField->SetError(krocore::ReplacePlaceholders(message, {fField->GetText()}));
    fField->SelectAll();
}

} // namespace kroui::controls
