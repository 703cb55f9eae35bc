#include "FakeFilter.h"
#include "PanelHost.h"
#include "kroui/controls/UI_HotTextNumber.h"
#include "kroui/controls/UI_Popup.h"
#include "kroui/controls/UI_StaticText.h"
#include "kroui/limner/RecordingLimner.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/GenericParameterInfo.h"
#include "qocui/ui/CorrectionMeterView.h"
#include "uit/controls/UI_EditNumber.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>

using namespace kroui;
using kroui::controls::UI_HotTextNumber;
using kroui::controls::UI_Popup;
using kroui::controls::UI_StaticText;
using qoc::components::GenericParameterInfo;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using uit::controls::UI_EditNumber;

namespace {

enum Index : int {
    kChannel = 0,
    kFFTSize = 1,
    kCalibration = 3,
    kKey = 4,
    kScale = 5,
    kSensitivity = 6,
    kAttack = 7,
    kCorrection = 8,
};

// A filter whose parameters have the ranges of the effect.
class PitchFilter : public test::FakeFilter {
public:
    PitchFilter()
        : FakeFilter(9, qoc::components::kPitchCorrectComponentID),
          fInfos{GenericParameterInfo({.lo = 0, .hi = 2}), GenericParameterInfo({.lo = 410, .hi = 470}),
                 GenericParameterInfo({.lo = 0, .hi = 100}), GenericParameterInfo({.lo = 0.5F, .hi = 500.5F}),
                 GenericParameterInfo({.lo = 0.5F, .hi = 2})} {}

    const GenericParameterInfo* GetParameterInfo(int index) const override {
        switch (index) {
        case kChannel: return &fInfos[0];
        case kCalibration: return &fInfos[1];
        case kSensitivity: return &fInfos[2];
        case kAttack: return &fInfos[3];
        case kCorrection: return &fInfos[4];
        default: return nullptr;
        }
    }

    // As the effect does: the channel's range ends at their number.
    void SetLayout(const kromediatypes::AudioChannelLayout& layout) {
        fInfos[0].SetHiBound(static_cast<float>(layout.size()));
        Prepare(44100, 64, layout);
    }

private:
    std::array<GenericParameterInfo, 5> fInfos;
};

class AutoPitchCorrectViewTest : public test::PanelHost<> {
protected:
    AutoPitchCorrectViewTest() : PanelHost({600, 400}) {}

    void Open(const std::vector<std::pair<int, float>>& stored = {},
              const kromediatypes::AudioChannelLayout& layout = kromediatypes::AudioChannelLayout::Stereo()) {
        fFilter.reset(new PitchFilter);
        fFilter->SetLayout(layout);
        fFilter->Store(kCorrection, 1.0F / 3); // a ratio of 1
        for (const auto& [index, value] : stored)
            fFilter->Store(index, value);
        ShowPanelOf(fFilter);
        fFilter->TakeLog();
    }
    void Change(int index, float value) {
        fFilter->Store(index, value);
        Poll();
    }
    int Shown(const char* id) { return Find<UI_Popup>(id).GetValue(); }
    bool IsEnabled(const char* id) { return Find<kroui::controls::UI_ControlView>(id).IsEnabled(); }
    std::vector<std::string> Items(const char* id) {
        std::vector<std::string> texts;
        for (int i = 0; i < Find<UI_Popup>(id).GetItemCount(); ++i)
            texts.push_back(krocore::ToStdString(Find<UI_Popup>(id).GetItemText(i)));
        return texts;
    }
    // Chooses as a user at the keyboard does.
    void Choose(const char* id, int item) {
        Find<UI_Popup>(id).UI_TakeFocus();
        while (Shown(id) < item)
            fWindow.PressKey(ui::Key::kDown);
        while (Shown(id) > item)
            fWindow.PressKey(ui::Key::kUp);
    }
    Point Knob(const char* id) {
        const UI_EditNumber& slider = Find<UI_EditNumber>(id);
        const Rect track = slider.Layout().track;
        const double part = (slider.GetValue() - slider.GetMinValue()) / (slider.GetMaxValue() - slider.GetMinValue());
        return slider.UI_LocalToWindow({track.left + static_cast<float>(part) * track.width, track.top});
    }
    std::string Correction() { return krocore::ToStdString(Find<UI_StaticText>("CorrectionID").Text()); }

