#include "PanelFixture.h"
#include "kroui/controls/UI_HotTextNumber.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qocui/ui/NotchFilterGraph.h"

using namespace kroui;
using kroui::controls::UI_ControlView;
using kroui::controls::UI_HotTextNumber;
using qocui::ui::NotchFilterGraph;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

enum Index { kGain = 6, kEnable = 12, kShared = 18, kWidth = 21, kLinked = 22, kQuiet = 25, kParameters = 29 };

// Describes its parameters as the effect does.
class DescribedFake : public test::FakeFilter {
public:
    DescribedFake() : FakeFilter(kParameters, qoc::components::kNotchComponentID) {}
    const kroaudiofilterhost::AudioFilterParameterInfo* GetParameterInfo(int index) const override {
        return fEffect->GetParameterInfo(index);
    }

protected:
    void OnPrepare(std::size_t maximumBlock) override {
        fEffect->Prepare(GetSampleRate(), maximumBlock, kromediatypes::AudioChannelLayout::Stereo());
    }

private:
    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fEffect =
        qoc::components::CreateEffect(qoc::components::kNotchComponentID);
};

class NotchFilterEditorTest : public test::PanelTest {
protected:
    NotchFilterEditorTest() : PanelTest(kParameters, qoc::components::kNotchComponentID) {
        fFilter.reset(new DescribedFake);
        fFilter->Prepare(44100, 64, kromediatypes::AudioChannelLayout::Stereo());
        for (int i = 0; i < 6; ++i) {
            StoreNatural(i, 100 * (i + 1));
            StoreNatural(kGain + i, -6 * (i + 1));
            fFilter->Store(kEnable + i, 1);
        }
        StoreNatural(kShared, -40);
    }
    float Normalised(int index, double natural) const {
        return fFilter->GetParameterInfo(index)->ToNormalised(static_cast<float>(natural));
    }
    void StoreNatural(int index, double natural) { fFilter->Store(index, Normalised(index, natural)); }
    UI_HotTextNumber& Field(const std::string& id) { return Find<UI_HotTextNumber>(id); }
    NotchFilterGraph& Graph() { return Find<NotchFilterGraph>("Graph"); }
    bool IsEnabled(const std::string& id) { return Find<UI_ControlView>(id).IsEnabled(); }
    void Type(const std::string& id, std::u16string_view text) {
        fWindow.DoubleClick(ui::HeadlessWindow::CentreOf(Field(id)));
        fWindow.PressKey(ui::Key::kCharacter, ui::kCommand, u'a');
        fWindow.Type(text);
        fWindow.PressKey(ui::Key::kEnter);
    }
};

TEST_F(NotchFilterEditorTest, ControlsShowTheParametersAndFollowThem) {
    fFilter->Store(kEnable + 3, 0);
    fFilter->Store(kQuiet, 1);
    Open();
    for (int i = 0; i < 6; ++i) {
        const std::string number = std::to_string(i + 1);
        EXPECT_NEAR(Field("Frequency" + number).GetValue(), 100 * (i + 1), 1e-2);
        EXPECT_NEAR(Field("Gain" + number).GetValue(), -6 * (i + 1), 1e-4);
        EXPECT_EQ(IsChecked("Enable" + number), i != 3);
    }
    EXPECT_NEAR(Field("FixGainHotText").GetValue(), -40, 1e-4);
    EXPECT_TRUE(IsChecked("UltraQuiet"));
    EXPECT_FALSE(IsChecked("FixGainCheckbox"));
    EXPECT_EQ(Field("Gain2").UI_GetAccessibleInfo().name, u"Gain 2");

    StoreNatural(4, 9000);
    StoreNatural(kGain + 5, 12);
    fFilter->Store(kEnable + 3, 1);
    Poll();
    EXPECT_NEAR(Field("Frequency5").GetValue(), 9000, 1e-2);
    EXPECT_NEAR(Field("Gain6").GetValue(), 12, 1e-4);
    EXPECT_TRUE(IsChecked("Enable4"));
    EXPECT_NEAR(Graph().GetCurvePoints()[4].coordinates.horizontal, 9000, 1e-2);
    EXPECT_THAT(TakeEdits(), IsEmpty());
}

