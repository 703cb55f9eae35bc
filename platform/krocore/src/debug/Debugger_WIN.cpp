#include "Debugger.h"

#include <intrin.h>
#include <windows.h>

namespace krocore::debug {

bool IsDebuggerAttached() {
    return IsDebuggerPresent() != FALSE;
}

void BreakIntoDebugger() {
    __debugbreak();
}

} // namespace krocore::debug
