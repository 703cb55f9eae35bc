#include "kroui/controls/UI_TextField.h"

#include "ControlsFixture.h"

namespace kroui::controls {
namespace {

using ui::kCommand;
using ui::Key;
using ui::kShift;

class TextFieldTest : public test::ControlsTest {
protected:
    TextFieldTest() {
        field->SetText(u"low pass");
        Listen(*field);
        fWindow.Paint();
    }
    void Shortcut(char16_t character) { fWindow.PressKey(Key::kCharacter, kCommand, character); }
    std::string Text() const { return krocore::ToStdString(field->GetText()); }

    boost::intrusive_ptr<UI_TextField> field = Add<UI_TextField>({10, 10, 120, 24});
};

TEST_F(TextFieldTest, TypingAndEnterIsOneGestureWithACommittedChange) {
    fWindow.Click({125, 22});
    fWindow.Type(u" 2");
    EXPECT_EQ(Text(), "low pass 2");
    EXPECT_TRUE(fWindow.PressKey(Key::kEnter));
    EXPECT_EQ(Heard(), "0112c");
}

TEST_F(TextFieldTest, EscapeBringsTheTextBack) {
    fWindow.Click({125, 22});
    fWindow.PressKey(Key::kBackspace, kCommand);
    EXPECT_EQ(Text(), "low ");
    EXPECT_TRUE(fWindow.PressKey(Key::kEscape));
    EXPECT_EQ(Text(), "low pass");
    EXPECT_EQ(Heard(), "013");
    EXPECT_FALSE(fWindow.PressKey(Key::kEscape)) << "nothing to bring back: the host's";
}

TEST_F(TextFieldTest, ClipboardCopiesCutsAndPastes) {
    fWindow.Click({125, 22});
    Shortcut(u'a');
    Shortcut(u'c');
    EXPECT_EQ(fWindow.Clipboard(), u"low pass");
    fWindow.Clipboard() = u"one\ntwo";
    Shortcut(u'v');
    EXPECT_EQ(Text(), "one two");
    fWindow.PressKey(Key::kLeft, kShift | kCommand);
    Shortcut(u'x');
    EXPECT_EQ(fWindow.Clipboard(), u"two");
    EXPECT_EQ(Text(), "one ");
    Shortcut(u'z');
    EXPECT_EQ(Text(), "one two");
}

TEST_F(TextFieldTest, MouseClickPlacesDragSelectsDoubleClickTakesTheWord) {
    std::vector<float> carets;
    fSupplier.CaretPositions(u"low pass", {}, carets);
    const auto at = [&](int position) { return Point{16 + carets[static_cast<std::size_t>(position)], 22}; };
    fWindow.Drag(at(1), at(6));
    EXPECT_EQ(field->SelectedText(), u"ow pa");
    fWindow.Click(at(3), kShift);
    EXPECT_EQ(field->SelectedText(), u"ow");
    fWindow.DoubleClick(at(6));
    EXPECT_EQ(field->SelectedText(), u"pass");
}

TEST_F(TextFieldTest, FocusGoingAwayCommits) {
    fWindow.Click({125, 22});
    fWindow.Type(u"!");
    fWindow.Click({300, 200});
    EXPECT_EQ(Heard(), "012c");
    EXPECT_FALSE(field->UI_HasFocus());
}

TEST_F(TextFieldTest, CaretBlinksAndRepaintsOnlyItself) {
    fWindow.Click({125, 22});
    fWindow.Advance(0.1);
    fWindow.Advance(0.45);
    ASSERT_EQ(fWindow.LastDamage().size(), 1U);
    EXPECT_LE(fWindow.LastDamage()[0].width, 4);
}

TEST_F(TextFieldTest, LongTextScrollsToTheCaret) {
    field->SetText(u"a text that is far longer than its field");
    fWindow.Click({60, 22});
    fWindow.PressKey(Key::kEnd);
    fWindow.Press({125, 22});
    EXPECT_EQ(field->SelectionStart(), field->GetText().size()) << "the end is in sight";
    fWindow.Release();
    fWindow.PressKey(Key::kHome);
    fWindow.Click({17, 22});
    EXPECT_EQ(field->SelectionStart(), 0U);
}

TEST_F(TextFieldTest, KeysOfTheHostPass) {
    fWindow.Click({125, 22});
    EXPECT_FALSE(fWindow.PressKey(Key::kCharacter, kCommand, u's'));
    EXPECT_TRUE(fWindow.PressKey(Key::kSpace)) << "typed, not the host's";
    field->SetEnabled(false);
    EXPECT_FALSE(fWindow.Type(u"x"));
    EXPECT_EQ(Text(), "low pass");
}

} // namespace
} // namespace kroui::controls
