#include "workbench/sound/ThreadPriority.h"

#include <sys/resource.h>

namespace workbench {

// POSIX has this for whole processes; Linux takes it for the calling thread (setpriority(2), "C library/kernel
// differences"), and elsewhere it is left alone.
void GiveWayToOtherThreads() noexcept {
#ifdef __linux__
    constexpr int kNice = 10;
    setpriority(PRIO_PROCESS, 0, kNice);
#endif
}

} // namespace workbench
