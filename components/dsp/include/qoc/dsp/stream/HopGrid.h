#pragma once

#include <algorithm>
#include <cstddef>

namespace qoc::dsp {

// Cuts a stream that comes in blocks of any size into hops, which lie on a grid that starts at Reset. Real time safe.
class HopGrid {
public:
    // Samples.
    void SetHop(std::size_t hop) noexcept {
        fHop = hop;
        Reset();
    }
    void Reset() noexcept { fPosition = 0; }

    // For every part of a block within one hop `take(begin, frames, position)`: where it begins in the block, how long
    // it is and where it lies in the hop; after the last part of a hop `finish()`.
    template <class Take, class Finish>
    void Cut(std::size_t blockFrames, const Take& take, const Finish& finish) noexcept {
        for (std::size_t done = 0; done < blockFrames;) {
            const std::size_t frames = std::min(blockFrames - done, fHop - fPosition);
            take(done, frames, fPosition);
            done += frames;
            fPosition += frames;
            if (fPosition == fHop) {
                finish();
                fPosition = 0;
            }
        }
    }

private:
    std::size_t fHop = 1;
    std::size_t fPosition = 0;
};

} // namespace qoc::dsp
