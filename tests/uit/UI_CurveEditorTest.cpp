#include "CurveEditorFixture.h"

#include "kroui/controls/UI_TextField.h"

#include <cmath>
#include <limits>

namespace uit::controls {
namespace {

using kroui::ui::kCommand;
using kroui::ui::Key;
using kroui::ui::kShift;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST_F(CurveEditorTest, PressOnTheFieldAddsAPointAndGoesOnAsADrag) {
    editor->SetUniqueHorizontalPositions(true);
    Set({{0, 100}, {400, 100}});
    window.Press(At(200, 50));
    EXPECT_EQ(Heard(), "01");
    EXPECT_THAT(Places(), ElementsAre(IsPlace(0, 100), IsPlace(200, 50), IsPlace(400, 100)));
    EXPECT_EQ(editor->GetCurvePoints()[1].identifier, 2U);
    EXPECT_EQ(editor->GetSelectedNode(), 1);
    window.MoveTo(At(210, 80));
    window.MoveTo(At(220, 90));
    window.Release();
    EXPECT_EQ(Heard(), "112c");
    EXPECT_THAT(Places()[1], IsPlace(220, 90));
}

TEST_F(CurveEditorTest, PressNearTheCurveAddsAPointOnIt) {
    Set({{0, 0}, {400, 200}});
    window.Click(At(100, 53)); // the line is at 50 there
    ASSERT_EQ(Places().size(), 3U);
    EXPECT_THAT(Places()[2], IsPlace(100, 50));
}

TEST_F(CurveEditorTest, PointsAreAddedOnlyWhereTheyMayBe) {
    editor->SetUniqueHorizontalPositions(true);
    Set({{100, 100}, {300, 100}});
    window.Click(At(100, 20)); // one stands above
    EXPECT_EQ(Places().size(), 2U);
    editor->SetMaxPointCount(2);
    window.Click(At(200, 20));
    EXPECT_EQ(Places().size(), 2U);
    editor->SetMaxPointCount(128);
    editor->SetEnableAddPoints(false);
    window.Click(At(200, 20));
    EXPECT_FALSE(editor->AddNewPoint());
    EXPECT_EQ(Places().size(), 2U);
    EXPECT_EQ(Heard(), "");
    editor->SetEnableAddPoints(true);
    editor->SetUniqueHorizontalPositions(false);
    window.Click(At(100, 20));
    EXPECT_THAT(Places(), ElementsAre(IsPlace(100, 100), IsPlace(300, 100), IsPlace(100, 20)));
}

TEST_F(CurveEditorTest, DragTakesTheNearestPointAndDoesNotJumpWhenGrabbedBesideItsMiddle) {
    Set({{100, 100}, {112, 100}});
    onMessage = [this](int message) {
        if (message == Message::kStarted) {
            EXPECT_EQ(editor->GetSelectedNode(), 1);
            EXPECT_THAT(Places()[1], IsPlace(112, 100));
        }
    };
    window.Drag(At(108, 97), At(158, 127), 5);
    EXPECT_THAT(Places(), ElementsAre(IsPlace(100, 100), IsPlace(162, 130)));
    EXPECT_EQ(Heard(), "0111112c");
}

TEST_F(CurveEditorTest, ClickOnlySelects) {
    Set({{100, 100}, {200, 100}});
    window.Press(At(103, 100));
    window.MoveTo(At(104, 101)); // a hand is never still
    window.Release();
    EXPECT_EQ(editor->GetSelectedNode(), 0);
    EXPECT_EQ(Heard(), "");
    EXPECT_THAT(Places(), ElementsAre(IsPlace(100, 100), IsPlace(200, 100)));
    editor->SetEnableAddPoints(false);
    window.Click(At(300, 50));
    EXPECT_EQ(editor->GetSelectedNode(), -1);
}

TEST_F(CurveEditorTest, ShiftLocksTheAxisOfTheFirstMovementAndCtrlMovesFinely) {
    const struct {
        std::uint8_t modifiers;
        double x, y;
    } cases[] = {{0, 140, 110}, {kShift, 140, 100}, {kCommand, 104, 101}};
    for (const auto& c : cases) {
        Set({{100, 100}, {300, 100}});
        editor->SetSelectedNode(0);
        window.Drag(At(100, 100), At(140, 110), 4, c.modifiers);
        EXPECT_THAT(Places()[0], IsPlace(c.x, c.y)) << int{c.modifiers};
    }
}

TEST_F(CurveEditorTest, ModifierInMidDragMakesNoJump) {
    Set({{100, 100}});
    window.Press(At(100, 100));
    window.MoveTo(At(120, 130));
    window.MoveTo(At(120, 130), kShift);
    EXPECT_THAT(Places()[0], IsPlace(120, 130));
    window.MoveTo(At(121, 150), kShift); // vertical now
    EXPECT_THAT(Places()[0], IsPlace(120, 150));
    window.MoveTo(At(121, 150), kCommand);
    window.MoveTo(At(131, 150), kCommand);
    EXPECT_THAT(Places()[0], IsPlace(121, 150));
    window.Release();
}

TEST_F(CurveEditorTest, AbandonedDragBringsThePointsBackAndSaysSo) {
    const boost::function<void()> ways[] = {[this] { window.PressKey(Key::kEscape); },
                                            [this] { window.Window().Deactivated(); },
                                            [this] { editor->SetEnabled(false); }};
    for (const auto& abandon : ways) {
        editor->SetEnabled(true);
        Set({{100, 100}, {300, 100}});
        window.Press(At(100, 100));
        window.MoveTo(At(150, 120));
        EXPECT_EQ(Heard(), "01");
        abandon();
        EXPECT_EQ(Heard(), "13");
        EXPECT_EQ(editor->GetSelectedNode(), 0);
        EXPECT_THAT(Places(), ElementsAre(IsPlace(100, 100), IsPlace(300, 100)));
        window.MoveTo(At(170, 120));
        window.Release();
        EXPECT_EQ(Heard(), "");
    }
    editor->SetEnabled(true);
    window.Press(At(200, 50)); // a new point
    window.PressKey(Key::kEscape);
    window.Release();
    EXPECT_EQ(Heard(), "0113");
    EXPECT_EQ(Places().size(), 2U);
}

TEST_F(CurveEditorTest, UniquePositionsStayAscendingEvenAsFloats) {
    editor->SetUniqueHorizontalPositions(true);
    for (const double low : {0.0, 20.0, 5000.0}) {
        const double high = low + 22030;
        editor->SetRanges(low, high, 200, 0);
        const auto value = [&](double part) { return low + part * (high - low); };
        Set({{value(0), 100}, {value(0.5), 100}, {value(0.75), 100}});
        const auto isAscending = [](double a, double b) {
            return static_cast<float>(a) < static_cast<float>(b) &&
                   static_cast<float>(a / 24000) < static_cast<float>(b / 24000) &&
                   static_cast<float>(std::log10(std::max(a, 1.0)) / 4.5) <
                       static_cast<float>(std::log10(std::max(b, 1.0)) / 4.5);
        };
        window.Drag(At(200, 100), At(390, 100));
        EXPECT_TRUE(isAscending(Places()[1].horizontal, Places()[2].horizontal)) << low;
        EXPECT_NEAR(Places()[1].horizontal, value(0.75), 0.1);
        editor->SetSelectedNode(1);
        for (int i = 0; i < 40; ++i)
            window.PressKey(Key::kLeft, kShift);
        EXPECT_LT(Places()[0].horizontal, Places()[1].horizontal);
        EXPECT_NEAR(Places()[1].horizontal, value(0), 0.1);
    }
}

TEST_F(CurveEditorTest, WithoutUniquePositionsPointsPassEachOther) {
    Set({{100, 100}, {200, 100}});
    window.Drag(At(100, 100), At(300, 50));
    EXPECT_THAT(Places(), ElementsAre(IsPlace(300, 50), IsPlace(200, 100)));
}

TEST_F(CurveEditorTest, FlagsSayWhatMayBeDone) {
    Set({{0, 100}, {200, 100}, {400, 100}});
    editor->SetMoveablePoints({false, true, false}, true);
    editor->SetMoveablePoints({true, false, true}, false);
    editor->SetDeletablePoints({false, true, false});
    window.Drag(At(2, 100), At(52, 150));
    window.Drag(At(200, 100), At(250, 150));
    EXPECT_THAT(Places(), ElementsAre(IsPlace(0, 150), IsPlace(250, 100), IsPlace(400, 100)));
    EXPECT_EQ(Places()[0].horizontal, 0); // not even by rounding
    editor->SelectAll();
    Heard();
    EXPECT_TRUE(window.PressKey(Key::kDelete));
    EXPECT_EQ(Heard(), "012c");
    EXPECT_THAT(Places(), ElementsAre(IsPlace(0, 150), IsPlace(400, 100)));
    // The flags of the last point have moved with it.
    window.Drag(At(398, 100), At(350, 50));
    EXPECT_THAT(Places()[1], IsPlace(400, 50));
    EXPECT_FALSE(window.PressKey(Key::kDelete));
}

TEST_F(CurveEditorTest, InvisiblePointsAreNotHitWalkedOrDeleted) {
    editor->SetEnableAddPoints(false);
    Set({{100, 100}, {200, 100}, {300, 100}});
    editor->SetVisiblePoints({true, false});
    window.Drag(At(200, 100), At(250, 100));
    EXPECT_THAT(Places()[1], IsPlace(200, 100));
    editor->UI_TakeFocus();
    std::vector<int> walked;
    while (window.PressKey(Key::kTab) && walked.size() < 9 &&
           (walked.empty() || walked.back() != editor->GetSelectedNode()))
        walked.push_back(editor->GetSelectedNode());
    EXPECT_THAT(walked, ElementsAre(0, 2));
    editor->SelectAll();
    EXPECT_THAT(editor->GetSelection(), ElementsAre(0, 2));
}

TEST_F(CurveEditorTest, MarqueeCtrlClickAndCtrlASelect) {
    Set({{50, 50}, {100, 100}, {150, 150}, {300, 100}});
    window.Drag(At(30, 30), At(120, 120), 4, kCommand);
    EXPECT_THAT(editor->GetSelection(), ElementsAre(0, 1));
    window.Click(At(300, 100), kCommand);
    EXPECT_THAT(editor->GetSelection(), ElementsAre(0, 1, 3));
    EXPECT_EQ(editor->GetSelectedNode(), 3);
    window.Click(At(50, 50), kCommand);
    EXPECT_THAT(editor->GetSelection(), ElementsAre(1, 3));
    window.PressKey(Key::kCharacter, kCommand, u'a');
    EXPECT_THAT(editor->GetSelection(), ElementsAre(0, 1, 2, 3));
    editor->SetEnableAddPoints(false);
    window.Drag(At(320, 120), At(130, 80), 4); // now without Ctrl
    EXPECT_THAT(editor->GetSelection(), ElementsAre(3));
    EXPECT_EQ(Heard(), "");
}

TEST_F(CurveEditorTest, DraggingOneOfSeveralSelectedPointsMovesAllWithinBoundsAndNeighbours) {
    editor->SetUniqueHorizontalPositions(true);
    Set({{50, 150}, {100, 100}, {200, 180}, {300, 100}});
    window.Click(At(50, 150));
    window.Click(At(100, 100), kCommand);
    window.Click(At(200, 180), kCommand);
    window.Drag(At(100, 100), At(180, 140));
    // 200 + 80 is free; 180 + 40 is beyond the top.
    EXPECT_THAT(Places(), ElementsAre(IsPlace(130, 190), IsPlace(180, 140), IsPlace(280, 200), IsPlace(300, 100)));
    window.Drag(At(180, 140), At(330, 140));
    EXPECT_THAT(Places(), ElementsAre(IsPlace(280, 190), IsPlace(300, 140), IsPlace(300, 200), IsPlace(300, 100)));
    for (std::size_t i = 1; i < 4; ++i)
        EXPECT_LT(Places()[i - 1].horizontal, Places()[i].horizontal);
    window.Click(At(280, 190));
    EXPECT_THAT(editor->GetSelection(), ElementsAre(0));
}

TEST_F(CurveEditorTest, ArrowsNudgeAsOneGestureThatClosesAfterHalfASecond) {
    Set({{100, 100}, {200, 100}});
    editor->UI_TakeFocus();
    EXPECT_FALSE(window.PressKey(Key::kUp)); // nothing is selected: the host may have the key
    window.PressKey(Key::kHome);
    window.PressKey(Key::kRight);
    window.PressKey(Key::kUp, kShift);
    window.PressKey(Key::kLeft, kCommand);
    EXPECT_NEAR(Places()[0].horizontal, 100.9, 0.001);
    EXPECT_NEAR(Places()[0].vertical, 110, 0.001);
    window.Advance(0.4);
    EXPECT_EQ(Heard(), "0111");
    window.Advance(0.2);
    EXPECT_EQ(Heard(), "2c");
    window.PressKey(Key::kEnd);
    window.PressKey(Key::kDown);
    window.PressKey(Key::kTab, kShift);
    EXPECT_EQ(Heard(), "012c");
    EXPECT_EQ(editor->GetSelectedNode(), 0);
    EXPECT_THAT(Places()[1], IsPlace(200, 99));
}

TEST_F(CurveEditorTest, OwnerWhoRoundsOrMovesPointsInADragIsFollowed) {
    Set({{100, 100}, {200, 100}});
    // Shares one height among all points, in steps of a quarter.
    onMessage = [this](int message) {
        if (message != Message::kChanged) return;
        Points points = editor->GetCurvePoints();
        for (CurvePoint& point : points)
            point.coordinates.vertical = std::round(editor->GetCurvePoints()[0].coordinates.vertical * 4) / 4;
        editor->SetCurvePoints(points);
    };
    window.Drag(At(100, 100), At(100, 140.1), 7);
    EXPECT_THAT(Places(), ElementsAre(IsPlace(100, 140), IsPlace(200, 140)));
    onMessage = {};
    window.Press(At(100, 140));
    window.MoveTo(At(110, 140));
    Set({{250, 50}, {200, 140}}); // somebody else puts it there
    window.MoveTo(At(120, 145));
    EXPECT_THAT(Places()[0], IsPlace(260, 55));
    Set({{10, 10}});
    editor->SetCurvePoints({});
    window.MoveTo(At(130, 150));
    Heard();
    window.Release();
    EXPECT_EQ(Heard(), "2c");
}

TEST_F(CurveEditorTest, AxesThatChangeInADragDoNotMoveThePoint) {
    Set({{100, 100}});
    window.Press(At(100, 100));
    window.MoveTo(At(120, 100));
    editor->SetCurrentRange(100, 200, 200, 0);
    window.MoveTo(At(124, 100));
    EXPECT_THAT(Places()[0], IsPlace(120, 100));
    window.MoveTo(At(128, 100)); // four units a pixel less now
    EXPECT_THAT(Places()[0], IsPlace(121, 100));
    window.Release();
}

TEST_F(CurveEditorTest, DialogTypesBothValuesInOneGesture) {
    const auto field = [this](const char* id) {
        return dynamic_cast<kroui::controls::UI_TextField*>(window.Window().TopOverlay()->UI_FindNode(id));
    };
    editor->SetHorizontalEditDialogUnit(u"Hz");
    editor->SetVerticalEditDialogTranslators([](double typed) { return typed + 100; },
                                             [](double axis) { return axis - 100; });
    Set({{100.123, 150}, {200, 100}});
    editor->SetMoveablePoints({true, false}, true);
    window.DoubleClick(At(100, 150));
    ASSERT_TRUE(window.Window().HasModalOverlay());
    EXPECT_EQ(field("HorizontalField")->GetText(), u"100.1");
    EXPECT_EQ(field("VerticalField")->GetText(), u"50");
    EXPECT_EQ(field("HorizontalField")->SelectedText(), u"100.1");
    window.PressKey(Key::kTab);
    window.Type(u"many");
    window.PressKey(Key::kEnter);
    EXPECT_TRUE(field("VerticalField")->HasError());
    EXPECT_EQ(Heard(), "");
    window.Type(u"-12,5");
    window.PressKey(Key::kEnter);
    EXPECT_FALSE(window.Window().HasModalOverlay());
    EXPECT_EQ(Heard(), "012c");
    EXPECT_EQ(Places()[0].horizontal, 100.123); // not rounded to what the field shows
    EXPECT_EQ(Places()[0].vertical, 87.5);
    EXPECT_TRUE(editor->UI_HasFocus());

    window.PressKey(Key::kTab); // to the second point, which may move only up and down
    window.PressKey(Key::kEnter);
    EXPECT_FALSE(field("HorizontalField")->IsEnabled());
    window.Type(u"1k");
    window.PressKey(Key::kEnter);
    EXPECT_EQ(Places()[1].vertical, 200); // as far as the bounds let it
    Heard();
    window.PressKey(Key::kEnter);
    window.Type(u"3");
    window.PressKey(Key::kEscape);
    EXPECT_FALSE(window.Window().HasModalOverlay());
    window.PressKey(Key::kF2);
    window.Type(u"3");
    window.Click({590, 390});
    EXPECT_FALSE(window.Window().HasModalOverlay());
    EXPECT_EQ(Places()[1].vertical, 200);
    EXPECT_EQ(Heard(), "");
    window.PressKey(Key::kEnter);
    root->ChildRemove(editor.get());
    EXPECT_FALSE(window.Window().HasModalOverlay());
}

TEST_F(CurveEditorTest, AddNewPointStandsOnTheCurveInTheMiddleOfTheWidestGap) {
    editor->SetUniqueHorizontalPositions(true);
    EXPECT_TRUE(editor->AddNewPoint());
    EXPECT_THAT(Places(), ElementsAre(IsPlace(200, 100)));
    Set({{0, 0}, {100, 50}, {400, 200}});
    EXPECT_TRUE(editor->AddNewPoint());
    EXPECT_THAT(Places()[2], IsPlace(250, 125));
    EXPECT_EQ(editor->GetSelectedNode(), 2);
    EXPECT_TRUE(editor->DeleteSelectedPoints());
    EXPECT_FALSE(editor->DeleteSelectedPoints());
    EXPECT_EQ(Heard(), "");
    editor->NotifyChanged();
    EXPECT_EQ(Heard(), "012c");
}

TEST_F(CurveEditorTest, InvertMirrorsTheCurveAndTwiceBringsItBack) {
    editor->SetUniqueHorizontalPositions(true);
    editor->SetRanges(-100, 0, 0, -100);
    const std::vector<Pair> curves[] = {{{-100, -100}, {-40, -20}, {0, -10}},
                                        {{-100, -80}, {-20, -20}, {-10, -20}, {0, -20}},
                                        {{-90, -10}, {-50, -50}, {-20, -95}}};
    for (const auto& curve : curves) {
        Set(curve);
        EXPECT_TRUE(editor->Invert());
        std::vector<Pair> mirrored = curve;
        for (Pair& place : mirrored)
            std::swap(place.horizontal, place.vertical);
        EXPECT_THAT(Places(), testing::UnorderedElementsAreArray(mirrored));
        EXPECT_TRUE(editor->Invert());
        EXPECT_EQ(Places(), curve);
    }
    Set({{-100, -100}, {0, 0}});
    EXPECT_FALSE(editor->Invert());
}

TEST_F(CurveEditorTest, PointsThatAreNoneAreLeftOut) {
    editor->SetMaxPointCount(3);
    Set({{1, 1}, {kNaN, 1}, {2, kInfinity}, {2, 2}, {3, 3}, {4, 4}});
    EXPECT_THAT(Places(), ElementsAre(IsPlace(1, 1), IsPlace(2, 2), IsPlace(3, 3)));
    editor->SetSelectedNode(2);
    Set({{1, 1}});
    EXPECT_EQ(editor->GetSelectedNode(), -1);
    EXPECT_THAT(editor->GetSelection(), IsEmpty());
}

TEST_F(CurveEditorTest, NoSizeAndStrangeResponsesAreSafe) {
    editor->SetResponseData({kNaN, kInfinity, 3, -kInfinity, 5, 1e300}, 0);
    editor->SetResponseData({1}, 3);
    editor->SetResponseData({1, 2}, 4);
    editor->SetResponseData({1, 2}, -1);
    Set({{100, 100}, {100, 100}, {100, 20}});
    editor->SetUseSplines(true);
    for (const kroui::Rect frame : {kroui::Rect{0, 0, 0, 0}, {0, 0, 53, 26}, {0, 0, 54, 27}, {0, 0, 70, 200}}) {
        editor->UI_SetFrame(frame);
        window.Paint();
        EXPECT_EQ(editor->GetContentRect().IsEmpty(), frame.width < 54);
        window.Drag({frame.width / 2, 10}, {frame.width / 2 + 5, 15});
    }
    EXPECT_EQ(Places().size(), 3U);
}

TEST_F(CurveEditorTest, SameDataAgainPaintsNothing) {
    const Points points = PointsAt({{100, 100}, {200, 50}});
    const std::vector<double> response = {1, 2, kNaN, 4};
    editor->SetCurvePoints(points);
    editor->SetResponseData(response, 0);
    window.Paint();
    editor->SetCurvePoints(points);
    editor->SetResponseData(response, 0);
    editor->SetVisiblePoints({});
    EXPECT_EQ(window.Paint(), 0);
    editor->SetResponseData({1, 2, 3, 4}, 0);
    EXPECT_EQ(window.Paint(), 400 * 200);
}

TEST_F(CurveEditorTest, HoverPaintsHandleAndReadoutOnly) {
    Set({{100, 100}, {300, 100}});
    window.MoveTo(At(200, 30));
    window.Paint();
    window.MoveTo(At(101, 100));
    const long pixels = window.Paint();
    EXPECT_GT(pixels, 0);
    EXPECT_LT(pixels, 400 * 200 / 5);
    window.MoveTo(At(102, 100));
    EXPECT_EQ(window.Paint(), 0);
}

TEST_F(CurveEditorTest, AccessiblePointsAreMovedAddedAndRemovedInWholeGesturesInTheUnitsThatAreTyped) {
    using kroui::ui::AccessibleAction;
    const auto act = [this](AccessibleAction action, int part, double value = 0) {
        return window.Window().DoAccessibleAction(*editor, {.action = action, .part = part, .value = value});
    };
    // What is typed is a tenth of what the axis holds.
    editor->SetHorizontalEditDialogTranslators([](double typed) { return typed * 10; },
                                               [](double axis) { return axis / 10; });
    editor->SetUniqueHorizontalPositions(true);
    Set({{100, 50}, {300, 150}});
    ASSERT_EQ(editor->UI_GetAccessiblePartCount(), 2);
    const auto point = editor->UI_GetAccessiblePart(1).info;
    EXPECT_EQ(point.name, u"Point 2");
    EXPECT_EQ(point.position->value, 30);
    EXPECT_EQ(point.range->value, 150);
    EXPECT_TRUE(act(AccessibleAction::kSetPosition, 1, 20));
    EXPECT_EQ(Heard(), "012c");
    EXPECT_TRUE(act(AccessibleAction::kSetValue, 1, 120));
    EXPECT_EQ(Heard(), "012c");
    EXPECT_THAT(Places(), ElementsAre(IsPlace(100, 50), IsPlace(200, 120)));
    EXPECT_TRUE(editor->UI_GetAccessiblePart(1).info.selected);
    const double before = editor->GetCurvePoints()[0].coordinates.vertical;
    EXPECT_TRUE(act(AccessibleAction::kIncrease, 0));
    EXPECT_EQ(Heard(), "01");
    window.Advance(0.6);
    EXPECT_EQ(Heard(), "2c");
    EXPECT_NE(editor->GetCurvePoints()[0].coordinates.vertical, before);
    EXPECT_TRUE(act(AccessibleAction::kAdd, kroui::ui::AccessibleRequest::kWhole));
    EXPECT_EQ(Heard(), "012c");
    EXPECT_EQ(editor->UI_GetAccessiblePartCount(), 3);
    EXPECT_TRUE(act(AccessibleAction::kRemove, 0));
    EXPECT_EQ(Heard(), "012c");
    EXPECT_EQ(editor->UI_GetAccessiblePartCount(), 2);
}

TEST_F(CurveEditorTest, AccessiblePointsOfferWhatTheirFlagsAllow) {
    using kroui::ui::AccessibleAction;
    Set({{100, 50}, {200, 60}, {300, 150}});
    editor->SetVisiblePoints({true, false, true});
    editor->SetMoveablePoints({false}, true);
    editor->SetDeletablePoints({false});
    ASSERT_EQ(editor->UI_GetAccessiblePartCount(), 2);
    const auto fixed = editor->UI_GetAccessiblePart(0).info.actions;
    EXPECT_FALSE(fixed.Has(AccessibleAction::kSetPosition));
    EXPECT_TRUE(fixed.Has(AccessibleAction::kSetValue));
    EXPECT_FALSE(fixed.Has(AccessibleAction::kRemove));
    EXPECT_TRUE(window.Window().DoAccessibleAction(*editor, {.action = AccessibleAction::kRemove, .part = 1}));
    EXPECT_THAT(Places(), ElementsAre(IsPlace(100, 50), IsPlace(200, 60)));
}

TEST_F(CurveEditorTest, AccessibleValueTellsTheSelectedPointWithUnits) {
    editor->SetRanges(20, 20020, 24, -24); // 50 Hz and 0.24 dB a pixel, or nearly
    editor->SetHorizontalLabel1(u"Hz");
    editor->SetVerticalEditDialogUnit(u"dB");
    Set({{440, -12.25}, {12500, 6}});
    EXPECT_EQ(editor->UI_GetAccessibleInfo().value, u"2 points");
    editor->SetSelectedNode(1);
    EXPECT_EQ(editor->UI_GetAccessibleInfo().value, u"Point 2 of 2: 12.50 kHz, 6.0 dB");
    editor->SetSelectedNode(0);
    EXPECT_EQ(editor->UI_GetAccessibleInfo().value, u"Point 1 of 2: 440 Hz, -12.3 dB");
}

} // namespace
} // namespace uit::controls
