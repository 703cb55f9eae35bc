#pragma once

#include "ControlAdapter.h"

#include "kroui/controls/UI_Divider.h"

#include <span>

namespace krotarnlio {

// A line between the parts of a layout, as long as its column is wide or its row is high: "separator".
//   orientation  @horizontal, as without it, or @vertical
class SeparatorAdapter final : public ControlAdapter<kroui::controls::UI_Divider> {
public:
    explicit SeparatorAdapter(const uit::lio::WidgetContext& context);
    static std::span<const uit::lio::AttributeRow> Rows();

    void SetAttribute(int row, const orrin::any_regular_t& value) override;
    bool StretchesAcross() const override { return true; }
};

} // namespace krotarnlio
