#pragma once

#include "qoc/dsp/delay/HistoryBuffer.h"
#include "qoc/dsp/pitch/SpliceSearch.h"
#include "qoc/dsp/pitch/TimeMap.h"

#include <cstddef>
#include <cstdint>

namespace qoc::dsp {

// Makes a sound longer or shorter without changing its pitch, following a TimeMap: tells where in the sound to read
// for the frame that is due. The sound is read in pieces, each at its own pace and in its middle at the frame that the
// map has for it, or a little beside it: a piece begins where the sound goes on like the one before (Verhelst and
// Roelands, "An overlap-add technique based on waveform similarity", 1993), and they overlap for a fade. Lengths are
// in samples of the stretched sound. Owned by the pitch shifter. Everything but Prepare is real time safe.
class WsolaStretcher {
public:
    // Of the ratios of the map.
    static constexpr double kLowestRatio = 0.5;
    static constexpr double kHighestRatio = 2;

    struct Lengths {
        double sequence = 0; // of a piece with both its fades; 0: by the ratio, with a fade of its own
        double overlap = 0;  // of a fade, up to half the sequence
    };

    // `longest`: of the sequences that will be set. Allocates, and resets.
    void Prepare(std::size_t channels, double sampleRate, double longest);
    void Reset() noexcept;
    // Of the pieces that are still to begin.
    void SetLengths(const Lengths& lengths) noexcept { fLengths = lengths; }

    // How far from the frame that is due the sound may be read that is heard at it, in samples.
    static double FarthestOff(const Lengths& lengths, double sampleRate) noexcept;
    // How far ahead of the frame that is due the map and the history have to be, and the history behind it.
    std::size_t Reach() const noexcept { return fReach; }

    // Leaves the sound as it is: from `frame` on, a piece that is due now.
    void Follow(std::int64_t frame, const TimeMap& map) noexcept;
    // Goes to the next frame, `frame`.
    void Advance(std::int64_t frame, const TimeMap& map, const HistoryBuffer& history) noexcept;

    // Where to read at the frame: in its piece and, while that has a share below 1, in the one before, which goes out.
    double Place() const noexcept { return fPosition + fOffset; }
    double FormerPlace() const noexcept { return fPosition + fFormerOffset; }
    float Share() const noexcept { return fShare; }

private:
    Lengths LengthsAt(float ratio) const noexcept;
    void Splice(float ratio, const TimeMap& map, const HistoryBuffer& history) noexcept;

    double fSampleRate = 44100;
    std::size_t fReach = 0;
    SpliceSearch fSearch;
    Lengths fLengths;
    double fPosition = 0;
    double fOffset = 0; // from positions to places in the sound
    double fFormerOffset = 0;
    double fBegin = 0; // positions of the last fade and the next
    double fFade = 1;
    double fEnd = 0;
    float fShare = 1;
};

} // namespace qoc::dsp
