#include "kroui/controls/UI_TextButton.h"

#include "controls/base/ControlDrawing.h"
#include "kroui/controls/TextMeasure.h"
#include "kroui/ui/AdapterRegistry.h"

#include <algorithm>

namespace kroui::controls {

using drawing::Assign;
using ui::MakeProperty;
using ui::PropertyType;

namespace {

const ui::AdapterRegistrar<UI_TextButton> sRegistrar("kroui::controls::UI_TextButton");

constexpr float kLargestIndent = 1000;
// A centred text may come nearer to the edges.
constexpr float kLeastIndent = 3;

// Of the natural size.
constexpr float kNaturalMargin = 14;
constexpr float kLeastWidth = 36;

} // namespace

void UI_TextButton::SetText(std::u16string_view text) {
    if (text == std::u16string_view(fText.Text())) return;
    fText.SetText(text);
    UI_Invalidate();
}

void UI_TextButton::SetTextReference(std::string_view reference) {
    fText.SetReference(reference);
    UI_Invalidate();
}

void UI_TextButton::SetTextAlignment(limner::TextAlignment alignment) {
    if (Assign(fAlignment, drawing::KnownAlignment(alignment))) UI_Invalidate();
}

void UI_TextButton::SetButtonStyle(ButtonStyle style) {
    if (Assign(fStyle, style)) UI_Invalidate();
}

void UI_TextButton::SetTextIndent(float indent) {
    if (Assign(fIndent, drawing::Bounded(indent, 0, kLargestIndent))) UI_Invalidate();
}

Size UI_TextButton::UI_GetNaturalSize() const {
    return {std::max(kLeastWidth, TextWidth(*this, fText.Text()) + 2 * kNaturalMargin), kRowHeight};
}

float UI_TextButton::UI_GetBaseline() const {
    return CentredBaseline(*this, kRowHeight);
}

void UI_TextButton::UI_Draw(limner::Limner* context) {
    Face face = FaceOfState();
    face.isRound = fStyle == ButtonStyle::kRound;
    const bool isBare = fStyle == ButtonStyle::kFlat && !face.hot && !face.focused && face.accent <= 0;
    if (!isBare) DrawFace(*context, face);
    const bool isCentred = fAlignment == limner::TextAlignment::kCentre;
    const float indent = isCentred ? std::min(fIndent, kLeastIndent) : fIndent;
    context->DrawText(fText.Text(), {}, ContentColor(face), ContentRect().Inset(indent, 0),
                      {fAlignment, limner::TextTruncation::kEnd});
}

const ui::PropertyTable& UI_TextButton::UI_GetPropertyTable() const {
    return PropertiesOfTextButton();
}

const ui::PropertyTable& UI_TextButton::PropertiesOfTextButton() {
    using T = UI_TextButton;
    static constexpr ui::PropertyRow kRows[] = {
        MakeProperty<PropertyType::kUnicode, &T::TextReference, &T::SetTextReference>("text"),
        MakeProperty<PropertyType::kEnumeration, &T::TextAlignment, &T::SetTextAlignment>("textAlignment"),
        MakeProperty<PropertyType::kFloat, &T::TextIndent, &T::SetTextIndent>("textIndent"),
    };
    static const ui::PropertyTable sTable{"kroui::controls::UI_TextButton", kRows, &PropertiesOfButton()};
    return sTable;
}

} // namespace kroui::controls
