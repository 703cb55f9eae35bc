#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// The bands in which broad noise is described: some 20 Hz wide at the lowest frequencies, a sixth of the frequency
// above. They overlap by half.
class NoiseBands {
public:
    struct Band {
        double hertz = 0; // of the centre
        // Bins of the long and of the short frames, from the first to behind the last.
        std::size_t longBegin = 0;
        std::size_t longEnd = 0;
        std::size_t longStep = 1; // of a wide band not every bin is needed
        std::size_t shortBegin = 0;
        std::size_t shortEnd = 0;

        std::size_t LongCount() const noexcept { return (longEnd - longBegin + longStep - 1) / longStep; }
    };

    static constexpr std::size_t kShortFramesPerLong = 16;

    // Allocates.
    void Prepare(double sampleRate);

    // Samples of a long frame: about 0.37 s.
    std::size_t Frame() const noexcept { return fFrame; }
    std::size_t ShortFrame() const noexcept { return fFrame / kShortFramesPerLong; }
    std::span<const Band> All() const noexcept { return fBands; }

private:
    std::size_t fFrame = 0;
    std::vector<Band> fBands;
};

} // namespace qoc::dsp
