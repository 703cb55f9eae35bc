#pragma once

#include "ControlAdapter.h"

#include "kroui/controls/UI_RadioButton.h"

#include <span>

namespace krotarnlio {

// One of several choices for a cell: "radio_button". Those of one cell in one part of the layout are a group.
//   name   its text
//   value  of the cell while it is chosen; true if not given
//   bind   the cell
class RadioButtonAdapter final : public ControlAdapter<kroui::controls::UI_RadioButton> {
public:
    explicit RadioButtonAdapter(const uit::lio::WidgetContext& context);
    static std::span<const uit::lio::AttributeRow> Rows();

    void SetCell(int row, orrin::name_t cell) override;
    void SetAttribute(int row, const orrin::any_regular_t& value) override;

private:
    void OnChanged();

    orrin::any_regular_t fValue{true};
};

} // namespace krotarnlio
