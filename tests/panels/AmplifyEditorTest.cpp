#include "FakeFilter.h"
#include "PanelHost.h"
#include "kroui/controls/UI_Checkbox.h"
#include "qoc/components/ComponentIDs.h"
#include "uit/controls/UI_EditNumber.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace kroui;
using kroui::ui::UI_Node;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using uit::controls::UI_EditNumber;

namespace {

constexpr int kLink = 1;
constexpr int kFirstGain = 2;

float Normalised(double decibels) {
    return static_cast<float>((decibels + 96) / 144);
}

class AmplifyEditorTest : public test::PanelHost<> {
protected:
    AmplifyEditorTest() : PanelHost({600, 1700}) {}

    void Open(const kromediatypes::AudioChannelLayout& layout, bool linked, double decibels = 0) {
        fFilter.reset(new test::FakeFilter(34, qoc::components::kAmplifyComponentID));
        fFilter->Prepare(44100, 64, layout);
        fFilter->Store(0, static_cast<float>(layout.size()) / 32);
        fFilter->Store(kLink, linked ? 1 : 0);
        for (int i = kFirstGain; i < 34; ++i)
            fFilter->Store(i, Normalised(decibels));
        ShowPanelOf(fFilter);
        fFilter->TakeLog();
    }
    UI_Node* Container() { return fView->UI_FindNode("GainControlsContainer"); }
    UI_EditNumber& Slider(std::size_t channel) { return dynamic_cast<UI_EditNumber&>(*Container()->Child(channel)); }
    Point Knob(std::size_t channel) {
        const UI_EditNumber& slider = Slider(channel);
        const Rect track = slider.Layout().track;
        const float part = static_cast<float>((slider.GetValue() + 96) / 144);
        return slider.UI_LocalToWindow({track.left + part * track.width, track.top});
    }
    std::vector<double> Shown() {
        std::vector<double> values;
        for (std::size_t i = 0; i < Container()->ChildCount(); ++i)
            values.push_back(Slider(i).GetValue());
        return values;
    }
    static Point Moved(Point p, float dx) { return {p.x + dx, p.y}; }

    boost::intrusive_ptr<test::FakeFilter> fFilter;
};

TEST_F(AmplifyEditorTest, ThereIsANamedSliderForEveryChannelShowingItsGain) {
    Open(kromediatypes::AudioChannelLayout::Stereo(), false, -6);
    ASSERT_EQ(Container()->ChildCount(), 2U);
    EXPECT_EQ(Slider(0).GetLabel(), u"Left");
    EXPECT_EQ(Slider(1).GetLabel(), u"Right");
    EXPECT_NEAR(Slider(1).GetValue(), -6, 1e-4);
    EXPECT_EQ(fView->UI_GetFrame(), (Rect{0, 0, 480, 144})) << "the archive's bounds";
    EXPECT_TRUE(fView->CanScrollContent());

    Open(kromediatypes::AudioChannelLayout::Discrete(32), false);
    ASSERT_EQ(Container()->ChildCount(), 32U);
    EXPECT_EQ(Slider(31).GetLabel(), u"32");
    EXPECT_GT(Container()->UI_GetFrame().height, 1000) << "the container grows with its rows";
    EXPECT_EQ(Slider(0).Layout().track.left, Slider(31).Layout().track.left);
}

TEST_F(AmplifyEditorTest, AnUnlinkedDragWritesOneChannelBetweenItsBrackets) {
    Open(kromediatypes::AudioChannelLayout::Stereo(), false);
    const float pixelsPerDecibel = Slider(1).Layout().track.width / 144;
    fWindow.Drag(Knob(1), Moved(Knob(1), -12 * pixelsPerDecibel), 4);
    const auto log = fFilter->TakeLog();
    EXPECT_EQ(log.front(), "begin 3");
    EXPECT_EQ(log[1], "set 3 " + test::FakeFilter::Number(Normalised(0)));
    EXPECT_EQ(log.back(), "end 3");
    for (std::size_t i = 1; i + 1 < log.size(); ++i)
        EXPECT_THAT(log[i], testing::StartsWith("set 3 "));
    EXPECT_NEAR(Slider(1).GetValue(), -12, 0.5);
    EXPECT_EQ(fFilter->GetParameterValue(3), Normalised(Slider(1).GetValue()));
    EXPECT_EQ(Slider(0).GetValue(), 0);
}

TEST_F(AmplifyEditorTest, ALinkedDragMovesAndWritesEveryChannel) {
    Open(kromediatypes::AudioChannelLayout::Surround51(), true);
    fWindow.Press(Knob(2));
    fWindow.MoveTo(Moved(Knob(2), -20));
    const double shown = Slider(2).GetValue();
    EXPECT_LT(shown, -5);
    EXPECT_THAT(Shown(), Each(testing::DoubleNear(shown, 1e-4)));
    fWindow.Advance(0.1);
    EXPECT_THAT(Shown(), Each(testing::DoubleNear(shown, 1e-4))) << "the poll in mid-drag changes nothing";
    fWindow.Release();

    const auto log = fFilter->TakeLog();
    const std::string value = test::FakeFilter::Number(Normalised(shown));
    std::vector<std::string> begins;
    std::vector<std::string> ends;
    for (int i = 2; i < 8; ++i) {
        begins.push_back("begin " + std::to_string(i));
        begins.push_back("set " + std::to_string(i) + " " + test::FakeFilter::Number(Normalised(0)));
        ends.push_back("end " + std::to_string(i));
        EXPECT_EQ(fFilter->GetParameterValue(i), Normalised(shown));
    }
    EXPECT_EQ(std::vector<std::string>(log.begin(), log.begin() + 12), begins);
    EXPECT_EQ(std::vector<std::string>(log.end() - 6, log.end()), ends);
}

TEST_F(AmplifyEditorTest, EscapeInADragTakesItBackAndClosesTheBracket) {
    Open(kromediatypes::AudioChannelLayout::Mono(), false, -20);
    fWindow.Press(Knob(0));
    fWindow.MoveTo(Moved(Knob(0), 30));
    EXPECT_GT(Slider(0).GetValue(), -15);
    fWindow.PressKey(ui::Key::kEscape);
    EXPECT_NEAR(fFilter->GetParameterValue(2), Normalised(-20), 1e-6);
    EXPECT_EQ(fFilter->TakeLog().back(), "end 2");
    fWindow.MoveTo(Moved(Knob(0), 50));
    fWindow.Release();
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty());
}

