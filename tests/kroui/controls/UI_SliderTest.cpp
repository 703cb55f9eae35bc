#include "kroui/controls/UI_Slider.h"

#include "ControlsFixture.h"

namespace kroui::controls {
namespace {

using ui::kCommand;
using ui::Key;

// The track is 200 pixels long, from x = 108 to 308: two pixels a unit.
class SliderTest : public test::ControlsTest {
protected:
    SliderTest() {
        slider->SetIncrement(1);
        slider->SetValue(50);
        slider->SetDefaultValue(10);
        Listen(*slider);
        fWindow.Paint();
    }

    boost::intrusive_ptr<UI_Slider> slider = Add<UI_Slider>({100, 100, 216, 24});
};

TEST_F(SliderTest, KnobIsDraggedRelatively) {
    fWindow.Drag({212, 112}, {252, 112}, 4); // taken 4 pixels beside its middle
    EXPECT_EQ(slider->GetValue(), 70);
    EXPECT_EQ(Heard(), "011112c");
}

TEST_F(SliderTest, PressOnTheTrackBringsTheKnobThereAndDragsOn) {
    fWindow.Press({148, 112});
    EXPECT_EQ(slider->GetValue(), 20);
    fWindow.MoveTo({168, 140});
    EXPECT_EQ(slider->GetValue(), 30);
    fWindow.Release();
    EXPECT_EQ(Heard(), "0112c");
}

TEST_F(SliderTest, DirectionsFollowOrientationAndInversion) {
    const struct {
        bool vertical, inverted;
        Point press;
        double value;
    } cases[] = {
        {false, false, {148, 112}, 20},
        {false, true, {148, 112}, 80},
        {true, false, {112, 148}, 80},
        {true, true, {112, 148}, 20},
    };
    for (const auto& c : cases) {
        slider->UI_SetFrame(c.vertical ? Rect{100, 100, 24, 216} : Rect{100, 100, 216, 24});
        slider->SetVertical(c.vertical);
        slider->SetInvert(c.inverted);
        slider->SetValue(50);
        fWindow.Click(c.press);
        EXPECT_EQ(slider->GetValue(), c.value) << c.vertical << c.inverted;
    }
}

TEST_F(SliderTest, DoubleClickAndCtrlClickReset) {
    fWindow.Click({208, 112}, kCommand);
    EXPECT_EQ(slider->GetValue(), 10);
    slider->SetValue(50);
    fWindow.Click({300, 112}, kCommand);
    EXPECT_EQ(slider->GetValue(), 10) << "Ctrl-click does not bring the knob there first";
    slider->SetValue(50);
    fWindow.DoubleClick({208, 112});
    EXPECT_EQ(slider->GetValue(), 10);
    EXPECT_EQ(Heard(), "012c012c012c");
}

TEST_F(SliderTest, FewStepsAreTakenOneByOne) {
    slider->SetMinMaxValue(-12, 12, 0);
    slider->SetDecimalPlaces(1);
    fWindow.Drag({208, 112}, {208 + 3 * 200 / 24.F + 3, 112}, 5);
    EXPECT_EQ(slider->GetValue(), 3);
}

TEST_F(SliderTest, LosingThePointerAbandons) {
    fWindow.Press({208, 112});
    fWindow.MoveTo({248, 112});
    EXPECT_EQ(slider->GetValue(), 70);
    fWindow.Window().Deactivated();
    EXPECT_EQ(slider->GetValue(), 50);
    EXPECT_EQ(Heard(), "013");
}

TEST_F(SliderTest, SetValueRepaintsOnlyBetweenOldAndNewKnob) {
    slider->SetValue(60); // the knob's middle from 208 to 228
    fWindow.Paint();
    ASSERT_EQ(fWindow.LastDamage().size(), 1U);
    const Rect damage = fWindow.LastDamage()[0];
    EXPECT_LE(damage.left, 200);
    EXPECT_GE(damage.Right(), 236);
    EXPECT_LE(damage.width, 40);
    EXPECT_LE(damage.height, 20);
}

TEST_F(SliderTest, FillBeginsAtZeroWhereTheRangeHasBothSigns) {
    slider->SetMinMaxValue(-100, 100, 0);
    slider->SetValue(-50); // between x 158 and 208
    fWindow.MoveTo({10, 10});
    const limner::ImagePtr picture = fWindow.Snapshot();
    const auto pixel = [&](int x) {
        return picture->Pixels()[static_cast<std::size_t>(112 * picture->Stride() / 4 + x)];
    };
    EXPECT_EQ(pixel(190), 0xFF4DA3FFU);
    EXPECT_NE(pixel(130), 0xFF4DA3FFU);
    EXPECT_NE(pixel(230), 0xFF4DA3FFU);
}

} // namespace
} // namespace kroui::controls
