#pragma once

#include "host/Sound.h"

namespace qohost {

// A sound to try effects on when there is no file: a plucked chord progression over a bass, with a soft noise beat,
// left and right different. Peak -6 dBFS; every call gives the same samples. `seconds` is rounded to whole samples,
// `sampleRate` is in hertz. Any thread.
Sound MakeTestSignal(double seconds = 10.0, float sampleRate = 44100.0F);

} // namespace qohost
