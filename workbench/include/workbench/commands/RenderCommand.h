#pragma once

#include "host/SoundFile.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace workbench {

struct RenderRequest {
    std::string effect;
    std::string preset;                       // a preset's name or file, applied before the settings; empty for none
    std::vector<std::string> settings;        // "PARAM=VALUE", later ones win
    std::filesystem::path automation;         // a file of points over the sound's time; empty for none
    std::filesystem::path input;              // "-" for the standard input
    std::filesystem::path output;             // may be the input; "-" for the standard output
    qohost::SoundKind kind;                   // where their names don't tell
    double from = 0;                          // seconds
    std::optional<double> to;                 // the end of the sound, without it
    std::optional<double> tailSeconds;        // as long as the effect goes on, without it
    std::optional<qohost::SampleFormat> bits; // near to the input's, without it
    std::optional<double> peakDecibels;       // what the peak is brought to
    bool live = false;                        // as it sounds while it plays
    bool strict = false;                      // clipping is a failure
    bool overwrite = false;                   // replaces a file that is there
};

// Runs a sound file through an effect into another file, block by block: memory does not follow the length, unless the
// peak is to be brought to a level. A render that takes longer shows its progress on a terminal;
// one that clips says so on standard error. Returns an exit code: done; interrupted, or failed for clipping that is
// not wanted, in which cases `output` is as it was. Throws krocore::config::Error.
int Render(const RenderRequest& request);

} // namespace workbench
