#pragma once

#include <span>

namespace workbench {

// The signals by which a user or the system asks the program to end: Ctrl-C, a request to terminate and, where there
// is one, the closing of the terminal.
std::span<const int> EndingSignals() noexcept;

} // namespace workbench
