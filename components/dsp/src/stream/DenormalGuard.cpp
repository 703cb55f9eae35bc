#include "qoc/dsp/stream/DenormalGuard.h"

#if defined(__SSE2__) || defined(_M_X64)
#include <immintrin.h>
#endif

namespace qoc::dsp {

namespace {

#if defined(__SSE2__) || defined(_M_X64)

// Flush-to-zero and denormals-are-zero of the MXCSR register (Intel 64 manual, volume 1, section 10.2.3).
constexpr std::uint64_t kFlushBits = 0x8040;

std::uint64_t ReadControl() noexcept {
    return _mm_getcsr();
}
void WriteControl(std::uint64_t control) noexcept {
    _mm_setcsr(static_cast<unsigned>(control));
}

#elif defined(__aarch64__)

// FZ of the FPCR register (Arm Architecture Reference Manual for A-profile, FPCR).
constexpr std::uint64_t kFlushBits = std::uint64_t{1} << 24;

std::uint64_t ReadControl() noexcept {
    std::uint64_t control = 0;
    asm volatile("mrs %0, fpcr" : "=r"(control));
    return control;
}
void WriteControl(std::uint64_t control) noexcept {
    asm volatile("msr fpcr, %0" : : "r"(control));
}

#else

constexpr std::uint64_t kFlushBits = 0;

std::uint64_t ReadControl() noexcept {
    return 0;
}
void WriteControl(std::uint64_t) noexcept {
}

#endif

} // namespace

DenormalGuard::DenormalGuard() noexcept : fBefore(ReadControl()) {
    WriteControl(fBefore | kFlushBits);
}

DenormalGuard::~DenormalGuard() {
    WriteControl(fBefore);
}

} // namespace qoc::dsp
