#pragma once

#include "host/SoundFile.h"

#include <filesystem>
#include <string>

namespace workbench {

struct OpenRequest {
    std::filesystem::path file;  // empty: the built-in sound; "-" for the standard input
    qohost::SoundKind kind;      // where its name doesn't tell
    std::string effect;          // empty: the first one
    std::string scripts;         // the name of a pair of scripts to open instead of an effect, or empty
    std::filesystem::path watch; // a folder whose files stand in front of the library's, or empty
    std::string theme = "dark";  // or "light"
    float scale = 1;             // the host's factor, on top of the screen's own
    float zoom = 1;
    int trace = 0; // the level up to which traces are written on stderr
};

// Runs the window until the user closes it; returns an exit code. Throws krocore::config::Error when there is no
// screen, and when the file or the effect named can't be opened.
//
// For tests: while the environment variable QO_WORKBENCH_TREE names a file that does not exist, the program writes what
// DescribeTree (TreeText.h) says into it as soon as everything is painted. So a script removes the file, waits until it
// is there again, and reads places and values.
int Open(const OpenRequest& request);

} // namespace workbench
