#pragma once

#include "host/Sound.h"

#include <vector>

namespace workbench {

// The lowest and highest samples of short stretches of a sound, over all channels, so that any zoom can be drawn at
// once. Made once for a sound.
class WaveformPeaks {
public:
    struct Range {
        float low = 0;
        float high = 0;
    };

    WaveformPeaks() = default; // of no sound
    explicit WaveformPeaks(const qohost::Sound& sound);

    // Of the frames from `begin` up to `end`, widened to whole stretches. Nothing beyond the end of the sound.
    Range Between(double begin, double end) const;

private:
    static constexpr std::size_t kStretch = 128; // frames

    std::vector<Range> fRanges;
};

} // namespace workbench
