#include "RevealAdapter.h"

#include "uit/lio/AttributeValues.h"

namespace krotarnlio {

using uit::lio::AttributeKind;
using uit::lio::AttributeRow;
using uit::lio::TextOf;

namespace {

enum Row { kName, kBind };
constexpr AttributeRow kRows[] = {{"name", AttributeKind::kFollows}, {"bind", AttributeKind::kBound}};

constexpr float kChildIndent = 20; // so that children stand below the text, not the triangle

} // namespace

RevealAdapter::RevealAdapter(const uit::lio::WidgetContext& context) : ControlAdapter(context) {
    Listen(&RevealAdapter::OnChanged);
}

std::span<const AttributeRow> RevealAdapter::Rows() {
    return kRows;
}

void RevealAdapter::SetAttribute(int row, const orrin::any_regular_t& value) {
    if (row == kName) return SetText(TextOf(value));
    const bool opens = value.get<bool>();
    if (opens == fControl->IsChecked()) return;
    fControl->SetValue(opens ? 1 : 0);
    fContext.layoutChanged();
}

Margins RevealAdapter::DefaultMargins() const {
    return {kChildIndent, 0, 0, 0};
}

void RevealAdapter::OnChanged() {
    fContext.layoutChanged();
    Write(kBind, fControl->IsChecked());
}

} // namespace krotarnlio
