#include "OptionalAdapter.h"

namespace krotarnlio {

using uit::lio::AttributeKind;
using uit::lio::AttributeRow;

namespace {

enum Row { kValue, kBind };
constexpr AttributeRow kRows[] = {{"value"}, {"bind", AttributeKind::kBound}};

} // namespace

std::span<const AttributeRow> OptionalAdapter::Rows() {
    return kRows;
}

void OptionalAdapter::SetAttribute(int row, const orrin::any_regular_t& value) {
    const bool shown = ShowsChildren();
    (row == kValue ? fValue : fCell) = value;
    if (ShowsChildren() != shown) fContext.layoutChanged();
}

} // namespace krotarnlio
