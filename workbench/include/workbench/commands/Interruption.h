#pragma once

#include <array>

namespace workbench {

// What a signal that asks the program to end does (see EndingSignals), unless the program's caller has it ignored.

// While it lives, such a signal does not end the program but is remembered, so that the work at hand can be left
// cleanly. One at a time.
class Interruption {
public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    bool HasHappened() const noexcept;

private:
    using Handler = void (*)(int);

    std::array<Handler, 3> fOldHandlers{};
};

// From now on, such a signal removes unfinished files before it ends the program. Where somebody else handles one
// already, it is left to them.
void RemoveUnfinishedFilesAtTheEnd() noexcept;

} // namespace workbench
