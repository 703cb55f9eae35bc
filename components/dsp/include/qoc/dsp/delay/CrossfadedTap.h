#pragma once

#include "qoc/dsp/delay/DelayLine.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace qoc::dsp {

// A place of whole samples at which lines are read. A change of it is a crossfade from the old place to the new one, so
// that the pitch stays; it takes 30 ms, and one that comes in the middle waits until the last one is over. Places are
// delays in samples. Counts samples, never blocks. Owned by an effect; real time safe.
class CrossfadedTap {
public:
    // Where to read for one sample.
    struct Place {
        float In(const DelayLine& line) const noexcept {
            const float sample = line.At(delay);
            return share == 1 ? sample : share * sample + (1 - share) * line.At(nextDelay);
        }

        std::size_t delay;
        std::size_t nextDelay;
        float share; // of the first
    };

    // `sampleRate` in hertz.
    void Prepare(double sampleRate) noexcept;
    // To be there now.
    void Settle(std::size_t delay) noexcept;
    void SetTarget(std::size_t delay) noexcept { fTarget = delay; }
    void Set(std::size_t delay, bool settle) noexcept { settle ? Settle(delay) : SetTarget(delay); }

    // For the next sample: of any number of lines, or of one.
    Place Next() noexcept { return IsSettled() ? Place{fDelay, fDelay, 1} : NextFading(); }
    float Next(const DelayLine& line) noexcept { return Next().In(line); }
    // For the next samples, of one line. Delays are told for the first of them from the sample that was written `age`
    // samples before the last, and for the others each from the next one.
    void Read(const DelayLine& line, std::size_t age, std::span<float> output) noexcept;

    bool IsSettled() const noexcept { return fRemaining == 0 && fDelay == fTarget; }
    // No delay is below that until there is another target.
    std::size_t LeastAhead() const noexcept { return std::min({fDelay, fNextDelay, fTarget}); }

private:
    Place NextFading() noexcept;

    std::size_t fDelay = 0;
    std::size_t fNextDelay = 0; // that is being faded to
    std::size_t fTarget = 0;
    std::size_t fLength = 1;
    std::size_t fRemaining = 0;
};

} // namespace qoc::dsp
