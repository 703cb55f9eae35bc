#include "Debugger.h"

#include <csignal>
#include <fstream>
#include <string>

namespace krocore::debug {

bool IsDebuggerAttached() {
    // proc(5): "TracerPid" is 0 where no process traces this one.
    std::ifstream status("/proc/self/status");
    for (std::string field; status >> field;) {
        if (field != "TracerPid:") continue;
        long tracer = 0;
        return status >> tracer && tracer != 0;
    }
    return false;
}

void BreakIntoDebugger() {
    static_cast<void>(std::raise(SIGTRAP));
}

} // namespace krocore::debug
