#pragma once

#include <string>

namespace test {

// Notices what a sound thread must not do: take or give back memory, lock or wait, call the system. Replaces the
// functions of the C library in the whole program, so a program that is not linked with RealTimeWatch.cpp notices
// nothing. One thread at a time.
class RealTimeWatch {
public:
    // Whether the kernel tells of system calls, too (Linux 5.11).
    __attribute__((weak)) static bool SeesSystemCalls();
    // Between them nothing of the kind may happen.
    __attribute__((weak)) static void Begin();
    __attribute__((weak)) static void End();
    // The first that did in the last stretch, with the calls that led to it; empty for none.
    __attribute__((weak)) static std::string Offence();
};

} // namespace test
