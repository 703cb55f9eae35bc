#include "krocore/utility/NoteString.h"

#include <gtest/gtest.h>

namespace {

struct Case {
    int note;
    int octave;
    bool useFlats;
    const char16_t* expected;
};

constexpr Case kCases[] = {
    {0, -1, false, u"C"},  {1, -1, false, u"C#"},    {3, -1, true, u"Eb"}, {6, 2, false, u"F#2"},
    {9, 4, false, u"A4"},  {10, 4, true, u"Bb4"},    {11, -1, true, u"B"}, {12, 0, false, u"C0"},
    {-1, -1, false, u"B"}, {-13, 10, false, u"B10"},
};

TEST(NoteString, NamesNotesUpFromC) {
    for (const Case& each : kCases) {
        krocore::string16 text = u"before";
        qocore::utility::GetNoteString(text, each.note, each.octave, each.useFlats);
        EXPECT_EQ(text, each.expected) << each.note;
    }
}

} // namespace