    boost::intrusive_ptr<PitchFilter> fFilter;
};

TEST_F(AutoPitchCorrectViewTest, PopupsHoldTheirItemsInTheOrderOfTheStoredValues) {
    Open();
    EXPECT_THAT(Items("ScaleID"), ElementsAre("Major", "Minor", "Chromatic"));
    EXPECT_THAT(Items("KeyID"), ElementsAre("D", "C#", "C", "B", "A#", "A", "G#", "G", "F#", "F", "E", "D#"));
    EXPECT_THAT(Items("ResolutionID"), ElementsAre("1024", "2048", "4096"));
    EXPECT_THAT(Items("ChannelID"), ElementsAre("Left", "Right"));
    Open({}, kromediatypes::AudioChannelLayout::Mono());
    EXPECT_THAT(Items("ChannelID"), testing::SizeIs(1));
    Open({{kChannel, 0.75F}}, kromediatypes::AudioChannelLayout::Surround51());
    EXPECT_THAT(Items("ChannelID"), testing::SizeIs(6));
    EXPECT_EQ(Shown("ChannelID"), 4);
    fFilter->SetLayout(kromediatypes::AudioChannelLayout::Stereo()); // while the panel is open
    Poll();
    EXPECT_THAT(Items("ChannelID"), ElementsAre("Left", "Right"));
    EXPECT_EQ(Shown("ChannelID"), 1);
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty());
}

TEST_F(AutoPitchCorrectViewTest, StoredValuesSelectItemsFromTheFirstOnAndAtEveryPoll) {
    struct Case {
        int index;
        const char* id;
        float stored;
        int item;
    };
    const Case cases[] = {
        {kScale, "ScaleID", 0.34F, 1},
        {kScale, "ScaleID", 0.33F, 0},
        {kScale, "ScaleID", 1, 2},
        {kScale, "ScaleID", 7, 2},
        {kKey, "KeyID", 0, 0},
        {kKey, "KeyID", 0.99F, 11},
        {kKey, "KeyID", 1, 11},
        {kKey, "KeyID", 1e30F, 11},
        {kKey, "KeyID", 0.5F, 6},
        {kChannel, "ChannelID", 0.4F, 0},
        {kChannel, "ChannelID", 0.5F, 1},
        {kChannel, "ChannelID", 1, 1},
        {kFFTSize, "ResolutionID", 0.5F, 1},
        {kFFTSize, "ResolutionID", 1, 2},
    };
    for (const Case& each : cases) {
        Open({{each.index, each.stored}});
        EXPECT_EQ(Shown(each.id), each.item) << each.id << ' ' << each.stored;
    }
    Open();
    for (const Case& each : cases) {
        Change(each.index, each.stored);
        EXPECT_EQ(Shown(each.id), each.item) << each.id << ' ' << each.stored;
    }
}

TEST_F(AutoPitchCorrectViewTest, ChoosingAnItemWritesItsStoredValueAndReadsBack) {
    Open();
    struct Case {
        int index;
        const char* id;
        int item;
        float stored;
    };
    const Case cases[] = {
        {kScale, "ScaleID", 1, 0.5F},      {kScale, "ScaleID", 2, 1},         {kScale, "ScaleID", 0, 0},
        {kKey, "KeyID", 1, 0.125F},        {kKey, "KeyID", 0, 1.0F / 24},     {kKey, "KeyID", 11, 23.0F / 24},
        {kChannel, "ChannelID", 1, 0.75F}, {kChannel, "ChannelID", 0, 0.25F}, {kFFTSize, "ResolutionID", 1, 0.5F},
        {kFFTSize, "ResolutionID", 2, 1},  {kFFTSize, "ResolutionID", 0, 0},
    };
    for (const Case& each : cases) {
        Choose(each.id, each.item);
        EXPECT_NEAR(fFilter->GetParameterValue(each.index), each.stored, 1e-6) << each.id << ' ' << each.item;
        Poll();
        EXPECT_EQ(Shown(each.id), each.item) << each.id;
    }
    EXPECT_THAT(fFilter->TakeLog(), Contains("set 4 0.041666668"));
}

TEST_F(AutoPitchCorrectViewTest, TheChromaticScaleHasNoKey) {
    Open({{kScale, 1}});
    EXPECT_FALSE(IsEnabled("KeyID"));
    EXPECT_FALSE(IsEnabled("KeyLabelID"));
    Choose("ScaleID", 1);
    EXPECT_TRUE(IsEnabled("KeyID"));
    EXPECT_TRUE(IsEnabled("KeyLabelID"));
    Choose("ScaleID", 2);
    EXPECT_FALSE(IsEnabled("KeyID"));
    Change(kScale, 0);
    EXPECT_TRUE(IsEnabled("KeyID"));
    EXPECT_TRUE(IsEnabled("KeyLabelID"));
}