TEST_F(NotchFilterEditorTest, TheWidthIsChosenAtItsThresholdsAndWrittenQuietly) {
    Open();
    EXPECT_THAT(Items("NotchWidth"), ElementsAre("Narrow", "Very Narrow", "Super Narrow"));
    const struct {
        float stored;
        int item;
    } cases[] = {{0.44F, 0}, {0.45F, 1}, {0.5F, 1}, {0.89F, 1}, {0.9F, 2}, {1, 2}, {0, 0}};
    for (const auto& each : cases) {
        fFilter->Store(kWidth, each.stored);
        Poll();
        EXPECT_EQ(Popup("NotchWidth").GetValue(), each.item) << each.stored;
    }
    fFilter->TakeLog();
    PressIn("NotchWidth", ui::Key::kDown);
    PressIn("NotchWidth", ui::Key::kDown);
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("quiet 21 0.5", "quiet 21 1"));
}

TEST_F(NotchFilterEditorTest, SwitchesWriteZeroAndOne) {
    Open();
    for (const char* id : {"Enable2", "UltraQuiet", "FixGainCheckbox", "Enable2"})
        Click(id);
    EXPECT_THAT(TakeEdits(), ElementsAre("set 13 0", "set 25 1", "set 22 1", "set 13 1"));
}

TEST_F(NotchFilterEditorTest, ATypedFrequencyIsOneGestureAndComesIntoSight) {
    Open();
    Graph().SetCurrentRange(50, 1000, 96, -96);
    Type("Frequency3", u"5k");
    const auto log = TakeEdits();
    EXPECT_EQ(log.front(), "begin 2");
    EXPECT_EQ(log[log.size() - 2], SetEntry(2, Normalised(2, 5000)));
    EXPECT_EQ(log.back(), "end 2");
    EXPECT_NEAR(Graph().GetHorizontalEnd(), 4999.5, 1e-2);
    EXPECT_EQ(Graph().GetHorizontalStart(), 50);
}

TEST_F(NotchFilterEditorTest, EscapeInADragOfANumberTakesItBackAndClosesTheBracket) {
    Open();
    const Point field = ui::HeadlessWindow::CentreOf(Field("Gain1"));
    fWindow.Press(field);
    fWindow.MoveTo({field.x - 60, field.y});
    EXPECT_LT(fFilter->GetParameterValue(kGain), Normalised(kGain, -8));
    fWindow.PressKey(ui::Key::kEscape);
    EXPECT_NEAR(fFilter->GetParameterValue(kGain), Normalised(kGain, -6), 1e-6);
    EXPECT_EQ(TakeEdits().back(), "end 6");
}

TEST_F(NotchFilterEditorTest, FieldsOfSectionsThatAreOffOrLinkedAreDisabled) {
    fFilter->Store(kEnable + 1, 0.5F);
    fFilter->Store(kEnable + 2, 0.49F);
    Open();
    EXPECT_TRUE(IsEnabled("Frequency2")) << "at one half the fields are on";
    EXPECT_TRUE(IsEnabled("Gain2"));
    EXPECT_FALSE(IsEnabled("Frequency3"));
    EXPECT_FALSE(IsEnabled("Gain3"));
    EXPECT_FALSE(IsEnabled("FixGainHotText"));

    Click("FixGainCheckbox");
    Poll();
    for (int i = 1; i <= 6; ++i)
        EXPECT_FALSE(IsEnabled("Gain" + std::to_string(i))) << i;
    EXPECT_TRUE(IsEnabled("Frequency1"));
    EXPECT_TRUE(IsEnabled("FixGainHotText"));
    for (const auto& point : Graph().GetCurvePoints())
        EXPECT_NEAR(point.coordinates.vertical, -40, 1e-4);

    Type("FixGainHotText", u"-55");
    Poll();
    EXPECT_NEAR(Graph().GetCurvePoints()[5].coordinates.vertical, -55, 1e-4);
}

TEST_F(NotchFilterEditorTest, AnotherSampleRateIsFollowedWithoutWriting) {
    Open();
    EXPECT_EQ(Field("Frequency1").GetMaxValue(), 22050);
    fFilter->Prepare(192000, 64, kromediatypes::AudioChannelLayout::Stereo());
    fWindow.Advance(0.11);
    EXPECT_EQ(Field("Frequency1").GetMaxValue(), 96000);
    const float natural = fFilter->GetParameterInfo(2)->ToNatural(fFilter->GetParameterValue(2));
    EXPECT_NEAR(Field("Frequency3").GetValue(), natural, 1e-2);
    EXPECT_EQ(Graph().GetHorizontalEnd(), 96000);
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty());
}

} // namespace
