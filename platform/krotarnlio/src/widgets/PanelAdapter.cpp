#include "PanelAdapter.h"

#include "uit/lio/AttributeValues.h"

#include <utility>

namespace krotarnlio {

using uit::lio::AttributeKind;
using uit::lio::AttributeRow;
using uit::lio::TextOf;

namespace {

enum Row { kName, kValue, kValueOn, kBind };
constexpr AttributeRow kRows[] = {
    {"name", AttributeKind::kFollows}, {"value"}, {"value_on"}, {"bind", AttributeKind::kBound}};

} // namespace

// Whoever arranges the pages knows what their contents need.
class PanelAdapter::Page final : public kroui::ui::UI_SubView {
public:
    Page() { SetLayoutChildren(false); }

    void SetName(krocore::string16 name) { fName = std::move(name); }
    kroui::Size UI_GetNaturalSize() const override { return {}; }
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override {
        kroui::ui::AccessibleInfo info = UI_SubView::UI_GetAccessibleInfo();
        info.role = kroui::ui::Role::kGroup;
        info.name = fName;
        return info;
    }

private:
    krocore::string16 fName;
};

PanelAdapter::PanelAdapter(const uit::lio::WidgetContext& context) : fContext(context), fPage(new Page) {
}

PanelAdapter::~PanelAdapter() = default;

std::span<const AttributeRow> PanelAdapter::Rows() {
    return kRows;
}

void PanelAdapter::SetAttribute(int row, const orrin::any_regular_t& value) {
    if (row == kName) return fPage->SetName(TextOf(value));
    const bool shown = ShowsChildren();
    if (row == kBind) {
        fCell = value;
        fIsBound = true;
    } else {
        fValue = value;
        fHasValue = true;
    }
    if (ShowsChildren() != shown) fContext.layoutChanged();
}

boost::intrusive_ptr<kroui::ui::UI_Node> PanelAdapter::GetNode() {
    return fPage;
}

void PanelAdapter::SetChosen(bool chosen) {
    if (std::exchange(fIsChosen, chosen) != chosen) fContext.layoutChanged();
}

} // namespace krotarnlio
