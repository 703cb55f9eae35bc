#include "kroui/controls/UI_StaticText.h"

#include "controls/base/ControlDrawing.h"
#include "kroui/controls/TextMeasure.h"
#include "kroui/ui/AdapterRegistry.h"

#include <cmath>

namespace kroui::controls {

using drawing::Assign;
using ui::MakeProperty;
using ui::PropertyType;

namespace {

const ui::AdapterRegistrar<UI_StaticText> sRegistrar("kroui::controls::UI_StaticText");

} // namespace

void UI_StaticText::SetText(std::u16string_view text) {
    if (text == std::u16string_view(fText.Text())) return;
    fText.SetText(text);
    UI_Invalidate();
}

void UI_StaticText::SetTextReference(std::string_view reference) {
    fText.SetReference(reference);
    UI_Invalidate();
}

void UI_StaticText::SetAlignment(limner::TextAlignment alignment) {
    if (Assign(fAlignment, drawing::KnownAlignment(alignment))) UI_Invalidate();
}

void UI_StaticText::SetTextTruncation(limner::TextTruncation truncation) {
    if (Assign(fTruncation, drawing::KnownTruncation(truncation))) UI_Invalidate();
}

void UI_StaticText::SetMultiLine(bool on) {
    if (Assign(fMultiLine, on)) UI_Invalidate();
}

void UI_StaticText::SetFontSize(float size) {
    if (Assign(fFontSize, drawing::Bounded(size, drawing::kSmallestFont, drawing::kLargestFont))) UI_Invalidate();
}

void UI_StaticText::SetBold(bool bold) {
    if (Assign(fBold, bold)) UI_Invalidate();
}

void UI_StaticText::SetColorRole(int role) {
    if (Assign(fColorRole, role)) UI_Invalidate();
}

Size UI_StaticText::UI_GetNaturalSize() const {
    const limner::Font font{fFontSize, fBold};
    const limner::SupplierInterface* const supplier = UI_GetDrawSupplier();
    const float width = UI_GetFrame().width;
    if (fMultiLine && supplier && width > 0)
        return {width, std::ceil(supplier->MeasureParagraph(fText.Text(), font, width).height)};
    return {TextWidth(*this, fText.Text(), font), kRowHeight};
}

float UI_StaticText::UI_GetBaseline() const {
    const limner::Font font{fFontSize, fBold};
    // Lines start at the top.
    const bool isParagraph = fMultiLine && UI_GetFrame().width > 0;
    const limner::SupplierInterface* const supplier = UI_GetDrawSupplier();
    if (isParagraph && supplier) return supplier->MeasureText(u"0", font).ascent;
    return CentredBaseline(*this, kRowHeight, font);
}

void UI_StaticText::UI_Draw(limner::Limner* context) {
    if (fText.Text().empty()) return;
    const limner::Color color = GetColor(IsEnabled() ? fColorRole : static_cast<int>(ui::kColorDisabledText));
    const limner::Font font{fFontSize, fBold};
    const limner::TextPlacement placement{fAlignment, fTruncation, fMultiLine};
    const bool canOverflow = fTruncation == limner::TextTruncation::kNone || fMultiLine;
    if (canOverflow) {
        context->Save();
        context->ClipRect(UI_GetLocalRect());
    }
    context->DrawText(fText.Text(), font, color, UI_GetLocalRect(), placement);
    if (canOverflow) context->Restore();
}

ui::AccessibleInfo UI_StaticText::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info = UI_ControlView::UI_GetAccessibleInfo();
    info.role = ui::Role::kText;
    return info;
}

const ui::PropertyTable& UI_StaticText::UI_GetPropertyTable() const {
    return PropertiesOfStaticText();
}

const ui::PropertyTable& UI_StaticText::PropertiesOfStaticText() {
    using T = UI_StaticText;
    static constexpr ui::PropertyRow kRows[] = {
        MakeProperty<PropertyType::kEnumeration, &T::Alignment, &T::SetAlignment>("alignment"),
        MakeProperty<PropertyType::kFloat, &T::FontSize, &T::SetFontSize>("fontSize"),
        MakeProperty<PropertyType::kBool, &T::MultiLine, &T::SetMultiLine>("multiLine"),
        MakeProperty<PropertyType::kUnicode, &T::TextReference, &T::SetTextReference>("text"),
        MakeProperty<PropertyType::kEnumeration, &T::TextTruncation, &T::SetTextTruncation>("textTruncation"),
    };
    static const ui::PropertyTable sTable{"kroui::controls::UI_StaticText", kRows, &PropertiesOfControlView()};
    return sTable;
}

} // namespace kroui::controls