TEST_F(AutoPitchCorrectViewTest, ADragOfASliderIsOneEditAndItsEchoDoesNotMoveIt) {
    Open({{kAttack, 0.5F}, {kSensitivity, 0.25F}});
    const UI_EditNumber& attack = Find<UI_EditNumber>("AttackID");
    EXPECT_EQ(attack.GetMinValue(), 0.5);
    EXPECT_EQ(attack.GetMaxValue(), 500.5);
    EXPECT_NEAR(attack.GetValue(), 250.5, 1e-3);
    EXPECT_NEAR(Find<UI_EditNumber>("SensitivityID").GetValue(), 25, 1e-4);

    const Point knob = Knob("AttackID");
    fWindow.Press(knob);
    fWindow.MoveTo({knob.x - 40, knob.y});
    const double dragged = attack.GetValue();
    EXPECT_LT(dragged, 200);
    const auto during = fFilter->TakeLog();
    ASSERT_GE(during.size(), 3U);
    EXPECT_EQ(during[0], "begin 7");
    EXPECT_EQ(during[1], "set 7 0.5");
    EXPECT_NEAR(fFilter->GetParameterValue(kAttack), (dragged - 0.5) / 500, 1e-5);

    Change(kAttack, 0.9F);
    EXPECT_EQ(attack.GetValue(), dragged);
    fWindow.Release();
    EXPECT_EQ(fFilter->TakeLog().back(), "end 7");
    EXPECT_NEAR(fFilter->GetParameterValue(kAttack), (dragged - 0.5) / 500, 1e-5) << "the end writes what is shown";
    Change(kAttack, 0.25F);
    EXPECT_NEAR(attack.GetValue(), 125.5, 1e-3);

    const Point other = Knob("SensitivityID");
    fWindow.Press(other);
    fWindow.MoveTo({other.x + 30, other.y});
    EXPECT_GT(fFilter->GetParameterValue(kSensitivity), 0.3F);
    fWindow.PressKey(ui::Key::kEscape);
    EXPECT_NEAR(fFilter->GetParameterValue(kSensitivity), 0.25, 1e-6);
    EXPECT_EQ(fFilter->TakeLog().back(), "end 6");
    fWindow.Release();
}

TEST_F(AutoPitchCorrectViewTest, TheAttackRulerSaysSlowAndFastAtItsEnds) {
    Open();
    const auto& ruler = Find<UI_EditNumber>("AttackID").GetRuler();
    EXPECT_EQ(ruler->GetLabel1(), u"Slow");
    EXPECT_EQ(ruler->GetLabel2(), u"Fast");
    EXPECT_EQ(ruler->GetFirstValue(), 0.5);
    EXPECT_EQ(ruler->GetLastValue(), 500.5);
}

// With the effect itself, whose stored attack grows from slow, 500 ms, to fast, 0.5 ms.
TEST_F(AutoPitchCorrectViewTest, TheAttackSliderRunsFromSlowAtTheLeftToFastAsTheStoredValueDoes) {
    const auto effect = qoc::components::CreateEffect(qoc::components::kPitchCorrectComponentID);
    ShowPanelOf(effect);
    auto& attack = Find<UI_EditNumber>("AttackID");
    const Rect track = attack.Layout().track;
    for (const float part : {0.0F, 0.25F, 0.6F, 0.95F, 1.0F}) {
        fWindow.Click(attack.UI_LocalToWindow({track.left + part * track.width, track.Centre().y}));
        EXPECT_NEAR(effect->GetParameterValue(kAttack), part, 1e-3);
        EXPECT_NEAR(attack.GetValue(), 500 - part * 499.5, 0.3) << "milliseconds";
    }
    const auto placeOf = [&](std::u16string_view text) {
        const auto& ticks = attack.GetRuler()->GetTicks(&fSupplier);
        const auto at =
            std::ranges::find(ticks, text, [](const auto& tick) -> std::u16string_view { return tick.text; });
        return at != ticks.end() ? at->pixel : -1;
    };
    EXPECT_FLOAT_EQ(placeOf(u"Slow"), track.left);
    EXPECT_FLOAT_EQ(placeOf(u"Fast"), track.Right());
}

