#pragma once

#include "kroaudiofilterhost/AudioFilter.h"

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <vector>

namespace qohost {

// Parameters of one filter over time. A text of lines, or of JSON:
//
//   0, gain, -6 dB                        time in seconds, parameter, value
//   2.5, gain, 0 dB, line                 in a straight line from the point before
//
//   [{"time": 0, "parameter": "gain", "value": "-6 dB"}, {"time": 2.5, "parameter": "gain", "value": 0, "shape":
//   "line"}]
//
// Parameters and values are written as for ParseParameterText, and may stand for several; those that are linked at the
// beginning go together. From its time on a parameter
// has the value, until the next point; on the way to a point with the shape "line" it moves there along its scale, in
// steps of kStepFrames, so that a fader's dB and a frequency's octaves pass evenly. What can't be automated is refused.
// Empty lines, lines that begin with "#" and a first line without a number don't count.
class Automation {
public:
    static constexpr std::uint64_t kStepFrames = 32;

    Automation() = default;

    // For sound at the filter's rate, `origin` seconds of which have gone before. The filter has been prepared and has
    // the settings to begin with. Throws krocore::config::Error that tells the line, or the point's number, and what is
    // wrong.
    Automation(const kroaudiofilterhost::AudioFilter& filter, std::string_view text, double origin = 0);

    // The first frame from `frame` on at which a parameter has another value than before; the largest number for none.
    std::uint64_t NextChange(std::uint64_t frame) const;
    // Gives the filter the values that hold at a frame. Frames ascend. Allocates nothing.
    void Apply(kroaudiofilterhost::AudioFilter& filter, std::uint64_t frame);

private:
    struct Point {
        std::int64_t frame = 0; // below 0: before what is processed
        float value = 0;        // normalised
        bool isLine = false;
    };
    struct Track {
        int index = 0;
        std::vector<Point> points; // by time; the first is where the parameter begins
        std::size_t passed = 0;    // the last point that has been reached
    };

    std::vector<Track> fTracks;
};

// The same from a file or stream. Throws krocore::config::Error that names it.
Automation ReadAutomation(const kroaudiofilterhost::AudioFilter& filter, const std::filesystem::path& file,
                          double origin = 0);

} // namespace qohost
