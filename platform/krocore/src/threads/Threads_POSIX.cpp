#include "krocore/threads/Threads.h"

#include <unistd.h>

namespace krocore::threads {

std::uint64_t GetCurrentThreadID() noexcept {
    return static_cast<std::uint64_t>(gettid());
}

} // namespace krocore::threads
