#pragma once

#include "krocore/String.h"

namespace qocore::utility {

// The octave of GetNoteString that stands for "none".
inline constexpr int kNoOctave = -1;

// Writes the name of a note into `text`, replacing what was there. `note` counts semitones up from C: 0 is C, 1 is C#,
// 11 is B; other numbers are taken modulo 12. `octave` is written behind the name ("A4", by which A4 is the usual
// tuning note), unless it is kNoOctave. `useFlats` names the black keys after the note above ("Db") rather than after
// the one below ("C#").
void GetNoteString(krocore::string16& text, int note, int octave, bool useFlats);

} // namespace qocore::utility
