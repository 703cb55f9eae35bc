#pragma once

namespace workbench {

// While it lives, Ctrl-C and a request to terminate do not end the program but are remembered, so that the work at hand
// can be left cleanly. One at a time.
class Interruption {
public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    bool HasHappened() const noexcept;

private:
    using Handler = void (*)(int);

    Handler fOldInterrupt;
    Handler fOldTerminate;
};

} // namespace workbench
