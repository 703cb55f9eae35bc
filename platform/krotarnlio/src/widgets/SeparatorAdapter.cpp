#include "SeparatorAdapter.h"

#include <stdexcept>

namespace krotarnlio {

using kroui::controls::UI_Divider;

namespace {

constexpr uit::lio::AttributeRow kRows[] = {{"orientation"}};

} // namespace

SeparatorAdapter::SeparatorAdapter(const uit::lio::WidgetContext& context) : ControlAdapter(context) {
    fControl->SetOrientation(UI_Divider::Orientation::kHorizontal);
}

std::span<const uit::lio::AttributeRow> SeparatorAdapter::Rows() {
    return kRows;
}

void SeparatorAdapter::SetAttribute(int /*row*/, const orrin::any_regular_t& value) {
    const std::string_view name = value.get<orrin::name_t>().text();
    if (name != "horizontal" && name != "vertical") throw std::invalid_argument("needs @horizontal or @vertical");
    fControl->SetOrientation(name == "vertical" ? UI_Divider::Orientation::kVertical
                                                : UI_Divider::Orientation::kHorizontal);
}

} // namespace krotarnlio
