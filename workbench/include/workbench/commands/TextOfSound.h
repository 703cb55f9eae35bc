#pragma once

#include "host/SampleFormat.h"
#include "host/SoundSource.h"
#include "krocore/String.h"

#include <optional>
#include <string_view>

namespace workbench {

// "1:42.318", "1:02:03.004". Negative times and times that are none count as 0.
krocore::string16 TimeText(double seconds);

// Seconds that are written as "90", "1:30", "1:30.5" or "1:02:03". Nothing for other texts.
std::optional<double> TimeFromText(std::string_view text);

// "31,250 samples (3.54 %) are clipped, the loudest by 34.00 dB".
krocore::string16 ClippingText(const qohost::Clipping& clipping);

// "selection 0:33.100 - 0:56.400".
krocore::string16 RangeText(double begin, double end);

// "48 kHz stereo 1:42.318".
krocore::string16 SoundText(const qohost::SoundSource& sound);

// "-6.2", the infinity sign with a minus from -100 dB on down.
krocore::string16 LevelText(float decibels);

} // namespace workbench
