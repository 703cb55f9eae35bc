#pragma once

#include <cstdint>

namespace krocore::threads {

// A number that tells the calling thread from all others of the process (the system's own thread id).
std::uint64_t GetCurrentThreadID() noexcept;

} // namespace krocore::threads
