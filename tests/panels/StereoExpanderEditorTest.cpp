#include "FakeFilter.h"
#include "PanelHost.h"
#include "kroui/utility/RulerBase.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "uit/controls/UI_EditNumber.h"

#include <gmock/gmock.h>

using namespace kroui;
using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterParameterChange;
using testing::Each;
using testing::SizeIs;
using uit::controls::UI_EditNumber;

namespace {

constexpr int kPan = 0;
constexpr int kExpand = 1;

// Writes down what is changed and bracketed.
class Listener : public kroaudiofilterhost::AudioFilterListener {
public:
    void ParameterChanged(AudioFilter& /*filter*/, const AudioFilterParameterChange& change) override {
        if (!change.quiet) changes.emplace_back(change.index, change.newValue);
    }
    void ParameterEditBegun(AudioFilter& /*filter*/, int /*index*/) override { ++brackets; }
    void ParameterEditEnded(AudioFilter& /*filter*/, int /*index*/) override { ++brackets; }

    std::vector<std::pair<int, float>> changes;
    int brackets = 0;
};

// The panel of the real effect, which says its own ranges.
class StereoExpanderEditorTest : public test::PanelHost<> {
protected:
    StereoExpanderEditorTest() : PanelHost({600, 200}) {
        fFilter = qoc::components::CreateEffect(qoc::components::kStereoExpanderComponentID);
        fFilter->Prepare(44100, 64, kromediatypes::AudioChannelLayout::Stereo());
        ShowPanelOf(fFilter);
        fFilter->AddListener(fListener);
    }
    ~StereoExpanderEditorTest() override { fFilter->RemoveListener(fListener); }

    UI_EditNumber& Slider(int index) {
        return dynamic_cast<UI_EditNumber&>(*fView->UI_FindNode(index == kPan ? "SE_Slider_Pan" : "SE_Slider_Expand"));
    }
    Point Knob(int index) {
        const UI_EditNumber& slider = Slider(index);
        const Rect track = slider.Layout().track;
        const double part = (slider.GetValue() - slider.GetMinValue()) / (slider.GetMaxValue() - slider.GetMinValue());
        return slider.UI_LocalToWindow({track.left + static_cast<float>(part) * track.width, track.top});
    }

    boost::intrusive_ptr<AudioFilter> fFilter;
    Listener fListener;
};

TEST_F(StereoExpanderEditorTest, RangesComeFromTheEffectAndARulerFromZeroStartsJustAboveIt) {
    EXPECT_EQ(Slider(kPan).GetMinValue(), -100);
    EXPECT_EQ(Slider(kPan).GetMaxValue(), 100);
    EXPECT_EQ(Slider(kPan).GetValue(), 0);
    EXPECT_EQ(Slider(kExpand).GetMinValue(), 0);
    EXPECT_EQ(Slider(kExpand).GetMaxValue(), 300);
    EXPECT_EQ(Slider(kExpand).GetValue(), 100);
    EXPECT_EQ(Slider(kPan).GetRuler()->GetFirstValue(), -100);
    EXPECT_FLOAT_EQ(static_cast<float>(Slider(kExpand).GetRuler()->GetFirstValue()), 0.001F);
    EXPECT_EQ(Slider(kExpand).GetRuler()->GetLastValue(), 300);
}

TEST_F(StereoExpanderEditorTest, ADragWritesEveryStepButItsStartAndBracketsNothing) {
    const Point knob = Knob(kExpand);
    fWindow.Press(knob);
    EXPECT_THAT(fListener.changes, SizeIs(0));
    for (const float dx : {20.0F, 40.0F}) {
        fWindow.MoveTo({knob.x + dx, knob.y});
        EXPECT_EQ(fFilter->GetParameterValue(kExpand), static_cast<float>(Slider(kExpand).GetValue() / 300));
    }
    fWindow.Release();
    EXPECT_GT(Slider(kExpand).GetValue(), 110);
    EXPECT_THAT(fListener.changes, SizeIs(2));
    EXPECT_THAT(fListener.changes, Each(testing::Field(&std::pair<int, float>::first, kExpand)));
    EXPECT_EQ(fListener.brackets, 0);

    const double shown = Slider(kExpand).GetValue();
    fWindow.Advance(0.1);
    EXPECT_NEAR(Slider(kExpand).GetValue(), shown, 1e-4) << "the poll shows what is shown";
}

TEST_F(StereoExpanderEditorTest, EscapeInADragWritesTheOldValueAgain) {
    fWindow.Press(Knob(kPan));
    fWindow.MoveTo({Knob(kPan).x - 30, Knob(kPan).y});
    EXPECT_LT(fFilter->GetParameterValue(kPan), 0.49F);
    fWindow.PressKey(ui::Key::kEscape);
    EXPECT_EQ(fFilter->GetParameterValue(kPan), 0.5F);
}

TEST_F(StereoExpanderEditorTest, KeysStepByATenthOfAPercentAndWriteTheSlidersOwnParameter) {
    fWindow.Click(Knob(kPan));
    fWindow.PressKey(ui::Key::kRight);
    EXPECT_NEAR(Slider(kPan).GetValue(), 0.1, 1e-6);
    EXPECT_NEAR(fFilter->GetParameterValue(kPan), 0.5005, 1e-6);
    EXPECT_EQ(fFilter->GetParameterValue(kExpand), fFilter->GetParameterInfo(kExpand)->GetDefault());
}

TEST_F(StereoExpanderEditorTest, ChangesFromElsewhereMoveTheSliderAtTheNextPoll) {
    fFilter->SetParameterValue(kPan, 0.25F);
    fFilter->SetParameterValue(kExpand, 0.5F);
    EXPECT_EQ(Slider(kPan).GetValue(), 0);
    fWindow.Advance(0.011);
    EXPECT_NEAR(Slider(kPan).GetValue(), -50, 1e-4);
    EXPECT_NEAR(Slider(kExpand).GetValue(), 150, 1e-4);
}

// A filter that says nothing of its parameters has a panel all the same.
TEST_F(StereoExpanderEditorTest, AFilterWithoutDescriptionsIsShownAndLeftAlone) {
    const boost::intrusive_ptr<test::FakeFilter> plain(
        new test::FakeFilter(2, qoc::components::kStereoExpanderComponentID));
    ShowPanelOf(plain);
    fWindow.Click(ui::HeadlessWindow::CentreOf(*fView->UI_FindNode("SE_Slider_Pan")));
    plain->Store(0, 0.7F);
    fWindow.Advance(0.1);
    EXPECT_THAT(plain->TakeLog(), Each(testing::StartsWith("quiet ")));
}

} // namespace
