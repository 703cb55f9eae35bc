#include "kroui/controls/UI_InteractiveControlView.h"

namespace kroui::controls {

void UI_InteractiveControlView::NotifyWhenChangedInteractively(const InteractiveSignal::slot_type& slot) {
    fInteractive.connect(slot);
}

const ui::PropertyTable& UI_InteractiveControlView::UI_GetPropertyTable() const {
    return PropertiesOfInteractiveControlView();
}

const ui::PropertyTable& UI_InteractiveControlView::PropertiesOfInteractiveControlView() {
    static const ui::PropertyTable sTable{"kroui::controls::UI_InteractiveControlView", {}, &PropertiesOfControlView()};
    return sTable;
}

void UI_InteractiveControlView::SendInteractive(UI_InteractiveControlChangedMessage::ChangeMessage change) {
    if (fInteractive.empty()) return;
    UI_InteractiveControlChangedMessage message(*this, change);
    fInteractive(&message);
}

} // namespace kroui::controls
