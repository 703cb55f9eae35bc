#include <windows.h>

#include "workbench/sound/ThreadPriority.h"

namespace workbench {

void GiveWayToOtherThreads() noexcept {
    SetThreadPriority(GetCurrentThread(), THREAD_MODE_BACKGROUND_BEGIN);
}

} // namespace workbench
