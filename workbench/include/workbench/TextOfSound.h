#pragma once

#include "host/Sound.h"
#include "krocore/String.h"

namespace workbench {

// "1:42.318", "1:02:03.004". Negative times and times that are none count as 0.
krocore::string16 TimeText(double seconds);

// "selection 0:33.100 - 0:56.400".
krocore::string16 RangeText(double begin, double end);

// "48 kHz stereo 1:42.318".
krocore::string16 SoundText(const qohost::Sound& sound);

// "-6.2", the infinity sign with a minus from -100 dB on down.
krocore::string16 LevelText(float decibels);

} // namespace workbench
