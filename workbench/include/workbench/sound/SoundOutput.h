#pragma once

#include "host/PlaybackEngine.h"

#include <string>

namespace workbench {

// Where an engine's sound goes. Owned by the program, outlives the session that uses it. User-interface thread.
class SoundOutput {
public:
    static constexpr std::size_t kChannels = 2;

    virtual ~SoundOutput() = default;

    // From now on asks the engine for sound at `sampleRate` hertz, until Stop or the next Start.
    virtual void Start(qohost::PlaybackEngine& engine, float sampleRate) = 0;
    // When it returns, the engine is not asked any more.
    virtual void Stop() = 0;
    // To be called after the transport was used, and again and again: a device may be opened at the first call only.
    virtual void Poll() = 0;
    // Why nothing is heard, as the user is told; empty if something is.
    virtual krocore::string16 Problem() const = 0;
};

} // namespace workbench
