#include "CheckboxAdapter.h"

#include "uit/lio/AttributeValues.h"

namespace krotarnlio {

using uit::lio::AttributeKind;
using uit::lio::AttributeRow;
using uit::lio::TextOf;

namespace {

enum Row { kName, kBind };
constexpr AttributeRow kRows[] = {{"name", AttributeKind::kFollows}, {"bind", AttributeKind::kBound}};

} // namespace

CheckboxAdapter::CheckboxAdapter(const uit::lio::WidgetContext& context) : ControlAdapter(context) {
    Listen(&CheckboxAdapter::OnChanged);
}

std::span<const AttributeRow> CheckboxAdapter::Rows() {
    return kRows;
}

void CheckboxAdapter::SetAttribute(int row, const orrin::any_regular_t& value) {
    if (row == kName) return SetText(TextOf(value));
    fControl->SetChecked(value.get<bool>());
}

void CheckboxAdapter::OnChanged() {
    Write(kBind, fControl->IsChecked());
}

} // namespace krotarnlio
