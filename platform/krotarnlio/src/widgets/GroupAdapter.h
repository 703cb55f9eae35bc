#pragma once

#include "../ContainerAdapter.h"
#include "ControlAdapter.h"

#include "uit/controls/UI_OutlineBoxWithLabel.h"

namespace krotarnlio {

// A frame around its children, with a header in its top line: "group".
//   name    the header
//   header  another header in its place, or whether there is one
class GroupAdapter final : public ControlAdapter<uit::controls::UI_OutlineBoxWithLabel, ContainerAdapter> {
public:
    explicit GroupAdapter(const uit::lio::WidgetContext& context) : ControlAdapter(context) {
        fControl->SetLayoutChildren(false);
    }
    static std::span<const uit::lio::AttributeRow> Rows();

    void SetAttribute(int row, const orrin::any_regular_t& value) override;
    Margins Insets() const override;
    Margins DefaultMargins() const override;

private:
    void ShowHeader();

    krocore::string16 fName;
    krocore::string16 fHeader; // in place of the name, unless empty
    bool fHasHeader = true;
};

} // namespace krotarnlio
