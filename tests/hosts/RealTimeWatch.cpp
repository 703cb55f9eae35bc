#include "RealTimeWatch.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>

#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

// glibc's own allocator behind its public names.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);
}

namespace test {

namespace {

constexpr int kMostFrames = 24;

// What was called, and from where. Filled without taking memory.
struct Record {
    const char* what = nullptr;
    long number = 0; // of a system call
    std::array<void*, kMostFrames> frames{};
    int frameCount = 0;
};

Record sRecord;
thread_local bool tIsWatched = false;
// Read by the kernel at every system call of the thread.
volatile char sSelector = 0;
constexpr char kAllow = 0; // SYSCALL_DISPATCH_FILTER_ALLOW
constexpr char kBlock = 1;
constexpr int kSetDispatch = 59; // PR_SET_SYSCALL_USER_DISPATCH

void Note(const char* what, long number = 0) {
    if (!tIsWatched) return;
    tIsWatched = false; // the first says enough
    sSelector = kAllow;
    sRecord.what = what;
    sRecord.number = number;
    sRecord.frameCount = backtrace(sRecord.frames.data(), kMostFrames);
}

// Does the call after all, for x86-64.
void OnSystemCall(int /*signal*/, siginfo_t* info, void* context) {
    sSelector = kAllow;
    Note("system call", info->si_syscall);
    auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    const long result = syscall(info->si_syscall, registers[REG_RDI], registers[REG_RSI], registers[REG_RDX],
                                registers[REG_R10], registers[REG_R8], registers[REG_R9]);
    registers[REG_RAX] = result < 0 ? -errno : result;
}

bool AskForSystemCalls() {
    struct sigaction action {};
    action.sa_sigaction = OnSystemCall;
    action.sa_flags = SA_SIGINFO;
    if (sigaction(SIGSYS, &action, nullptr) != 0) return false;
    return prctl(kSetDispatch, 1L, 0L, 0L, &sSelector) == 0;
}

// What stands behind a function of ours that has its name.
template <class Function>
Function* Behind(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

bool RealTimeWatch::SeesSystemCalls() {
    static const bool sSees = AskForSystemCalls();
    return sSees;
}

void RealTimeWatch::Begin() {
    const bool seesSystemCalls = SeesSystemCalls();
    sRecord = {};
    tIsWatched = true;
    if (seesSystemCalls) sSelector = kBlock;
}

void RealTimeWatch::End() {
    sSelector = kAllow;
    tIsWatched = false;
}

std::string RealTimeWatch::Offence() {
    if (sRecord.what == nullptr) return {};
    std::string text = sRecord.what + (sRecord.number != 0 ? " " + std::to_string(sRecord.number) : std::string());
    char** const names = backtrace_symbols(sRecord.frames.data(), sRecord.frameCount);
    for (int i = 0; names != nullptr && i < sRecord.frameCount; ++i)
        text += std::string("\n    ") + names[i];
    std::free(names);
    return text;
}

} // namespace test

// The program's own come before the C library's, for libraries that it loads too.
#define QO_WATCHED(name, result, parameters, arguments)                                                                \
    extern "C" result name parameters {                                                                                \
        test::Note(#name);                                                                                             \
        static auto* const sBehind = test::Behind<result parameters>(#name);                                           \
        return sBehind arguments;                                                                                      \
    }

QO_WATCHED(pthread_mutex_lock, int, (pthread_mutex_t * mutex) noexcept, (mutex))
QO_WATCHED(pthread_rwlock_rdlock, int, (pthread_rwlock_t * lock) noexcept, (lock))
QO_WATCHED(pthread_rwlock_wrlock, int, (pthread_rwlock_t * lock) noexcept, (lock))
QO_WATCHED(pthread_cond_wait, int, (pthread_cond_t * condition, pthread_mutex_t* mutex), (condition, mutex))
QO_WATCHED(pthread_cond_signal, int, (pthread_cond_t * condition) noexcept, (condition))
QO_WATCHED(pthread_cond_broadcast, int, (pthread_cond_t * condition) noexcept, (condition))
QO_WATCHED(sem_wait, int, (sem_t * semaphore), (semaphore))
QO_WATCHED(sem_post, int, (sem_t * semaphore) noexcept, (semaphore))

extern "C" {
void* malloc(std::size_t size) {
    test::Note("malloc");
    return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
    test::Note("calloc");
    return __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) {
    test::Note("realloc");
    return __libc_realloc(memory, size);
}
void free(void* memory) {
    if (memory != nullptr) test::Note("free");
    __libc_free(memory);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
    test::Note("aligned_alloc");
    return __libc_memalign(alignment, size);
}
int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    test::Note("posix_memalign");
    *memory = __libc_memalign(alignment, size);
    return *memory != nullptr ? 0 : ENOMEM;
}
}
