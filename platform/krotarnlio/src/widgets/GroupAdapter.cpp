#include "GroupAdapter.h"

#include "uit/lio/AttributeValues.h"

namespace krotarnlio {

using uit::lio::AttributeKind;
using uit::lio::AttributeRow;
using uit::lio::TextOf;

namespace {

enum Row { kName, kHeader };
constexpr AttributeRow kRows[] = {{"name", AttributeKind::kFollows}, {"header", AttributeKind::kFollows}};

constexpr float kMargin = 12;     // between the frame and the children
constexpr float kHeaderRoom = 16; // above them, whether there is a header or not: the frame's line is in its middle
constexpr float kBelowHeader = 4; // more between the header's room and the children

} // namespace

std::span<const AttributeRow> GroupAdapter::Rows() {
    return kRows;
}

void GroupAdapter::SetAttribute(int row, const orrin::any_regular_t& value) {
    const bool* const hasHeader = value.get_if<bool>();
    if (row == kName)
        fName = TextOf(value);
    else if (hasHeader)
        fHasHeader = *hasHeader;
    else
        fHeader = TextOf(value);
    ShowHeader();
}

void GroupAdapter::ShowHeader() {
    const krocore::string16& header = fHeader.empty() ? fName : fHeader;
    const krocore::string16 shown = fHasHeader ? header : krocore::string16();
    if (shown == fControl->Label()) return;
    fControl->SetLabel(shown);
    fContext.layoutChanged();
}

Margins GroupAdapter::Insets() const {
    return {0, kHeaderRoom, 0, 0};
}

Margins GroupAdapter::DefaultMargins() const {
    return {kMargin, kBelowHeader, kMargin, kMargin};
}

} // namespace krotarnlio
