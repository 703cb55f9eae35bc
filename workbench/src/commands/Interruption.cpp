#include "workbench/commands/Interruption.h"

#include "krocore/TemporaryFile.h"
#include "workbench/commands/EndingSignals.h"

#include <csignal>
#include <cstddef>

namespace workbench {

namespace {

volatile std::sig_atomic_t sHasHappened = 0;

void Remember(int /*signal*/) {
    sHasHappened = 1;
}

void EndCleanly(int signal) {
    krocore::TemporaryFile::RemoveAll();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

} // namespace

Interruption::Interruption() {
    sHasHappened = 0;
    for (std::size_t i = 0; i < EndingSignals().size(); ++i) {
        fOldHandlers[i] = std::signal(EndingSignals()[i], Remember);
        if (fOldHandlers[i] == SIG_IGN) std::signal(EndingSignals()[i], SIG_IGN);
    }
}

Interruption::~Interruption() {
    for (std::size_t i = 0; i < EndingSignals().size(); ++i)
        std::signal(EndingSignals()[i], fOldHandlers[i]);
}

bool Interruption::HasHappened() const noexcept {
    return sHasHappened != 0;
}

void RemoveUnfinishedFilesAtTheEnd() noexcept {
    for (const int signal : EndingSignals()) {
        const auto old = std::signal(signal, EndCleanly);
        if (old != SIG_DFL) std::signal(signal, old);
    }
}

} // namespace workbench