TEST_F(AutoPitchCorrectViewTest, TheCalibrationWritesWhileItChangesAndAtItsEndButNotAtItsStart) {
    Open({{kCalibration, 0.5F}});
    const UI_HotTextNumber& field = Find<UI_HotTextNumber>("CalibrationID");
    EXPECT_EQ(field.GetMinValue(), 410);
    EXPECT_EQ(field.GetMaxValue(), 470);
    EXPECT_NEAR(field.GetValue(), 440, 1e-4);
    const Point number = ui::HeadlessWindow::CentreOf(field);
    fWindow.Press(number);
    fWindow.MoveTo({number.x + 1, number.y});
    EXPECT_THAT(fFilter->TakeLog(), testing::Not(Contains("set 3 0.5"))) << "the start has the old value";
    fWindow.MoveTo({number.x + 12, number.y});
    const double dragged = field.GetValue();
    EXPECT_GT(dragged, 441);
    EXPECT_NEAR(fFilter->GetParameterValue(kCalibration), (dragged - 410) / 60, 1e-5);
    fFilter->TakeLog();
    fWindow.Release();
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre(StartsWith("set 3 ")));
}

TEST_F(AutoPitchCorrectViewTest, TheCorrectionIsShownInCentsAndOnTheMeter) {
    Open();
    EXPECT_EQ(Correction(), "0.0 cents");
    // The ratio's natural range is 0.5 to 2.
    const auto show = [&](double cents) {
        Change(kCorrection, static_cast<float>((std::exp2(cents / 1200) - 0.5) / 1.5));
    };
    const auto bar = [&] {
        limner::RecordingLimner limner;
        fView->UI_FindNode("MeterID")->UI_Draw(&limner);
        const auto& drawn = limner.Operations();
        const auto found =
            std::find_if(drawn.begin(), drawn.end(), [](const auto& each) { return each.ends_with("#CC0000E6"); });
        return found != drawn.end() ? *found : std::string();
    };
    const std::string atRest = bar();
    show(50.04);
    EXPECT_EQ(Correction(), "50.0 cents");
    const std::string sharp = bar();
    show(-12.3);
    EXPECT_EQ(Correction(), "-12.3 cents");
    const std::string flat = bar();
    show(-900);
    EXPECT_EQ(Correction(), "-900.0 cents") << "the number goes on where the meter ends";
    EXPECT_NE(sharp, atRest);
    EXPECT_NE(flat, atRest);
    show(0);
    EXPECT_EQ(bar(), atRest);
    EXPECT_THAT(fFilter->TakeLog(), testing::Not(Contains(StartsWith("set "))));
}

TEST_F(AutoPitchCorrectViewTest, WhatCannotBeAutomatedIsDisabledWhileTheFilterSaysSo) {
    Open();
    for (const char* const id : {"ChannelID", "ResolutionID", "CalibrationID"})
        EXPECT_TRUE(IsEnabled(id)) << id;
    fFilter->SetCanChangeNonAutomatableParameters(false);
    Poll();
    for (const char* const id : {"ChannelID", "ResolutionID", "CalibrationID"})
        EXPECT_FALSE(IsEnabled(id)) << id;
    EXPECT_TRUE(IsEnabled("ScaleID"));
    EXPECT_TRUE(IsEnabled("AttackID"));
    fFilter->SetCanChangeNonAutomatableParameters(true);
    Poll();
    for (const char* const id : {"ChannelID", "ResolutionID", "CalibrationID"})
        EXPECT_TRUE(IsEnabled(id)) << id;
}

TEST_F(AutoPitchCorrectViewTest, AFilterThatDescribesNothingLeavesAWorkingPanel) {
    const boost::intrusive_ptr<test::FakeFilter> plain(
        new test::FakeFilter(9, qoc::components::kPitchCorrectComponentID));
    ShowPanelOf(plain);
    EXPECT_EQ(Find<UI_Popup>("ChannelID").GetItemCount(), 0);
    EXPECT_EQ(Shown("ChannelID"), -1);
    fWindow.Drag(Knob("SensitivityID"), {Knob("SensitivityID").x + 30, Knob("SensitivityID").y});
    EXPECT_THAT(plain->TakeLog(), IsEmpty()) << "no range, so no value to write";
    Choose("ScaleID", 2);
    EXPECT_THAT(plain->TakeLog(), Contains("set 5 1"));
}

} // namespace
