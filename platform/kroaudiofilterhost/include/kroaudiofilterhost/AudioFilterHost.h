#pragma once

#include <cstdint>

namespace kroaudiofilterhost {

// How the host writes times.
struct AudioFilterTimeFormat {
    std::int32_t format = 0; // the host's number of the format
    double currentFps = 0;   // frames per second in use
    double customFps = 0;    // frames per second that the user has defined
};

// The host's musical time.
struct AudioFilterTempo {
    std::int32_t ticksPerQuarter = 480;
    double beatsPerMinute = 120;
    std::int32_t beatsPerBar = 4;
    std::int32_t noteLength = 4; // the note that is a beat: 4 = quarter
    double beatOffsetMs = 0;     // time of the first beat, in milliseconds
};

// What a filter and its panel can ask of the program that runs them. Owned by the program and alive as long as any
// filter knows it. User-interface thread.
class AudioFilterHost {
public:
    virtual ~AudioFilterHost();

    virtual AudioFilterTimeFormat GetTimeFormat() const = 0;
    virtual AudioFilterTempo GetTempo() const = 0;

protected:
    AudioFilterHost() = default;
    AudioFilterHost(const AudioFilterHost&) = default;
    AudioFilterHost& operator=(const AudioFilterHost&) = default;
};

} // namespace kroaudiofilterhost
