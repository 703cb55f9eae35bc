#pragma once

#include "orrin/any_regular.h"
#include "uit/TimecodeFormat.h"

namespace uit::lio {

// A host's time format as a cell holds it: { format, sample_rate, current_fps, custom_fps, beatinfo_ticks_per_quarter,
// beatinfo_beats_per_minute, beatinfo_beats_per_bar, beatinfo_note_len, beatinfo_beat_offset_ms }. What is missing is
// as usual, and so is everything before the host has said anything (an empty value). `isDuration` is kept.
TimecodeSettings TimecodeSettingsOf(const orrin::any_regular_t& value, bool isDuration);

} // namespace uit::lio
