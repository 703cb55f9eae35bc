#include "CurveSettings.h"

#include <utility>

namespace uit::lio {

using controls::RulerSettings;
using controls::UI_CurveEditor;
using orrin::any_regular_t;

CurveSettings::CurveSettings() {
    for (Axis* const axis : {&horizontal, &vertical}) {
        axis->ruler.type = RulerSettings::kLinear;
        axis->ruler.abbreviateNumbers = true;
    }
    std::swap(vertical.start, vertical.end);
}

void CurveSettings::SetAll(const any_regular_t& dictionary) {
    const auto& entries = dictionary.get<orrin::dictionary_t>();
    std::vector<std::string_view> names;
    for (const Attribute<CurveSettings>& attribute : kCurveAttributes)
        names.push_back(attribute.row.name);
    CheckEntries(entries, names);
    CurveSettings changed = *this;
    for (const Attribute<CurveSettings>& attribute : kCurveAttributes)
        ReadEntry(entries, attribute.row.name, [&](const any_regular_t& value) { attribute.set(changed, value); });
    *this = std::move(changed);
}

void CurveSettings::ApplyTo(UI_CurveEditor& editor) const {
    const auto horizontalRuler = horizontal.ruler.MakeRuler();
    const auto verticalRuler = vertical.ruler.MakeRuler();
    verticalRuler->SetVertical(true);
    editor.SetRulers(horizontalRuler, verticalRuler);
    editor.SetRanges(horizontal.start, horizontal.end, vertical.start, vertical.end);
    editor.SetHorizontalLabel1(horizontal.label);
    editor.SetVerticalLabel1(vertical.label);
    editor.SetHorizontalEditDialogLabel(horizontal.editLabel);
    editor.SetVerticalEditDialogLabel(vertical.editLabel);
    editor.SetHorizontalEditDialogUnit(horizontal.editUnit);
    editor.SetVerticalEditDialogUnit(vertical.editUnit);
    editor.SetDrawHorizontalMinorTicks(horizontal.drawMinorTicks);
    editor.SetDrawVerticalMinorTicks(vertical.drawMinorTicks);
    editor.SetDrawLinearReference(drawLinearReference);
    editor.SetDrawCurve(drawCurve);
    editor.SetDrawPointLabelsAtBottom(drawPointLabelsAtBottom);
    editor.SetPointLabels(pointLabels);
    editor.SetUseSplines(useSplines);
    editor.SetUniqueHorizontalPositions(uniqueHorizontalPositions);
    editor.SetEnableAddPoints(enableAddPoints);
    editor.SetEnableDeletePoints(enableDeletePoints);
}

std::vector<krocore::string16> TextsOf(const any_regular_t& value) {
    std::vector<krocore::string16> texts;
    for (const any_regular_t& text : value.get<orrin::array_t>())
        texts.push_back(TextOf(text));
    return texts;
}

std::vector<bool> BoolsOf(const any_regular_t& value) {
    std::vector<bool> bools;
    for (const any_regular_t& element : value.get<orrin::array_t>())
        bools.push_back(BoolOf(element));
    return bools;
}

} // namespace uit::lio
