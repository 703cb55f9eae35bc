#include "RadioButtonAdapter.h"

#include "uit/lio/AttributeValues.h"

namespace krotarnlio {

using uit::lio::AttributeKind;
using uit::lio::AttributeRow;
using uit::lio::TextOf;

namespace {

enum Row { kName, kValue, kBind };
constexpr AttributeRow kRows[] = {{"name", AttributeKind::kFollows}, {"value"}, {"bind", AttributeKind::kBound}};

} // namespace

RadioButtonAdapter::RadioButtonAdapter(const uit::lio::WidgetContext& context) : ControlAdapter(context) {
    Listen(&RadioButtonAdapter::OnChanged);
}

std::span<const AttributeRow> RadioButtonAdapter::Rows() {
    return kRows;
}

void RadioButtonAdapter::SetCell(int /*row*/, orrin::name_t cell) {
    fControl->SetGroup(cell.hash());
}

void RadioButtonAdapter::SetAttribute(int row, const orrin::any_regular_t& value) {
    switch (row) {
    case kName: return SetText(TextOf(value));
    case kValue: fValue = value; break;
    default: fControl->SetValue(value == fValue ? 1 : 0); break;
    }
}

void RadioButtonAdapter::OnChanged() {
    if (fControl->IsChecked()) Write(kBind, fValue);
}

} // namespace krotarnlio
