#include "krocore/threads/Threads.h"

#include <windows.h>

namespace krocore::threads {

std::uint64_t GetCurrentThreadID() noexcept {
    return ::GetCurrentThreadId();
}

} // namespace krocore::threads
