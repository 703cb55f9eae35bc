#pragma once

#include "kroui/controls/UI_ControlView.h"
#include "uit/lio/WidgetAdapter.h"

namespace uit::lio {

// Base of the adapters here: a widget that is one control, as big as the control likes to be, disabled while the cell
// of its value may not be written.
class ControlAdapter : public WidgetAdapter {
public:
    boost::intrusive_ptr<kroui::ui::UI_Node> GetNode() override { return fControl; }
    void Complete() override { fIsComplete = true; }
    WidgetExtent Measure(std::optional<float> width) override;
    void SetWritable(int row, bool writable) override;

protected:
    // `valueRow`: the bound attribute that holds the control's value.
    ControlAdapter(const WidgetContext& context, boost::intrusive_ptr<kroui::controls::UI_ControlView> control,
                   int valueRow)
        : fContext(context), fControl(std::move(control)), fValueRow(valueRow) {}

    bool IsComplete() const { return fIsComplete; }
    const WidgetContext& Context() const { return fContext; }
    // What the control takes may be another now.
    void LayoutChanged() const;

private:
    const WidgetContext fContext;
    const boost::intrusive_ptr<kroui::controls::UI_ControlView> fControl;
    const int fValueRow;
    bool fIsComplete = false;
};

} // namespace uit::lio
