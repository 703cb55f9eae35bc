#pragma once

#include <csignal>
#include <cstddef>

#include <sys/resource.h>

// Stands for a full disk: while it lives, the process can't make files grow beyond `bytes`.
class FullDisk {
public:
    explicit FullDisk(std::size_t bytes) : fOldHandler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &fBefore);
        const rlimit full{bytes, fBefore.rlim_max};
        setrlimit(RLIMIT_FSIZE, &full);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &fBefore);
        std::signal(SIGXFSZ, fOldHandler);
    }

private:
    rlimit fBefore{};
    void (*fOldHandler)(int);
};
