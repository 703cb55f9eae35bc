#pragma once

#include "host/Sound.h"
#include "kroaudiofilterhost/AudioFilter.h"

#include <boost/function.hpp>

#include <cstddef>
#include <optional>

namespace qohost {

struct RenderOptions {
    std::size_t blockFrames = 4096;
    bool keepTail = true;           // the output is longer than the input by what the effect goes on sounding
    double maximumTailSeconds = 60; // for effects that never end
    // Called after each block with the part done, 0...1; false cancels. Empty: nobody asks.
    boost::function<bool(double)> progress;
};

// Runs a whole sound through a filter, which is prepared for it, and takes the filter's latency out again. Nothing when
// it was cancelled. The filter must not be run by anybody else meanwhile; it is left prepared, and suspended as it was.
// Throws krocore::config::Error when the filter can't work on the sound.
std::optional<Sound> RenderOffline(kroaudiofilterhost::AudioFilter& filter, const Sound& input,
                                   const RenderOptions& options = {});

} // namespace qohost
