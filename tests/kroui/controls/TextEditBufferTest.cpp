#include "kroui/controls/TextEditBuffer.h"

#include <gtest/gtest.h>

#include <functional>

namespace kroui::controls {
namespace {

// The text with "[" and "]" around the selection, or "|" at the caret.
std::u16string Picture(const TextEditBuffer& buffer) {
    std::u16string text(buffer.Text().begin(), buffer.Text().end());
    if (!buffer.HasSelection()) return text.insert(buffer.Caret(), u"|");
    return text.insert(buffer.SelectionEnd(), u"]").insert(buffer.SelectionStart(), u"[");
}

struct Case {
    const char* name;
    const char16_t* text;
    std::function<void(TextEditBuffer&)> act;
    const char16_t* picture;
};

using Buffer = TextEditBuffer;

const Case kCases[] = {
    {"home extends", u"gain", [](Buffer& b) { b.MoveHome(true); }, u"[gain]"},
    {"back collapses to the start", u"gain", [](Buffer& b) { b.SelectAll(), b.MoveBack(false); }, u"|gain"},
    {"forward collapses to the end", u"gain", [](Buffer& b) { b.SelectAll(), b.MoveForward(false); }, u"gain|"},
    {"word back", u"-12.5 dB", [](Buffer& b) { b.MoveWordBack(false); }, u"-12.5 |dB"},
    {"word forward takes the space along", u"low pass", [](Buffer& b) { b.MoveHome(false), b.MoveWordForward(false); },
     u"low |pass"},
    {"double-click selects the word", u"low pass", [](Buffer& b) { b.SelectWordAt(6); }, u"low [pass]"},
    {"double-click behind the end", u"low", [](Buffer& b) { b.SelectWordAt(3); }, u"[low]"},
    {"typing replaces the selection", u"440", [](Buffer& b) { b.SelectAll(), b.Insert(u"8k"); }, u"8k|"},
    {"backspace takes a surrogate pair", u"a\U0001D11E", [](Buffer& b) { b.DeleteBack(); }, u"a|"},
    {"delete takes a surrogate pair", u"\U0001D11Eb", [](Buffer& b) { b.MoveHome(false), b.DeleteForward(); }, u"|b"},
    {"moves pass over a pair", u"\U0001D11Eb", [](Buffer& b) { b.MoveHome(false), b.MoveForward(false); },
     u"\U0001D11E|b"},
    {"no caret inside a pair", u"\U0001D11E", [](Buffer& b) { b.MoveTo(1, false); }, u"|\U0001D11E"},
    {"backspace takes the marks of a letter", u"xe\u0301", [](Buffer& b) { b.DeleteBack(); }, u"x|"},
    {"delete word back", u"one two", [](Buffer& b) { b.DeleteWordBack(); }, u"one |"},
    {"delete word forward", u"one two", [](Buffer& b) { b.MoveHome(false), b.DeleteWordForward(); }, u"|two"},
    {"line ends become spaces", u"", [](Buffer& b) { b.Insert(u"a\r\nb\tc"); }, u"a b c|"},
    {"control characters and lone surrogates are dropped", u"",
     [](Buffer& b) {
         b.Insert(std::u16string{u'a', 7, 0xD800, u'b', 0xDC00});
     },
     u"ab|"},
    {"long insertions are cut before a pair", u"abc", [](Buffer& b) { b.SetMaxLength(5), b.Insert(u"d\U0001D11E"); },
     u"abcd|"},
    {"undo takes back a run of letters", u"x",
     [](Buffer& b) { b.Insert(u"a"), b.Insert(u"b"), b.DeleteBack(), b.Undo(), b.Undo(); }, u"x|"},
    {"typing at two places is two steps", u"xy",
     [](Buffer& b) { b.Insert(u"a"), b.MoveHome(false), b.Insert(u"b"), b.Undo(); }, u"|xya"},
    {"a move back and forth parts typing", u"x",
     [](Buffer& b) { b.Insert(u"a"), b.MoveBack(false), b.MoveForward(false), b.Insert(u"b"), b.Undo(); }, u"xa|"},
    {"moves by words part typing", u"x ",
     [](Buffer& b) { b.Insert(u"a"), b.MoveWordBack(false), b.Insert(u"b"), b.Undo(); }, u"x |a"},
    {"deleting at two places is two steps", u"one two",
     [](Buffer& b) { b.DeleteBack(), b.MoveTo(3, false), b.DeleteBack(), b.Undo(); }, u"one| tw"},
    {"selecting parts typing", u"x",
     [](Buffer& b) { b.Insert(u"a"), b.SelectAll(), b.MoveEnd(false), b.Insert(u"b"), b.Undo(); }, u"xa|"},
    {"a double-click parts typing", u"x",
     [](Buffer& b) { b.Insert(u"a"), b.SelectWordAt(0), b.MoveForward(false), b.Insert(u"b"), b.Undo(); }, u"xa|"},
    {"typing after undo is a step of its own", u"x",
     [](Buffer& b) { b.Insert(u"a"), b.DeleteBack(), b.Undo(), b.Insert(u"b"), b.Undo(); }, u"xa|"},
    {"typing after redo is a step of its own", u"x",
     [](Buffer& b) { b.Insert(u"a"), b.Undo(), b.Redo(), b.Insert(u"b"), b.Undo(); }, u"xa|"},
    {"pastes are a step each", u"x", [](Buffer& b) { b.Insert(u"abc"), b.Insert(u"def"), b.Undo(); }, u"xabc|"},
    {"typing over a selection is a step of its own", u"x",
     [](Buffer& b) { b.Insert(u"a"), b.Insert(u"b"), b.MoveTo(1, true), b.Insert(u"c"), b.Insert(u"d"), b.Undo(); },
     u"xc|"},
    {"new text forgets the steps and their kind", u"x",
     [](Buffer& b) { b.Insert(u"a"), b.SetText(u"y"), b.Insert(u"b"), b.Undo(), b.Undo(); }, u"y|"},
    {"redo after undo", u"x", [](Buffer& b) { b.Insert(u"a"), b.Undo(), b.Redo(); }, u"xa|"},
    {"an edit ends redo", u"x", [](Buffer& b) { b.Insert(u"a"), b.Undo(), b.Insert(u"b"), b.Redo(); }, u"xb|"},
};

TEST(TextEditBuffer, EditsAndMovesAsAUserExpects) {
    for (const Case& c : kCases) {
        TextEditBuffer buffer;
        buffer.SetText(c.text);
        c.act(buffer);
        EXPECT_EQ(Picture(buffer), c.picture) << c.name;
    }
}

TEST(TextEditBuffer, OperationsTellWhetherTheTextChanged) {
    TextEditBuffer buffer;
    EXPECT_FALSE(buffer.DeleteBack());
    EXPECT_FALSE(buffer.DeleteForward());
    EXPECT_FALSE(buffer.Undo());
    EXPECT_FALSE(buffer.Insert(u"\x01"));
    EXPECT_TRUE(buffer.Insert(u"1"));
    EXPECT_TRUE(buffer.DeleteBack());
    EXPECT_TRUE(buffer.Undo());
}

} // namespace
} // namespace kroui::controls
