#pragma once

#include "workbench/views/MenuButton.h"

namespace workbench {

// The theme and the zoom of the window, shown by a button that opens a menu to change them. Owned by the view.
class Appearance {
public:
    Appearance();

    const boost::intrusive_ptr<MenuButton>& Button() const { return fButton; }

    // The user's magnification; held within what is useful and the largest one. Has effect once the button is attached
    // and Show was called.
    void SetZoom(float zoom);
    void SetLargestZoom(float zoom) { fLargestZoom = zoom; }
    void ZoomIn();
    void ZoomOut();
    void ToggleTheme();
    // Writes what holds for the window, which may have changed.
    void Show();

private:
    MenuButton::Commands Commands();
    kroui::ui::UI_Window* Window() const { return fButton->UI_GetWindow(); }

    boost::intrusive_ptr<MenuButton> fButton;
    float fZoom = 1;
    float fLargestZoom = 3;
};

} // namespace workbench
