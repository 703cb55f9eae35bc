#pragma once

namespace bench {

// Registers how evenly the effects work, in blocks of 64 frames in stereo: the slowest block against the median and
// against the time that a block lasts.
//
//   NAME/blocks            all effects of the catalogue at their defaults, on the host's test signal at 48 kHz
//   NAME/every_sound/RATE  those that work in frames or splice, on every kind of sound; the label names the kinds of
//   the
//                          slowest block against its time and against the median, the counters tell the former by kind
//
// Of each block the quickest of all rounds counts, so that what else the machine does is left out.
void RegisterEvenLoad();

} // namespace bench
