#pragma once

#include "kroui/ui/Signal.h"
#include "kroui/ui/Theme.h"

#include <filesystem>

namespace qolv2 {

// How the user wants the panels to look, in every host: theme and zoom. Remembered in a file of theirs, and the same
// for all panels of the process. A file that can't be read counts as none; where none can be written, what was chosen
// holds as long as the process. User-interface thread.
class PanelLook {
public:
    static constexpr float kZoomStep = 1.25F;
    static constexpr float kSmallestZoom = 0.64F; // two steps down
    static constexpr float kLargestZoom = 3;

    explicit PanelLook(std::filesystem::path file);
    // The user's: panels.json in $XDG_CONFIG_HOME/qoaudio, without that variable in ~/.config/qoaudio.
    static PanelLook& Get();

    // Takes what another program may have written.
    void Read();
    const kroui::ui::Theme& Theme() const { return *fTheme; }
    float Zoom() const { return fZoom; }
    void ToggleTheme();
    // Held within the zooms above; what is no number changes nothing.
    void SetZoom(float zoom);
    void ZoomIn() { SetZoom(fZoom * kZoomStep); }
    void ZoomOut() { SetZoom(fZoom / kZoomStep); }
    bool IsDark() const { return fTheme == &kroui::ui::Theme::Dark(); }

    kroui::ui::Signal<>& GetChangedSignal() { return fChanged; }

private:
    void Write();

    std::filesystem::path fFile;
    const kroui::ui::Theme* fTheme = &kroui::ui::Theme::Dark();
    float fZoom = 1;
    kroui::ui::Signal<> fChanged;
};

} // namespace qolv2
