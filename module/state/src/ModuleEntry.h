#pragma once

#include "qocui/module/Module.h"

namespace qocui::module {

// The system's reasons to call an entry point.
inline constexpr unsigned long kProcessDetach = 0;
inline constexpr unsigned long kProcessAttach = 1;

// What the entry point does, and returns.
int ModuleEntered(HINSTANCE instance, unsigned long reason);

} // namespace qocui::module
