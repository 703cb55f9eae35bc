#pragma once

#include "ControlAdapter.h"

#include "kroui/controls/UI_TextButton.h"

#include <span>

namespace krotarnlio {

// A button that stays down: "toggle_button".
//   name          its text
//   button_style  0 or @raised, 1 or @flat, 2 or @round
//   value         with one it is one of several choices, down while the cell has the value, and a press sets the cell
//                 to it; without one the cell is a bool, which a press turns over
//   bind          the cell
class ToggleButtonAdapter final : public ControlAdapter<kroui::controls::UI_TextButton> {
public:
    explicit ToggleButtonAdapter(const uit::lio::WidgetContext& context);
    static std::span<const uit::lio::AttributeRow> Rows();

    void SetAttribute(int row, const orrin::any_regular_t& value) override;

private:
    void OnChanged();

    orrin::any_regular_t fValue; // empty if the cell is a bool
};

// What the attribute "button_style" means. Throws std::invalid_argument.
kroui::controls::UI_TextButton::ButtonStyle ButtonStyleOf(const orrin::any_regular_t& value);

} // namespace krotarnlio
