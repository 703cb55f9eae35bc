#include "ToggleButtonAdapter.h"

#include "uit/lio/AttributeValues.h"

#include <stdexcept>

namespace krotarnlio {

using kroui::controls::UI_TextButton;
using uit::lio::AttributeKind;
using uit::lio::AttributeRow;
using uit::lio::TextOf;

namespace {

enum Row { kName, kButtonStyle, kValue, kBind };
constexpr AttributeRow kRows[] = {
    {"name", AttributeKind::kFollows}, {"button_style"}, {"value"}, {"bind", AttributeKind::kBound}};

constexpr std::string_view kStyles[] = {"raised", "flat", "round"}; // by number

} // namespace

UI_TextButton::ButtonStyle ButtonStyleOf(const orrin::any_regular_t& value) {
    const orrin::name_t* const name = value.get_if<orrin::name_t>();
    const double* const number = value.get_if<double>();
    for (unsigned style = 0; style < std::size(kStyles); ++style)
        if ((name && name->text() == kStyles[style]) || (number && *number == style))
            return static_cast<UI_TextButton::ButtonStyle>(style);
    throw std::invalid_argument("needs @raised, @flat or @round");
}

ToggleButtonAdapter::ToggleButtonAdapter(const uit::lio::WidgetContext& context) : ControlAdapter(context) {
    fControl->SetSpringLoaded(false);
    Listen(&ToggleButtonAdapter::OnChanged);
}

std::span<const AttributeRow> ToggleButtonAdapter::Rows() {
    return kRows;
}

void ToggleButtonAdapter::SetAttribute(int row, const orrin::any_regular_t& value) {
    switch (row) {
    case kName: return SetText(TextOf(value));
    case kButtonStyle: return fControl->SetButtonStyle(ButtonStyleOf(value));
    case kValue: fValue = value; break;
    default: fControl->SetValue((fValue.empty() ? value.get<bool>() : value == fValue) ? 1 : 0); break;
    }
}

void ToggleButtonAdapter::OnChanged() {
    const bool isOn = fControl->IsChecked();
    if (fValue.empty()) return Write(kBind, isOn);
    // The choice that is made stays made.
    if (!isOn) return fControl->SetValue(1);
    Write(kBind, fValue);
}

} // namespace krotarnlio
