#pragma once

namespace krocore::debug {

// Whether a debugger follows this process at the moment.
bool IsDebuggerAttached();

// Stops in the debugger. Without one the process ends.
void BreakIntoDebugger();

} // namespace krocore::debug
