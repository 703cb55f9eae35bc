#include "StaticTextAdapter.h"

#include "uit/lio/AttributeValues.h"

#include "kroui/controls/TextMeasure.h"

#include <algorithm>
#include <cmath>

namespace krotarnlio {

using uit::lio::AttributeKind;
using uit::lio::AttributeRow;
using uit::lio::EndsWithColon;
using uit::lio::TextOf;
using uit::lio::WholeNumberWithin;
using uit::lio::WidgetExtent;

namespace {

enum Row { kName, kCharacters };
constexpr AttributeRow kRows[] = {{"name", AttributeKind::kFollows}, {"characters"}};

constexpr unsigned kMostCharacters = 100;

} // namespace

std::span<const AttributeRow> StaticTextAdapter::Rows() {
    return kRows;
}

void StaticTextAdapter::SetAttribute(int row, const orrin::any_regular_t& value) {
    if (row == kName)
        SetText(TextOf(value));
    else
        fCharacters = static_cast<unsigned>(WholeNumberWithin(value, 0, kMostCharacters));
}

WidgetExtent StaticTextAdapter::Measure(std::optional<float> width) {
    const float most = fCharacters > 0 ? kroui::controls::DigitsWidth(*fControl, fCharacters) : LineWidth();
    const float given = width.value_or(std::min(most, LineWidth()));
    const kroui::limner::SupplierInterface* const supplier = fControl->UI_GetDrawSupplier();
    if (NeedsLines(given) && supplier) {
        const kroui::limner::TextExtent lines = supplier->MeasureParagraph(fControl->Text(), {}, given);
        return {{given, std::ceil(lines.height)}, {}, supplier->MeasureText(u"0", {}).ascent};
    }
    WidgetExtent extent{{given, kroui::controls::kRowHeight}, {}, {}};
    extent.baseline = kroui::controls::CentredBaseline(*fControl, kroui::controls::kRowHeight);
    if (EndsWithColon(fControl->Text())) extent.colon = LineWidth();
    return extent;
}

void StaticTextAdapter::Place(const kroui::Rect& frame) {
    fControl->SetMultiLine(NeedsLines(frame.width));
    fControl->UI_SetFrame(frame);
}

// Of the longest of the lines that the text itself has.
float StaticTextAdapter::LineWidth() const {
    std::u16string_view text = fControl->Text();
    float widest = 0;
    for (;;) {
        const std::size_t end = text.find(u'\n');
        widest = std::max(widest, kroui::controls::TextWidth(*fControl, text.substr(0, end)));
        if (end == std::u16string_view::npos) return widest;
        text.remove_prefix(end + 1);
    }
}

bool StaticTextAdapter::NeedsLines(float width) const {
    return width < LineWidth() || fControl->Text().find(u'\n') != krocore::string16::npos;
}

} // namespace krotarnlio
