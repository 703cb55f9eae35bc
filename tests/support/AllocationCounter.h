#pragma once

#include <cstddef>

// How often this program has taken memory with operator new or from the small blocks so far, in any thread.
std::size_t AllocationCount() noexcept;
