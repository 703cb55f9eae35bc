#pragma once

#include <cstdint>

namespace qoc::dsp {

// While one lives, this thread's floating-point unit takes denormal numbers for zero, which keeps decaying feedback
// from running a hundred times slower. Restores what was before. Does nothing on processors that it does not know.
class DenormalGuard {
public:
    DenormalGuard() noexcept;
    DenormalGuard(const DenormalGuard&) = delete;
    DenormalGuard& operator=(const DenormalGuard&) = delete;
    ~DenormalGuard();

private:
    std::uint64_t fBefore;
};

} // namespace qoc::dsp
