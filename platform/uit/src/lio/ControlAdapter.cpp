#include "ControlAdapter.h"

namespace uit::lio {

WidgetExtent ControlAdapter::Measure(std::optional<float> /*width*/) {
    WidgetExtent extent;
    extent.size = fControl->UI_GetNaturalSize();
    const float baseline = fControl->UI_GetBaseline();
    if (baseline >= 0) extent.baseline = baseline;
    return extent;
}

void ControlAdapter::SetWritable(int row, bool writable) {
    if (row == fValueRow) fControl->SetEnabled(writable);
}

void ControlAdapter::LayoutChanged() const {
    if (fIsComplete && fContext.layoutChanged) fContext.layoutChanged();
}

} // namespace uit::lio
