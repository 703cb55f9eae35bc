#pragma once

#include "kroui/ui/Events.h"

#include <cstdint>
#include <optional>

namespace workbench {

// What a key does wherever the focus is, unless a control uses it.
enum class Command : std::uint8_t {
    kPlayOrPause,
    kStop,
    kLoop,
    kBypass,
    kUndo,
    kRedo,
    kSwitchSlot,
    kRender,
    kSearch,
    kSelectAll,
    kToggleTheme,
    kZoomIn,
    kZoomOut,
    kZoomToNormal,
};

std::optional<Command> CommandOf(const kroui::ui::KeyEvent& event);

} // namespace workbench
