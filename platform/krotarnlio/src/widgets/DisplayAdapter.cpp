#include "DisplayAdapter.h"

#include "uit/lio/AttributeValues.h"

#include "krocore/NumberFormat.h"
#include "orrin/error.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace krotarnlio {

using kroui::limner::TextAlignment;
using uit::lio::AttributeKind;
using uit::lio::AttributeRow;
using uit::lio::EndsWithColon;
using uit::lio::TextOf;
using uit::lio::WholeNumberWithin;

namespace {

enum TextRow { kTextName, kCharacters, kText };
constexpr AttributeRow kTextRows[] = {
    {"name", AttributeKind::kFollows}, {"characters"}, {"value", AttributeKind::kFollows}};

enum NumberRow { kNumberName, kUnits, kDigits, kDecimalPlaces, kNumber };
constexpr AttributeRow kNumberRows[] = {{"name", AttributeKind::kFollows},
                                        {"units", AttributeKind::kFollows},
                                        {"digits"},
                                        {"decimal_places"},
                                        {"value", AttributeKind::kFollows}};

constexpr unsigned kMostCharacters = 100;
constexpr unsigned kMostDigits = 15; // of a double
constexpr int kPlainPlaces = 6;      // of a number shown as a text
constexpr int kUnsaidPlaces = 2;     // of a number without `digits`
constexpr unsigned kSignAndPoint = 2;

krocore::string16 ShownTextOf(const orrin::any_regular_t& value) {
    if (const double* const number = value.get_if<double>())
        return krocore::FormatNumber(*number, kPlainPlaces, krocore::kFormatNoTrailingZeros);
    if (const orrin::name_t* const name = value.get_if<orrin::name_t>()) return krocore::ToUTF16(name->text());
    if (!value.get_if<std::string>())
        throw std::invalid_argument("needs a string, a number or a name, not " + orrin::type_phrase(value.type()));
    return TextOf(value);
}

int IntegerDigits(double value) {
    constexpr double kMost = 1e15;
    const double size = std::abs(value);
    if (!(size < kMost)) return static_cast<int>(kMostDigits);
    int digits = 1;
    double bound = 10;
    while (size >= bound) {
        bound *= 10;
        ++digits;
    }
    return digits;
}

} // namespace

uit::lio::WidgetExtent DisplayAdapter::Measure(std::optional<float> width) {
    uit::lio::WidgetExtent extent = ControlAdapter::Measure(width);
    if (EndsWithColon(fControl->GetLabel())) extent.colon = fControl->MeasureLabelWidth();
    return extent;
}

void DisplayAdapter::SetLabel(const krocore::string16& label) {
    if (label == fControl->GetLabel()) return;
    fControl->SetLabel(label);
    fContext.layoutChanged();
}

DisplayTextAdapter::DisplayTextAdapter(const uit::lio::WidgetContext& context) : DisplayAdapter(context) {
    fControl->SetAlignment(TextAlignment::kLeft);
    SetShown({});
}

std::span<const AttributeRow> DisplayTextAdapter::Rows() {
    return kTextRows;
}

void DisplayTextAdapter::SetAttribute(int row, const orrin::any_regular_t& value) {
    switch (row) {
    case kTextName: SetLabel(TextOf(value)); break;
    case kCharacters:
        fControl->SetDigits(static_cast<unsigned>(WholeNumberWithin(value, 0, kMostCharacters)));
        fHasRoom = true;
        break;
    default: SetShown(ShownTextOf(value)); break;
    }
}

void DisplayTextAdapter::SetShown(const krocore::string16& text) {
    // Without a text the control would show its number.
    const krocore::string16 shown = text.empty() ? krocore::string16(u" ") : text;
    if (shown == fControl->GetText()) return;
    fControl->SetText(shown);
    if (!fHasRoom) fContext.layoutChanged();
}

DisplayNumberAdapter::DisplayNumberAdapter(const uit::lio::WidgetContext& context) : DisplayAdapter(context) {
    fControl->SetFormatFlags(krocore::kFormatNoTrailingZeros);
    fControl->SetDecimalPlaces(kUnsaidPlaces);
}

std::span<const AttributeRow> DisplayNumberAdapter::Rows() {
    return kNumberRows;
}

void DisplayNumberAdapter::SetAttribute(int row, const orrin::any_regular_t& value) {
    switch (row) {
    case kNumberName: SetLabel(TextOf(value)); break;
    case kUnits: SetUnits(TextOf(value)); break;
    case kDigits:
        fDigits = static_cast<unsigned>(WholeNumberWithin(value, 0, kMostDigits));
        fControl->SetDigits(fDigits > 0 ? fDigits + kSignAndPoint : 0);
        break;
    case kDecimalPlaces:
        fControl->SetDecimalPlaces(WholeNumberWithin(value, 0, kMostDigits));
        fControl->SetFormatFlags(krocore::kFormatNormal);
        fHasPlaces = true;
        break;
    default: ShowValue(value.get<double>()); break;
    }
}

void DisplayNumberAdapter::SetUnits(const krocore::string16& units) {
    if (units == fControl->GetUnitLabel()) return;
    fControl->SetUnitLabel(units);
    fContext.layoutChanged();
}

void DisplayNumberAdapter::ShowValue(double value) {
    if (value == fControl->GetValue()) return;
    if (fDigits > 0 && !fHasPlaces)
        fControl->SetDecimalPlaces(std::max(static_cast<int>(fDigits) - IntegerDigits(value), 0));
    fControl->SetValue(value);
    if (fDigits == 0) fContext.layoutChanged();
}

} // namespace krotarnlio
