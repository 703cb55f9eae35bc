#include "NumberAdapter.h"

#include <boost/bind/bind.hpp>

namespace uit::lio {

NumberAdapter::NumberAdapter(const WidgetContext& context,
                             boost::intrusive_ptr<kroui::controls::UI_InteractiveControlView> control,
                             kroui::controls::ValueControl& number, int valueRow)
    : ControlAdapter(context, control, valueRow), fNumber(number), fRow(valueRow) {
    control->NotifyWhenChangedInteractively(
        boost::bind(&NumberAdapter::OnInteractiveChange, this, boost::placeholders::_1));
}

void NumberAdapter::SetDefault(int row, const orrin::any_regular_t& value) {
    if (row == fRow) fNumber.SetDefaultValue(NumberOf(value));
}

void NumberAdapter::SetBoundValue(double value) {
    fCell = value;
    fNumber.SetValue(value);
}

void NumberAdapter::SetBounds(const Bounds& bounds) {
    fNumber.SetMinValue(bounds.low);
    fNumber.SetMaxValue(bounds.high);
    if (fCell) fNumber.SetValue(*fCell);
}

// The cell goes along with every change, and back with one that is abandoned. Nothing is touched after the write, which
// may do away with the panel.
void NumberAdapter::OnInteractiveChange(Message* message) {
    const double value = fNumber.GetValue();
    if (message->GetChangeMessage() == Message::kStarted || fCell == value) return;
    fCell = value;
    Write(fRow, value);
}

} // namespace uit::lio
