#pragma once

#include "ControlAdapter.h"

#include "kroui/controls/UI_Checkbox.h"

#include <span>

namespace krotarnlio {

// "checkbox".
//   name  its text
//   bind  a cell with a bool
class CheckboxAdapter final : public ControlAdapter<kroui::controls::UI_Checkbox> {
public:
    explicit CheckboxAdapter(const uit::lio::WidgetContext& context);
    static std::span<const uit::lio::AttributeRow> Rows();

    void SetAttribute(int row, const orrin::any_regular_t& value) override;

private:
    void OnChanged();
};

} // namespace krotarnlio
