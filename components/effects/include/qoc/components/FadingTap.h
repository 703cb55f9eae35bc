#pragma once

#include "qoc/components/TapLine.h"

#include <cstddef>

namespace qoc::components {

// A place of whole samples at which a line is read. A change of it is a crossfade from the old place to the new one;
// one that comes in the middle waits until the last one is over. Counts samples, never blocks. Owned by an effect.
class FadingTap {
public:
    // `sampleRate` in hertz.
    void Prepare(double sampleRate) noexcept;
    // To be there now.
    void Settle(std::size_t delay) noexcept;
    void SetTarget(std::size_t delay) noexcept { fTarget = delay; }
    bool IsSettled() const noexcept { return fRemaining == 0 && fDelay == fTarget; }

    // The line at this place, for the next sample.
    float Next(const TapLine& line) noexcept;

private:
    std::size_t fDelay = 0;
    std::size_t fNextDelay = 0; // that is being faded to
    std::size_t fTarget = 0;
    std::size_t fLength = 1;
    std::size_t fRemaining = 0;
};

} // namespace qoc::components
