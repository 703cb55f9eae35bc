#pragma once

#include "krocore/String.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace uit {

// How a host writes times: the number of the format and what it needs to know. Frame rates are frames a second; those
// of NTSC may be given as 23.976, 29.97, 59.94 or exactly (24000/1001...).
struct TimecodeSettings {
    enum Format : std::int32_t {
        kDecimal = 0,           // m:ss.ddd, with hours h:mm:ss.ddd
        kFilmFrames = 1,        // hh:mm:ss:ff at 24 frames a second
        kPALFrames = 2,         // ... at 25
        kNTSCDropFrames = 3,    // hh:mm:ss;ff at 29.97: two numbers are left out each minute but every tenth
        kNTSCNonDropFrames = 4, // hh:mm:ss:ff at 29.97: all are counted, so that the clock runs late
        kThirtyFrames = 5,      // ... at 30
        kCurrentFrames = 6,     // ... at `currentFps`
        kCustomFrames = 7,      // ... at `customFps`
        kSamples = 8,           // a number of samples
        kBarsAndBeats = 9,      // bar:beat.tick
    };

    std::int32_t format = kDecimal; // an unknown one counts as kDecimal
    double sampleRate = 44100;
    double currentFps = 30;
    double customFps = 30;
    // The beat is the note 1/noteLength; `beatsPerMinute` counts such beats. The first beat of bar 1 is at the offset.
    double beatsPerMinute = 120;
    double beatOffsetMs = 0;
    std::int32_t ticksPerQuarter = 480;
    std::int32_t beatsPerBar = 4;
    std::int32_t noteLength = 4;
    // A length rather than a place: bars and beats count from 0 instead of 1, and the offset counts for nothing.
    bool isDuration = false;

    friend bool operator==(const TimecodeSettings&, const TimecodeSettings&) = default;
};

// Writes seconds as a host does and reads them back. What is written is the nearest unit (millisecond, frame, sample,
// tick); reading what was written gives that unit's time. Drop-frame counting after SMPTE ST 12-1. Knows no screen and
// no locale. Rates and tempi that make no sense (0, negative, NaN, huge)
// count as 44100 Hz, 30 frames, 120 beats, 4/4, 480
// ticks.
class TimecodeFormat {
public:
    TimecodeFormat() : TimecodeFormat(TimecodeSettings{}) {}
    explicit TimecodeFormat(const TimecodeSettings& settings);

    const TimecodeSettings& Settings() const { return fSettings; }

    // The text of a time in seconds. A negative one has a minus in front; bars before the first are 0, -1 and so on.
    // NaN is an em dash; times beyond kMostSeconds count as that.
    krocore::string16 Format(double seconds) const;

    // Reads a text of the format. Fields may be left out: at the front of times and frames ("90" is 90 seconds or 90
    // frames, "1:05" 65 seconds or 1 second and 5 frames), at the end of bars ("5" is the beginning of bar 5). Between
    // fields stand ":", ";" or "."; a point or comma is the decimal point of seconds. Only the first field may be
    // greater than its place allows. A drop-frame number that is left out by the count is the next one. Nothing if it
    // is no time.
    std::optional<double> Parse(std::u16string_view text) const;

    // The length of one unit, in seconds: what an edit goes up or down by. A tenth of a second in the decimal format.
    double Increment() const;
    // The unit that times are rounded to, in seconds.
    double Resolution() const;

    static constexpr double kMostSeconds = 1e8; // three years

private:
    bool IsFrames() const;
    bool IsDropFrame() const { return fSettings.format == TimecodeSettings::kNTSCDropFrames; }
    double FramesPerSecond() const;
    std::int64_t FramesOnClock() const; // a clock second's frames: the rate, rounded up to a whole number
    double TicksPerSecond() const;
    std::int64_t TicksPerBeat() const;

    krocore::string16 FormatDecimal(std::int64_t milliseconds) const;
    krocore::string16 FormatFrames(std::int64_t frames) const;
    krocore::string16 FormatBars(std::int64_t ticks) const;
    std::optional<double> ParseDecimal(std::u16string_view text) const;
    std::optional<double> ParseFrames(std::u16string_view text) const;
    std::optional<double> ParseSamples(std::u16string_view text) const;
    std::optional<double> ParseBars(std::u16string_view text, bool isNegative) const;

    TimecodeSettings fSettings;
};

} // namespace uit
