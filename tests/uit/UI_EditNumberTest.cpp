#include "uit/controls/UI_EditNumber_Horizontal.h"

#include "kroui/limner/CairoSupplier.h"
#include "kroui/limner/RecordingLimner.h"
#include "kroui/ui/AdapterRegistry.h"
#include "kroui/ui/HeadlessWindow.h"
#include "kroui/utility/LinearRuler.h"
#include "kroui/utility/LogRuler.h"

#include <gmock/gmock.h>

#include <string>

namespace uit::controls {
namespace {

using kroui::Point;
using kroui::Rect;
using kroui::controls::UI_ControlChangedMessage;
using kroui::controls::UI_InteractiveControlChangedMessage;
using kroui::ui::kCommand;
using kroui::ui::Key;
using testing::Contains;
using testing::Not;
using testing::StartsWith;
using Edit = UI_EditNumber;

// A channel gain as the amplify panel makes it: -96...48 dB on a track of 200 pixels.
class EditNumberTest : public testing::Test {
protected:
    EditNumberTest() {
        window.Window().SetContent(root);
        root->UI_SetFrame({0, 0, 600, 400});
        ruler->SetStepFactor(20);
        ruler->SetValueRange(-96, 48);
        edit->SetDigits(5);
        edit->SetDecimalPlaces(2);
        edit->SetSliderLength(200);
        edit->SetMinMaxValue(-96, 48, 0);
        edit->SetUnitLabel(u"dB");
        edit->SetIncrement(1);
        edit->SetSliderStretches(false);
        edit->SetLabel(u"Left:");
        edit->SetFormatFlags(krocore::kFormatNoTrailingZeros);
        edit->SetRuler(ruler, Edit::RulerPlacement::kRulerLeftTop, Edit::RulerTextPlacement::kTextRightBottom, {});
        root->ChildPushBack(edit);
        edit->NotifyWhenChangedInteractively([this](UI_InteractiveControlChangedMessage* message) {
            EXPECT_EQ(message->GetControl(), edit.get());
            heard += static_cast<char>('0' + message->GetChangeMessage());
        });
        edit->NotifyWhenChanged([this](UI_ControlChangedMessage*) { heard += 'c'; });
        window.Paint();
    }
    std::string Heard() { return std::exchange(heard, {}); }
    Rect Track() const { return edit->Layout().track; }
    // Where a value lies on the track when nothing is inverted, in window coordinates (the control stands at 0, 0).
    Point At(double value) const {
        return {Track().left + static_cast<float>((value + 96) / 144) * Track().width, Track().top};
    }
    Point NumberCentre() const { return edit->Layout().number.Centre(); }

