#include "workbench/commands/EndingSignals.h"

#include <csignal>

namespace workbench {

std::span<const int> EndingSignals() noexcept {
    static constexpr int kSignals[] = {SIGINT, SIGTERM};
    return kSignals;
}

} // namespace workbench
