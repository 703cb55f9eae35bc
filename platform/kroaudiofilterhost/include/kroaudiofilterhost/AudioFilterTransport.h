#pragma once

#include "kroaudiofilterhost/AudioFilterHost.h"

namespace kroaudiofilterhost {

// Where the host is when a block begins.
struct AudioFilterTransport {
    // Of the block's first frame, in samples from the start of the sound.
    double position = 0;
    // Whether sound goes by, so that the next block is further on by this one's frames; otherwise the host stands
    // still and the filter hears what comes in live.
    bool isPlaying = false;
    AudioFilterTempo tempo;
};

} // namespace kroaudiofilterhost
