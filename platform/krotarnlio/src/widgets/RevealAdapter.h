#pragma once

#include "../ContainerAdapter.h"
#include "ControlAdapter.h"

#include "kroui/controls/UI_DisclosureTriangleButton.h"

namespace krotarnlio {

// A triangle with a text that opens and closes the part of the layout below it: "reveal".
//   name  the text
//   bind  a cell with a bool: whether it is open; without one it is closed at first
class RevealAdapter final : public ControlAdapter<kroui::controls::UI_DisclosureTriangleButton, ContainerAdapter> {
public:
    explicit RevealAdapter(const uit::lio::WidgetContext& context);
    static std::span<const uit::lio::AttributeRow> Rows();

    void SetAttribute(int row, const orrin::any_regular_t& value) override;
    bool ShowsChildren() const override { return fControl->IsChecked(); }
    Placement ControlPlacement() const override { return Placement::kColumn; }
    Margins DefaultMargins() const override;

private:
    void OnChanged();
};

} // namespace krotarnlio
