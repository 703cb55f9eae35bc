#include "kroui/controls/UI_HotTextNumber.h"

#include "ControlsFixture.h"
#include "kroui/controls/UI_StaticText.h"

#include "kroui/limner/RecordingLimner.h"

#include <algorithm>
#include <limits>

namespace kroui::controls {
namespace {

using testing::Contains;
using testing::StartsWith;
using ui::kCommand;
using ui::Key;
using ui::kNoModifier;
using ui::kShift;

// A gain of -100...100 dB with one place: 200 increments of 1, that is 400 pixels from end to end.
class HotTextNumberTest : public test::ControlsTest {
protected:
    HotTextNumberTest() {
        number->SetMinMaxValue(-100, 100, 0);
        number->SetIncrement(1);
        number->SetDecimalPlaces(1);
        number->SetValue(-12.5);
        number->SetTextLabel(u"dB");
        Listen(*number);
        fWindow.Paint();
    }
    void TypeOver(std::u16string_view text) {
        fWindow.DoubleClick(Middle(*number));
        ASSERT_NE(number->EntryField(), nullptr);
        fWindow.Type(text);
    }

    boost::intrusive_ptr<UI_HotTextNumber> number = Add<UI_HotTextNumber>({100, 100, 100, 24});
};

TEST_F(HotTextNumberTest, DragCountsRightAndUpTogether) {
    const Point from = Middle(*number);
    fWindow.Press(from);
    fWindow.MoveTo({from.x + 10, from.y});
    EXPECT_DOUBLE_EQ(number->GetValue(), -7.5);
    fWindow.MoveTo({from.x + 10, from.y - 20});
    EXPECT_DOUBLE_EQ(number->GetValue(), 2.5);
    fWindow.Release();
    EXPECT_EQ(Heard(), "0112c");
}

TEST_F(HotTextNumberTest, ClickWithATrembleChangesNothing) {
    const Point from = Middle(*number);
    fWindow.Drag(from, {from.x + 2, from.y + 1}, 2);
    EXPECT_EQ(Heard(), "");
    EXPECT_TRUE(number->UI_HasFocus());
}

TEST_F(HotTextNumberTest, DragModifiersChangeThePace) {
    const Point from = Middle(*number);
    fWindow.Press(from);
    fWindow.MoveTo({from.x + 20, from.y}, kCommand);
    EXPECT_NEAR(number->GetValue(), -11.5, 1e-9);
    fWindow.MoveTo({from.x + 30, from.y}, kShift);
    EXPECT_NEAR(number->GetValue(), 38.5, 1e-9);
    fWindow.PressKey(Key::kEscape);
    EXPECT_DOUBLE_EQ(number->GetValue(), -12.5);
    fWindow.Release();
    EXPECT_EQ(Heard(), "0113");
}

TEST_F(HotTextNumberTest, CtrlClickResets) {
    fWindow.Click(Middle(*number), kCommand);
    EXPECT_EQ(number->GetValue(), 0);
    EXPECT_EQ(Heard(), "012c");
}

TEST_F(HotTextNumberTest, WheelClosesAsOneGestureHalfASecondAfterTheLastNotch) {
    fWindow.Wheel(Middle(*number), 1);
    fWindow.Advance(0.4);
    fWindow.Wheel(Middle(*number), 1, kShift);
    fWindow.Advance(0.4);
    EXPECT_EQ(Heard(), "011");
    fWindow.Advance(0.2);
    EXPECT_EQ(Heard(), "2c");
    EXPECT_DOUBLE_EQ(number->GetValue(), -1.5);
}

TEST_F(HotTextNumberTest, FocusGoingAwayClosesTheRun) {
    fWindow.Click(Middle(*number));
    fWindow.PressKey(Key::kUp);
    fWindow.Click({10, 10});
    EXPECT_EQ(Heard(), "012c");
}

TEST_F(HotTextNumberTest, TypingUnderstandsWhatPeopleWrite) {
    const struct {
        const char16_t* typed;
        double value;
        const char* heard;
    } cases[] = {
        {u".5", 0.5, "012c"}, {u"1,5", 1.5, "012c"},    {u"-5 dB", -5, "012c"},  {u"+3db", 3, "012c"},
        {u"8k", 100, "012c"}, {u"-1000", -100, "012c"}, {u"7.25", 7.25, "012c"}, {u"-12.5", -12.5, ""},
    };
    for (const auto& c : cases) {
        number->SetValue(-12.5);
        TypeOver(c.typed);
        EXPECT_TRUE(fWindow.PressKey(Key::kEnter));
        EXPECT_EQ(number->EntryField(), nullptr);
        EXPECT_DOUBLE_EQ(number->GetValue(), c.value);
        EXPECT_EQ(Heard(), c.heard);
        EXPECT_TRUE(number->UI_HasFocus());
    }
}

TEST_F(HotTextNumberTest, TypingNoNumberLeavesTheValueAndSaysSo) {
    TypeOver(u"loud");
    fWindow.Paint();
    EXPECT_TRUE(fWindow.PressKey(Key::kEnter));
    fWindow.Paint();
    const auto reachesBelow = [](const Rect& damage) { return damage.Bottom() > 140; };
    EXPECT_TRUE(std::ranges::any_of(fWindow.LastDamage(), reachesBelow)) << "the message is shown at once";
    UI_TextField* const field = number->EntryField();
    ASSERT_NE(field, nullptr);
    EXPECT_TRUE(field->HasError());
    EXPECT_EQ(field->UI_GetTooltip(), u"\"loud\" is not a number. Escape brings the old value back.");
    fWindow.Type(u"4");
    EXPECT_FALSE(field->HasError());
    fWindow.PressKey(Key::kEscape);
    EXPECT_EQ(number->EntryField(), nullptr);
    EXPECT_DOUBLE_EQ(number->GetValue(), -12.5);
    EXPECT_EQ(Heard(), "");
}

TEST_F(HotTextNumberTest, TypingTabSetsAndMovesOn) {
    const auto next = Add<UI_HotTextNumber>({100, 140, 100, 24});
    TypeOver(u"6");
    fWindow.PressKey(Key::kTab);
    EXPECT_EQ(number->GetValue(), 6);
    EXPECT_TRUE(next->UI_HasFocus());
    fWindow.PressKey(Key::kTab, kShift);
    EXPECT_TRUE(number->UI_HasFocus());
}

TEST_F(HotTextNumberTest, TypingClickElsewhereSetsANumberAndDropsAnythingElse) {
    TypeOver(u"6");
    fWindow.Click({10, 10});
    EXPECT_EQ(number->GetValue(), 6);
    TypeOver(u"x");
    fWindow.Click({10, 10});
    EXPECT_EQ(number->GetValue(), 6);
    EXPECT_EQ(number->EntryField(), nullptr);
}

TEST_F(HotTextNumberTest, TypingFirstDigitOpensTheFieldUnlessForbidden) {
    fWindow.Click(Middle(*number));
    EXPECT_FALSE(fWindow.Type(u"x"));
    EXPECT_TRUE(fWindow.Type(u"42"));
    fWindow.PressKey(Key::kEnter);
    EXPECT_EQ(number->GetValue(), 42);
    number->SetNumericInput(false);
    EXPECT_FALSE(fWindow.Type(u"1"));
    EXPECT_FALSE(fWindow.PressKey(Key::kEnter)) << "the host's";
}

TEST_F(HotTextNumberTest, EnterWithoutAnEditKeepsTheExactValue) {
    number->SetValue(3.14159);
    fWindow.Click(Middle(*number));
    fWindow.PressKey(Key::kEnter);
    EXPECT_EQ(number->EntryField()->GetText(), u"3.1");
    fWindow.PressKey(Key::kEnter);
    EXPECT_DOUBLE_EQ(number->GetValue(), 3.14159);
}

TEST_F(HotTextNumberTest, LogarithmicScaleDragsThroughEqualRatios) {
    number->SetMinMaxValue(20, 20000, 1000);
    number->SetScale(1);
    number->SetValue(20);
    const Point from = Middle(*number);
    fWindow.Drag(from, {from.x + 200, from.y}); // a third of 600 pixels, a third of three decades
    EXPECT_NEAR(number->GetValue(), 200, 0.1);
}

TEST_F(HotTextNumberTest, SetValueHoldsRefusesAndRepaintsOnlyChanges) {
    number->SetValue(500);
    EXPECT_EQ(number->GetValue(), 100);
    number->SetValue(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(number->GetValue(), 100);
    fWindow.Paint();
    number->SetValue(100);
    EXPECT_FALSE(fWindow.Window().NeedsPaint());
    number->SetMaxValue(std::numeric_limits<double>::infinity());
    number->SetMaxValue(50);
    EXPECT_EQ(number->GetValue(), 50);
    number->SetMinValue(80); // bounds the wrong way round count as exchanged
    EXPECT_EQ(number->GetValue(), 50);
    EXPECT_EQ(Heard(), "") << "setters send nothing";
}

TEST_F(HotTextNumberTest, DisabledTakesNothingAndClosesItsEntry) {
    TypeOver(u"6");
    number->SetEnabled(false);
    EXPECT_EQ(number->EntryField(), nullptr);
    const double value = number->GetValue();
    fWindow.Drag(Middle(*number), {300, 112});
    fWindow.Wheel(Middle(*number), 3);
    fWindow.DoubleClick(Middle(*number));
    EXPECT_EQ(number->GetValue(), value);
}

TEST_F(HotTextNumberTest, DrawingShowsNumberAndUnitByTheirRoles) {
    limner::RecordingLimner limner;
    number->SetFormatFlags(krocore::kFormatAlwaysSign);
    number->SetValue(3);
    number->UI_Draw(&limner);
    EXPECT_THAT(limner.Operations(), Contains(StartsWith("Text \"+3.0\" 12 #4DA3FF")));
    EXPECT_THAT(limner.Operations(), Contains(StartsWith("Text \"dB\" 12 #9CA0A8")));
    limner.Clear();
    number->SetEnabled(false);
    number->UI_Draw(&limner);
    EXPECT_THAT(limner.Operations(), Contains(StartsWith("Text \"+3.0\" 12 #6C7078")));
}

TEST_F(HotTextNumberTest, AccessibleTellsTheNumberWithItsUnit) {
    number->SetName(u"Gain");
    const ui::AccessibleInfo info = number->UI_GetAccessibleInfo();
    EXPECT_EQ(info.role, ui::Role::kNumber);
    EXPECT_EQ(info.name, u"Gain");
    EXPECT_EQ(info.value, u"-12.5 dB");

    // Without a name it is called by the label in its row, which need not be its neighbour in the tree.
    number->SetName({});
    number->UI_SetTooltip(u"How loud");
    EXPECT_EQ(number->UI_GetAccessibleInfo().name, u"How loud");
    const auto column = Add<ui::UI_SubView>({0, 80, 90, 100});
    Add<UI_StaticText>({10, 0, 60, 24}, column.get())->SetText(u"Above:");
    Add<UI_StaticText>({10, 20, 60, 24}, column.get())->SetText(u"Left:");
    EXPECT_EQ(number->UI_GetAccessibleInfo().name, u"Left:");
    const auto next = Add<UI_HotTextNumber>({210, 100, 60, 24});
    EXPECT_EQ(next->UI_GetAccessibleInfo().name, u"") << "the label is the first number's";
    column->UI_Show(false);
    EXPECT_EQ(number->UI_GetAccessibleInfo().name, u"How loud");
}

} // namespace
} // namespace kroui::controls
