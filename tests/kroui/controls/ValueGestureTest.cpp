#include "kroui/controls/ValueGesture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace kroui::controls {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using ui::kCommand;
using ui::Key;
using ui::kNoModifier;
using ui::kShift;

// A number from 0 to 100 in steps of 1, that writes down "0:50" for message 0 at the value 50.
class Target : public ValueGestureTarget {
public:
    double GestureValue() const override { return value; }
    void SetGestureValue(double v) override { value = v; }
    void SendGesture(int message) override {
        std::string number = std::to_string(value);
        number.erase(number.find_last_not_of('0') + 1);
        if (number.back() == '.') number.pop_back();
        log.push_back(std::to_string(message) + ":" + number);
        if (message == stopAt) gesture->Flush();
    }
    double GestureMinimum() const override { return minimum; }
    double GestureMaximum() const override { return maximum; }
    double GestureDefault() const override { return 25; }
    double GestureIncrement() const override { return 1; }
    double GestureShiftIncrement() const override { return 10; }
    double GestureCommandIncrement() const override { return 0.1; }
    double GestureResolution() const override { return resolution; }
    void StartGestureTimer(float) override { timerRuns = true; }
    void StopGestureTimer() override { timerRuns = false; }

    std::vector<std::string> TakeLog() { return std::exchange(log, {}); }

    double value = 50;
    double minimum = 0;
    double maximum = 100;
    double resolution = 0.01;
    bool timerRuns = false;
    int stopAt = -1;
    ValueGesture* gesture = nullptr;
    std::vector<std::string> log;
};

class ValueGestureTest : public testing::Test {
protected:
    ValueGestureTest() { target.gesture = &gesture; }
    bool Press(Key key, std::uint8_t modifiers = kNoModifier) { return gesture.Key({key, 0, modifiers, false}); }

    Target target;
    ValueGesture gesture{target};
};

TEST_F(ValueGestureTest, DragSendsStartChangesAndEnd) {
    gesture.BeginDrag();
    gesture.DragBy(0.1, kNoModifier);
    gesture.DragBy(0.05, kNoModifier);
    gesture.EndDrag();
    EXPECT_THAT(target.TakeLog(), ElementsAre("0:50", "1:60", "1:65", "2:65"));
}

TEST_F(ValueGestureTest, DragWithoutChangeSendsNothing) {
    gesture.BeginDrag();
    gesture.DragBy(0, kShift);
    gesture.DragBy(0.00001, kNoModifier);
    gesture.EndDrag();
    EXPECT_THAT(target.TakeLog(), IsEmpty());
}

TEST_F(ValueGestureTest, DragModifierInMidDragChangesThePaceWithoutAJump) {
    gesture.BeginDrag();
    gesture.DragBy(0.1, kNoModifier);
    gesture.DragBy(0, kCommand);
    gesture.DragBy(0.01, kCommand);
    gesture.DragBy(0, kShift);
    gesture.DragBy(0.01, kShift);
    gesture.DragBy(0, kNoModifier);
    gesture.EndDrag();
    EXPECT_THAT(target.TakeLog(), ElementsAre("0:50", "1:60", "1:60.1", "1:70.1", "2:70.1"));
}

TEST_F(ValueGestureTest, DragBeyondTheEndComesBackWithThePointer) {
    gesture.BeginDrag();
    gesture.DragBy(0.7, kNoModifier);
    gesture.DragBy(-0.1, kNoModifier);
    gesture.DragBy(-0.2, kNoModifier);
    gesture.EndDrag();
    EXPECT_THAT(target.TakeLog(), ElementsAre("0:50", "1:100", "1:90", "2:90"));
}

// What the pointer has gone beyond an end belongs to the pace that it went at.
TEST_F(ValueGestureTest, DragModifierBeyondAnEndStartsAgainFromThatEnd) {
    for (const std::uint8_t modifier : {std::uint8_t{kCommand}, std::uint8_t{kShift}}) {
        const double pace = modifier == kCommand ? 0.1 : 10;
        for (const double direction : {1.0, -1.0}) {
            const double end = direction > 0 ? 100 : 0;
            for (const std::uint8_t before : {std::uint8_t{kNoModifier}, modifier}) {
                const std::uint8_t behind = before == kNoModifier ? modifier : std::uint8_t{kNoModifier};
                target.value = 50;
                gesture.BeginDrag();
                gesture.DragBy(direction * 20, before);
                EXPECT_EQ(target.value, end);
                gesture.DragBy(-direction * 0.01, behind);
                EXPECT_NEAR(target.value, end - direction * (behind == kNoModifier ? 1 : pace), 1e-9);
                gesture.EndDrag();
            }
        }
    }
}

TEST_F(ValueGestureTest, WheelPartOfANotchIsForgottenWhenItTurns) {
    gesture.Wheel(0.6, kNoModifier);
    gesture.Wheel(-0.6, kNoModifier);
    EXPECT_THAT(target.TakeLog(), IsEmpty());
    gesture.Wheel(-0.4, kNoModifier);
    EXPECT_THAT(target.TakeLog(), ElementsAre("0:50", "1:49"));
    gesture.Flush();
}

TEST_F(ValueGestureTest, DragReachesAnEndThatIsNoRoundNumber) {
    target.resolution = 1;
    target.minimum = 0.4;
    gesture.BeginDrag();
    gesture.DragBy(-0.6, kNoModifier);
    gesture.EndDrag();
    EXPECT_THAT(target.TakeLog(), ElementsAre("0:50", "1:0.4", "2:0.4"));
}

