#pragma once

#include <cstddef>

namespace qohost {

// A part of a sound, in samples. An end that is not above the begin means the whole sound.
struct PlaybackRange {
    std::size_t begin = 0;
    std::size_t end = 0;
};

} // namespace qohost
