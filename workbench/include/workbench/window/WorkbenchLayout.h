#pragma once

#include "kroui/Geometry.h"

namespace workbench {

// Where the parts of the window stand.
struct WorkbenchLayout {
    static constexpr kroui::Size kSmallestSize = {900, 600};

    kroui::Rect header;
    kroui::Rect browser;
    kroui::Rect panel;
    kroui::Rect meters; // as high as there is room
    kroui::Rect waveform;
    kroui::Rect transport;
    kroui::Rect status;

    // A smaller size than the smallest counts as that.
    explicit WorkbenchLayout(kroui::Size size);
};

} // namespace workbench