TEST_F(ValueGestureTest, DragInStepsGoesByIncrementsFromWhereItBegan) {
    target.value = 50.5;
    gesture.BeginDrag(true);
    gesture.DragBy(0.004, kNoModifier);
    gesture.DragBy(0.004, kNoModifier);
    gesture.DragBy(0.004, kNoModifier);
    gesture.DragBy(0.02, kNoModifier);
    gesture.EndDrag();
    EXPECT_THAT(target.TakeLog(), ElementsAre("0:50.5", "1:51.5", "1:53.5", "2:53.5"));
}

TEST_F(ValueGestureTest, DragEscapeAndAbandonBringTheOldValueBack) {
    gesture.BeginDrag();
    gesture.DragBy(0.2, kNoModifier);
    EXPECT_TRUE(Press(Key::kEscape));
    gesture.DragBy(0.2, kNoModifier);
    gesture.EndDrag();
    EXPECT_THAT(target.TakeLog(), ElementsAre("0:50", "1:70", "3:50"));
    EXPECT_FALSE(Press(Key::kEscape));
}

TEST_F(ValueGestureTest, DragIsNotDisturbedByValuesWrittenMeanwhile) {
    gesture.BeginDrag();
    gesture.DragBy(0.1, kNoModifier);
    target.value = 12.3;
    gesture.DragBy(0.1, kNoModifier);
    gesture.EndDrag();
    EXPECT_THAT(target.TakeLog(), ElementsAre("0:50", "1:60", "1:70", "2:70"));
}

TEST_F(ValueGestureTest, DragToGoesOnRelativelyFromThere) {
    gesture.BeginDrag();
    gesture.DragTo(20);
    gesture.DragBy(0.05, kNoModifier);
    gesture.EndDrag();
    EXPECT_THAT(target.TakeLog(), ElementsAre("0:50", "1:20", "1:25", "2:25"));
}

TEST_F(ValueGestureTest, KeysMakeStepsOfOneGesture) {
    const struct {
        Key key;
        std::uint8_t modifiers;
        const char* change;
    } cases[] = {
        {Key::kUp, kNoModifier, "1:51"},         {Key::kRight, kShift, "1:61"},    {Key::kLeft, kCommand, "1:60.9"},
        {Key::kPageDown, kNoModifier, "1:50.9"}, {Key::kHome, kNoModifier, "1:0"}, {Key::kEnd, kNoModifier, "1:100"},
        {Key::kDown, kNoModifier, "1:99"},
    };
    std::vector<std::string> expected{"0:50"};
    for (const auto& c : cases) {
        EXPECT_TRUE(Press(c.key, c.modifiers));
        expected.emplace_back(c.change);
    }
    EXPECT_TRUE(target.timerRuns);
    gesture.TimerFired();
    expected.emplace_back("2:99");
    EXPECT_EQ(target.TakeLog(), expected);
    EXPECT_FALSE(target.timerRuns);
}

TEST_F(ValueGestureTest, KeysOthersAreLeftToTheHost) {
    EXPECT_FALSE(Press(Key::kSpace));
    EXPECT_FALSE(Press(Key::kTab));
    EXPECT_FALSE(Press(Key::kUp, ui::kAlt));
    EXPECT_THAT(target.TakeLog(), IsEmpty());
}

TEST_F(ValueGestureTest, StepAtTheBoundSendsNothing) {
    target.value = 100;
    Press(Key::kUp);
    gesture.TimerFired();
    EXPECT_THAT(target.TakeLog(), IsEmpty());
    EXPECT_FALSE(gesture.IsActive());
}

TEST_F(ValueGestureTest, StepSmallerThanWhatIsShownIsNotLost) {
    target.resolution = 1;
    Press(Key::kUp, kCommand);
    Press(Key::kUp, kCommand);
    gesture.TimerFired();
    EXPECT_THAT(target.TakeLog(), ElementsAre("0:50", "1:50.1", "1:50.2", "2:50.2"));
}

TEST_F(ValueGestureTest, WheelFractionsOfANotchAccumulate) {
    for (int i = 0; i < 5; ++i)
        gesture.Wheel(0.4, kNoModifier);
    gesture.Wheel(-0.5, kNoModifier); // the other way: what was left of the last notch is forgotten
    gesture.Wheel(-0.6, kNoModifier);
    gesture.TimerFired();
    EXPECT_THAT(target.TakeLog(), ElementsAre("0:50", "1:51", "1:52", "1:51", "2:51"));
    gesture.Wheel(0.9, kNoModifier);
    gesture.TimerFired();
    gesture.Wheel(0.9, kNoModifier);
    EXPECT_THAT(target.TakeLog(), IsEmpty());
}

TEST_F(ValueGestureTest, BeginDragClosesARunFirst) {
    gesture.Wheel(1, kNoModifier);
    gesture.BeginDrag();
    gesture.DragBy(0.1, kNoModifier);
    gesture.EndDrag();
    EXPECT_THAT(target.TakeLog(), ElementsAre("0:50", "1:51", "2:51", "0:51", "1:61", "2:61"));
}

TEST_F(ValueGestureTest, SetOnceIsAWholeGestureHeldWithinTheBounds) {
    gesture.SetOnce(500);
    EXPECT_THAT(target.TakeLog(), ElementsAre("0:50", "1:100", "2:100"));
    gesture.SetOnce(100);
    gesture.SetOnce(std::nan(""));
    EXPECT_THAT(target.TakeLog(), IsEmpty());
    gesture.Reset();
    EXPECT_THAT(target.TakeLog(), ElementsAre("0:100", "1:25", "2:25"));
}

TEST_F(ValueGestureTest, ListenerThatEndsTheGestureGetsNoMessageBehindTheEnd) {
    target.stopAt = 0;
    gesture.Wheel(1, kNoModifier);
    EXPECT_THAT(target.TakeLog(), ElementsAre("0:50", "2:50"));
}

} // namespace
} // namespace kroui::controls
