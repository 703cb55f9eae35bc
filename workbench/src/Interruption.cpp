#include "workbench/Interruption.h"

#include <csignal>

namespace workbench {

namespace {

volatile std::sig_atomic_t sHasHappened = 0;

void Remember(int /*signal*/) {
    sHasHappened = 1;
}

} // namespace

Interruption::Interruption() {
    sHasHappened = 0;
    fOldInterrupt = std::signal(SIGINT, Remember);
    fOldTerminate = std::signal(SIGTERM, Remember);
}

Interruption::~Interruption() {
    std::signal(SIGINT, fOldInterrupt);
    std::signal(SIGTERM, fOldTerminate);
}

bool Interruption::HasHappened() const noexcept {
    return sHasHappened != 0;
}

} // namespace workbench
