#include "krocore/utility/NoteString.h"

#include <string>

namespace qocore::utility {

namespace {

constexpr int kNotesPerOctave = 12;

constexpr std::string_view kSharpNames[kNotesPerOctave] = {"C",  "C#", "D",  "D#", "E",  "F",
                                                           "F#", "G",  "G#", "A",  "A#", "B"};
constexpr std::string_view kFlatNames[kNotesPerOctave] = {"C",  "Db", "D",  "Eb", "E",  "F",
                                                          "Gb", "G",  "Ab", "A",  "Bb", "B"};

} // namespace

void GetNoteString(krocore::string16& text, int note, int octave, bool useFlats) {
    const int index = (note % kNotesPerOctave + kNotesPerOctave) % kNotesPerOctave;
    text = krocore::FromASCII((useFlats ? kFlatNames : kSharpNames)[index]);
    if (octave != kNoOctave) text += krocore::FromASCII(std::to_string(octave));
}

} // namespace qocore::utility