    kroui::limner::CairoSupplier supplier;
    kroui::ui::HeadlessWindow window{supplier, {600, 400}};
    boost::intrusive_ptr<kroui::ui::UI_SubView> root{new kroui::ui::UI_SubView};
    boost::intrusive_ptr<Edit> edit{new Edit};
    boost::intrusive_ptr<kroui::utility::LinearRuler> ruler{new kroui::utility::LinearRuler};
    std::string heard;
};

TEST_F(EditNumberTest, WithoutASizeTakesOneThatHoldsAllItsParts) {
    const EditNumberLayout& layout = edit->Layout();
    EXPECT_EQ(layout.track.width, 200);
    const Rect all{0, 0, edit->UI_GetFrame().width, edit->UI_GetFrame().height};
    for (const Rect& part : {layout.label, layout.slider, layout.number, layout.unit}) {
        EXPECT_FALSE(part.IsEmpty());
        EXPECT_GE(part.left, 0);
        EXPECT_GE(part.top, 0);
        EXPECT_LE(part.Right(), all.Right());
        EXPECT_LE(part.Bottom(), all.Bottom());
    }
    EXPECT_LE(layout.label.Right(), layout.slider.left);
    EXPECT_LE(layout.slider.Right(), layout.number.left + kroui::controls::HotTextLook::kPadding);
    EXPECT_LE(layout.number.Right(), layout.unit.left);
}

TEST_F(EditNumberTest, SliderDragIsLinearAndOneGesture) {
    window.Drag(At(0), {At(0).x - 100, At(0).y}, 4); // half of the track
    EXPECT_DOUBLE_EQ(edit->GetValue(), -72);
    EXPECT_EQ(Heard(), "011112c");
}

TEST_F(EditNumberTest, NumberDragIsAGestureOfTheSameControl) {
    // 144 steps of two pixels.
    window.Drag(NumberCentre(), {NumberCentre().x + 20, NumberCentre().y}, 2);
    EXPECT_DOUBLE_EQ(edit->GetValue(), 10);
    EXPECT_EQ(Heard(), "0112c");
}

TEST_F(EditNumberTest, WheelThenDragClosesOneGestureBeforeTheNext) {
    window.Wheel(NumberCentre(), -2);
    EXPECT_DOUBLE_EQ(edit->GetValue(), -2);
    window.Press(At(-2));
    window.MoveTo({At(-2).x + 25, At(-2).y});
    window.Window().MouseWheel({At(-2).x + 25, At(-2).y}, 0, 1, kroui::ui::kNoModifier);
    window.Release();
    EXPECT_DOUBLE_EQ(edit->GetValue(), 16);
    EXPECT_EQ(Heard(), "012c012c");
}

TEST_F(EditNumberTest, TypingReplacesTheNumberInPlace) {
    window.DoubleClick(NumberCentre());
    ASSERT_NE(edit->EntryField(), nullptr);
    EXPECT_TRUE(edit->EntryField()->UI_HasFocus());
    EXPECT_LE(edit->EntryField()->UI_GetFrame().Right(), edit->Layout().unit.left);
    window.Type(u"-5,25 dB");
    window.PressKey(Key::kEnter);
    EXPECT_DOUBLE_EQ(edit->GetValue(), -5.25);
    EXPECT_EQ(Heard(), "012c");
}

TEST_F(EditNumberTest, CtrlClickAnywhereAndDoubleClickOnTheSliderReset) {
    for (const Point place : {edit->Layout().label.Centre(), At(40), NumberCentre()}) {
        edit->SetValue(-30);
        window.Click(place, kCommand);
        EXPECT_EQ(edit->GetValue(), 0);
    }
    edit->SetValue(-30);
    window.DoubleClick(At(-30));
    EXPECT_EQ(edit->GetValue(), 0);
    EXPECT_EQ(Heard(), "012c012c012c012c");
}

TEST_F(EditNumberTest, InvertedKnobAndRulerRunTheOtherWay) {
    ruler->SetValueRange(48, -96);
    edit->SetInvertSlider(true);
    edit->RecalcLayout();
    window.Paint();
    EXPECT_FLOAT_EQ(ruler->GetPixel(48), Track().left);
    EXPECT_FLOAT_EQ(ruler->GetPixel(-96), Track().Right());
    edit->SetValue(48);
    window.Drag(Track().left == 0 ? Point{} : Point{Track().left, Track().top}, {Track().left + 50, Track().top});
    EXPECT_DOUBLE_EQ(edit->GetValue(), 12); // a quarter of 144 below the top
    window.PressKey(Key::kUp);
    EXPECT_DOUBLE_EQ(edit->GetValue(), 13) << "keys go by values, not by places";
}

// Whichever way a ruler is given, a click gives the value that the ruler has at that place, and the knob goes there.
TEST_F(EditNumberTest, ValuesAndLabelsAgreeWithAClickAnywhere) {
    for (int form = 0; form < 16; ++form) {
        const bool isDescending = form & 1;
        const bool isInverted = form & 2;
        const bool isVertical = form & 4;
        boost::intrusive_ptr<kroui::utility::RulerBase> given(new kroui::utility::LinearRuler);
        if (form & 8) given.reset(new kroui::utility::LogRuler);
        edit->SetMinMaxValue(1, 1000, 1);
        given->SetValueRange(isDescending ? 1000 : 1, isDescending ? 1 : 1000);
        given->SetVertical(isVertical);
        edit->UI_SetFrame({0, 0, isVertical ? 80.0F : 500.0F, isVertical ? 260.0F : 60.0F});
        edit->SetInvertSlider(isInverted);
        edit->SetRuler(given, Edit::RulerPlacement::kRulerRightBottom, Edit::RulerTextPlacement::kTextRightBottom, {});
        edit->RecalcLayout();
        window.Window().InvalidateAll();
        window.Paint();
        const bool isBackwards = isInverted || (isDescending && !isVertical);
        const float start = isVertical ? Track().top : Track().left;
        const float end = isVertical ? Track().Bottom() : Track().Right();
        EXPECT_FLOAT_EQ(given->GetPixel(1), isBackwards == isVertical ? start : end) << form; // up is more
        for (const float part : {0.0F, 0.2F, 0.5F, 0.85F, 1.0F}) {
            const float pixel = start + part * (end - start);
            const Point place = isVertical ? Point{Track().left, pixel} : Point{pixel, Track().top};
            edit->SetValue((part < 0.5F) == isBackwards ? 1 : 1000); // so that the knob is elsewhere
            window.Click(place);
            EXPECT_NEAR(given->GetPixel(edit->GetValue()), pixel, 0.1) << form << " at " << part;
            window.Drag(place, {place.x + (isVertical ? 0 : 7), place.y + (isVertical ? 7 : 0)});
            EXPECT_NEAR(given->GetPixel(edit->GetValue()), std::min(pixel + 7, end), 0.2) << form << " from " << part;
        }
    }
}

TEST_F(EditNumberTest, LogarithmicRulerDecidesWhereValuesLie) {
    boost::intrusive_ptr<kroui::utility::LogRuler> logarithmic(new kroui::utility::LogRuler);
    edit->SetMinMaxValue(0, 1000, 0);
    logarithmic->SetValueRange(1, 1000); // starts above 0, where the slider's range begins
    edit->SetRuler(logarithmic, Edit::RulerPlacement::kRulerRightBottom, Edit::RulerTextPlacement::kTextRightBottom,
                   {});
    window.Paint();
    const float top = Track().top;
    window.Click({Track().left + Track().width / 3, top});
    EXPECT_NEAR(edit->GetValue(), 10, 0.15);
    EXPECT_NEAR(logarithmic->GetPixel(10), Track().left + Track().width / 3, 0.01);
    window.Drag({Track().left + Track().width / 3, top}, {Track().left - 30, top});
    EXPECT_EQ(edit->GetValue(), 0) << "the end of the track is the end of the range";
}

TEST_F(EditNumberTest, HotTextScaleChangesTheNumbersDragOnly) {
    edit->SetMinMaxValue(20, 20000, 1000);
    ruler->SetValueRange(20, 20000);
    edit->SetHotTextScale(1);
    edit->SetValue(20);
    window.Drag(NumberCentre(), {NumberCentre().x + 200, NumberCentre().y}, 2);
    EXPECT_NEAR(edit->GetValue(), 200, 0.5);
    window.Click({Track().left + 100, Track().top});
    EXPECT_DOUBLE_EQ(edit->GetValue(), 10010);
}

TEST_F(EditNumberTest, SetValueRepaintsTheKnobAndTheNumberOnly) {
    edit->SetValue(6);
    window.Paint();
    float area = 0;
    for (const Rect& rect : window.LastDamage()) {
        EXPECT_FALSE(rect.Intersects(edit->Layout().label));
        area += rect.width * rect.height;
    }
    EXPECT_GT(area, 0);
    EXPECT_LT(area, 0.35 * edit->UI_GetFrame().width * edit->UI_GetFrame().height);
    edit->SetValue(6);
    EXPECT_FALSE(window.Window().NeedsPaint());
    EXPECT_EQ(Heard(), "");
}

TEST_F(EditNumberTest, DisabledInADragEndsTheGestureAndTakesNothing) {
    window.Press(At(0));
    window.MoveTo({At(0).x + 25, At(0).y});
    edit->SetEnabled(false);
    window.MoveTo({At(0).x + 50, At(0).y});
    window.Release();
    EXPECT_EQ(Heard().front(), '0');
    const double value = edit->GetValue();
    window.Wheel(NumberCentre(), 3);
    window.DoubleClick(NumberCentre());
    EXPECT_EQ(edit->GetValue(), value);
    EXPECT_EQ(edit->EntryField(), nullptr);
}

TEST_F(EditNumberTest, ListenerThatRemovesTheControlIsSafe) {
    edit->NotifyWhenChangedInteractively([this](UI_InteractiveControlChangedMessage* message) {
        if (message->GetChangeMessage() == UI_InteractiveControlChangedMessage::kChanged) root->ChildRemove(edit.get());
    });
    window.Drag(At(0), {At(0).x + 50, At(0).y}, 3);
    const std::string all = Heard();
    EXPECT_EQ(all.substr(0, 2), "01");
    EXPECT_EQ(std::count(all.begin(), all.end(), '2') + std::count(all.begin(), all.end(), '3'), 1);
}

TEST_F(EditNumberTest, ListenerThatRemovesTheControlWhenCodeDisablesItIsSafe) {
    window.Wheel(At(0), 1);
    edit->NotifyWhenChangedInteractively([this](UI_InteractiveControlChangedMessage* message) {
        if (message->GetChangeMessage() != UI_InteractiveControlChangedMessage::kEnded) return;
        root->ChildRemove(edit.get());
        edit.reset();
    });
    heard.clear();
    Edit* const control = edit.get();
    control->SetEnabled(false);
    EXPECT_EQ(Heard(), "2c");
    EXPECT_FALSE(edit);
}

TEST_F(EditNumberTest, LabelWidthAlignsColons) {
    boost::intrusive_ptr<Edit> other(new Edit);
    other->SetLabel(u"A much longer label:");
    root->ChildPushBack(other);
    const float width = std::max(edit->MeasureLabelWidth(), other->MeasureLabelWidth());
    edit->SetLabelWidth(width);
    other->SetLabelWidth(width);
    EXPECT_EQ(edit->Layout().label.Right(), other->Layout().label.Right());
}

TEST_F(EditNumberTest, TooLowForTheRulerDoesWithoutItAndStaysInside) {
    edit->UI_SetFrame({0, 0, 400, 24});
    kroui::limner::RecordingLimner limner;
    edit->UI_Draw(&limner);
    EXPECT_THAT(limner.Operations(), Not(Contains(StartsWith("Text \"-96\" 9"))));
    EXPECT_EQ(edit->Layout().track.top, 12);
    window.Click({Track().Right(), 12});
    EXPECT_EQ(edit->GetValue(), 48);
}

TEST_F(EditNumberTest, VerticalRulerStacksTheParts) {
    ruler->SetVertical(true);
    ruler->SetValueRange(48, -96);
    edit->UI_SetFrame({0, 0, 80, 260});
    edit->SetSliderStretches(true);
    edit->RecalcLayout();
    window.Paint();
    EXPECT_GT(Track().height, 150);
    EXPECT_LT(edit->Layout().label.Bottom(), Track().top);
    EXPECT_GT(edit->Layout().number.top, Track().Bottom());
    window.Click({Track().left, Track().top});
    EXPECT_EQ(edit->GetValue(), 48) << "up is more";
    EXPECT_FLOAT_EQ(ruler->GetPixel(48), Track().top);
}

TEST_F(EditNumberTest, ArchiveRulerFollowsTheBoundsUntilItIsTold) {
    boost::intrusive_ptr<UI_EditNumber_Horizontal> archived(new UI_EditNumber_Horizontal);
    RulerSettings settings;
    settings.type = RulerSettings::kLinear;
    settings.label1.SetReference("($$$/Test/Slow=Slow)");
    archived->SetArchiveRuler(settings);
    EXPECT_EQ(archived->GetRuler()->GetLabel1(), u"Slow");
    archived->SetMinValue(-12);
    archived->SetMaxValue(12);
    EXPECT_EQ(archived->GetRuler()->GetFirstValue(), -12);
    archived->GetRuler()->SetValueRange(12, -12);
    archived->SetDecimalPlaces(1);
    archived->SetIncrement(0.5);
    EXPECT_EQ(archived->GetRuler()->GetFirstValue(), 12) << "its user's word stands";
    settings.type = RulerSettings::kLogarithmic;
    archived->SetArchiveRuler(settings);
    EXPECT_NE(dynamic_cast<kroui::utility::LogRuler*>(archived->GetRuler().get()), nullptr);
}

TEST_F(EditNumberTest, ArchiveMakesBothClassesByName) {
    for (const char* const name : {"uit::controls::UI_EditNumber", "uit::controls::UI_EditNumber_Horizontal"}) {
        const auto node = kroui::ui::AdapterRegistry::Get().Create(name);
        ASSERT_TRUE(node);
        EXPECT_EQ(node->UI_GetPropertyTable().className, name);
    }
}

TEST_F(EditNumberTest, DrawingShowsLabelRulerNumberAndUnit) {
    kroui::limner::RecordingLimner limner;
    edit->SetValue(-5.25);
    edit->UI_Draw(&limner);
    for (const char* const text : {"Text \"Left:\" 12", "Text \"-96\" 9", "Text \"0\" 9", "Text \"48\" 9",
                                   "Text \"-5.25\" 12 #4DA3FF", "Text \"dB\" 12"})
        EXPECT_THAT(limner.Operations(), Contains(StartsWith(text)));
}

} // namespace
} // namespace uit::controls
