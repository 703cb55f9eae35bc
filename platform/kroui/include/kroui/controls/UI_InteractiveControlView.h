#pragma once

#include "kroui/controls/UI_ControlView.h"

namespace kroui::controls {

// A control whose changes are gestures with a beginning, changes in progress and an end.
class UI_InteractiveControlView : public UI_ControlView {
public:
    using InteractiveSignal = ui::Signal<UI_InteractiveControlChangedMessage*>;
    // Calls the slot for every step of a gesture; life time as for NotifyWhenChanged.
    void NotifyWhenChangedInteractively(const InteractiveSignal::slot_type& slot);

    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfInteractiveControlView();

protected:
    ~UI_InteractiveControlView() override = default;

    void SendInteractive(UI_InteractiveControlChangedMessage::ChangeMessage change);

private:
    InteractiveSignal fInteractive;
};

} // namespace kroui::controls
