#pragma once

#include "ControlAdapter.h"
#include "uit/lio/AttributeValues.h"

#include "kroui/controls/UI_InteractiveControlView.h"
#include "kroui/controls/ValueControl.h"

namespace uit::lio {

// Base of the adapters whose value is a number: the cell follows every change of a gesture, and the control the cell.
class NumberAdapter : public ControlAdapter {
public:
    void SetDefault(int row, const orrin::any_regular_t& value) override;

protected:
    // `Control` is a ValueControl and a UI_InteractiveControlView. `valueRow`: its bound attribute.
    template <class Control>
    NumberAdapter(const WidgetContext& context, const boost::intrusive_ptr<Control>& control, int valueRow)
        : NumberAdapter(context, control, *control, valueRow) {}

    void SetBoundValue(double value);
    // The value stays the cell's, as far as the bounds let it.
    void SetBounds(const Bounds& bounds);

private:
    using Message = kroui::controls::UI_InteractiveControlChangedMessage;

    NumberAdapter(const WidgetContext& context,
                  boost::intrusive_ptr<kroui::controls::UI_InteractiveControlView> control,
                  kroui::controls::ValueControl& number, int valueRow);
    void OnInteractiveChange(Message* message);

    kroui::controls::ValueControl& fNumber; // the control
    std::optional<double> fCell;            // what the cell holds, as far as it is known
    const int fRow;
};

} // namespace uit::lio