TEST_F(AmplifyEditorTest, WhatChangesElsewhereInADragCountsWhenItEnds) {
    Open(kromediatypes::AudioChannelLayout::Stereo(), true);
    fWindow.Press(Knob(0));
    fWindow.MoveTo(Moved(Knob(0), -20));
    fFilter->Store(kLink, 0);
    fFilter->Store(3, 0.5F);
    fWindow.Advance(0.011);
    EXPECT_NEAR(Slider(1).GetValue(), Slider(0).GetValue(), 1e-4) << "not while the drag lasts";
    fWindow.Release();
    EXPECT_NEAR(Slider(1).GetValue(), -24, 1e-4);
    const auto log = fFilter->TakeLog();
    EXPECT_EQ(std::ranges::count(log, "end 2"), 1);
    EXPECT_EQ(std::ranges::count(log, "end 3"), 1) << "its edit began with the drag";
}

TEST_F(AmplifyEditorTest, ChangesFromElsewhereMoveTheControlsAtTheNextPollWithoutEcho) {
    Open(kromediatypes::AudioChannelLayout::Stereo(), false);
    const auto* const link = dynamic_cast<kroui::controls::UI_Checkbox*>(fView->UI_FindNode("LinkChannels"));
    fFilter->Store(2, 0.5F);
    fFilter->Store(3, 2.0F / 3);
    fFilter->Store(kLink, 0.5F);
    fWindow.Advance(0.011);
    EXPECT_NEAR(Slider(0).GetValue(), -24, 1e-4);
    EXPECT_NEAR(Slider(1).GetValue(), 0, 1e-4);
    EXPECT_TRUE(link->IsChecked());
    EXPECT_THAT(fFilter->TakeLog(), Each(testing::StartsWith("quiet ")));
    fFilter->Store(kLink, 0.49F);
    fWindow.Advance(0.011);
    EXPECT_FALSE(link->IsChecked());
}

TEST_F(AmplifyEditorTest, TheCheckBoxWritesTheLinkParameter) {
    Open(kromediatypes::AudioChannelLayout::Stereo(), false);
    UI_Node* const link = fView->UI_FindNode("LinkChannels");
    fWindow.Click(ui::HeadlessWindow::CentreOf(*link));
    fWindow.Click(ui::HeadlessWindow::CentreOf(*link));
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("set 1 1", "set 1 0"));
}

TEST_F(AmplifyEditorTest, OneChangedValueRepaintsThatControlOnly) {
    Open(kromediatypes::AudioChannelLayout::Stereo(), false);
    fWindow.Paint();
    fFilter->Store(2, 0.5F);
    fWindow.Advance(0.011);
    const Rect slider = Slider(0).UI_GetLocalRect();
    const Point origin = Slider(0).UI_LocalToWindow({});
    const Rect allowed = RoundedOut(slider.Offset(origin.x, origin.y));
    ASSERT_FALSE(fWindow.LastDamage().empty());
    for (const Rect& damage : fWindow.LastDamage())
        EXPECT_EQ(Union(allowed, damage), allowed);
    fFilter->Store(2, 0.5F);
    fWindow.Advance(0.1);
    EXPECT_THAT(fWindow.LastDamage(), IsEmpty());
}

TEST_F(AmplifyEditorTest, TwoViewsOnOneFilterFollowEachOther) {
    Open(kromediatypes::AudioChannelLayout::Stereo(), true);
    const auto second = MakeView(fFilter);
    ui::HeadlessWindow other(fSupplier, {600, 300});
    other.Window().SetContent(second);
    fWindow.Drag(Knob(0), Moved(Knob(0), -30));
    other.Advance(0.05);
    const auto* const follower = dynamic_cast<UI_EditNumber*>(second->UI_FindNode("GainControlsContainer")->Child(1));
    EXPECT_NEAR(follower->GetValue(), Slider(0).GetValue(), 1e-4);
    other.Window().SetContent(nullptr);
}

} // namespace
