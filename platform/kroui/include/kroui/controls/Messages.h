#pragma once

#include <cstdint>

namespace kroui::controls {

class UI_ControlView;

// A control's value was changed by the user, and the change is final.
class UI_ControlChangedMessage {
public:
    explicit UI_ControlChangedMessage(UI_ControlView& control) : fControl(&control) {}
    UI_ControlView* GetControl() const { return fControl; }

private:
    UI_ControlView* fControl;
};

// A control's value is being changed by the user: one of these for every step of the gesture.
class UI_InteractiveControlChangedMessage {
public:
    enum ChangeMessage : std::uint8_t {
        kStarted = 0,   // the gesture begins; the value is still the old one
        kChanged = 1,   // the value is another now
        kEnded = 2,     // the gesture ends with the value as it is
        kAbandoned = 3, // the gesture ends; the value is the one from before it again
    };

    UI_InteractiveControlChangedMessage(UI_ControlView& control, ChangeMessage change)
        : fControl(&control), fChange(change) {}
    UI_ControlView* GetControl() const { return fControl; }
    ChangeMessage GetChangeMessage() const { return fChange; }

private:
    UI_ControlView* fControl;
    ChangeMessage fChange;
};

} // namespace kroui::controls
