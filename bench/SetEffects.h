#pragma once

#include "kroaudiofilterhost/AudioFilter.h"

#include <boost/smart_ptr/intrusive_ptr.hpp>

// Effects that have something to do: many let the sound through at their defaults.
namespace bench {

using Filter = boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>;

// A curve of all 128 points, up and down.
Filter DrawnFFTFilter();
Filter DrawnPhaseShifter();
// Every second band up, the others down.
Filter SetGraphicEQ();
// All bands, the passes at their steepest.
Filter SetParametricEQ();
// Told that the sound has been clipped at that level.
Filter IntraClipAt(float decibels);
// At high precision.
Filter PitchShiftBy(float ratio);

} // namespace bench
