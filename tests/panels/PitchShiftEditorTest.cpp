#include "PanelHost.h"
#include "qocui/ui/PitchShiftEditorView.h"

#include "FakeFilter.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_HotTextNumber.h"
#include "kroui/controls/UI_RadioButton.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/GenericParameterInfo.h"
#include "uit/controls/UI_EditNumber.h"
#include "uit/controls/UI_OutlineBoxWithLabel.h"

#include <gmock/gmock.h>

#include <cmath>

using namespace kroui;
using kroaudiofilterhost::AudioFilter;
using kroui::controls::UI_Checkbox;
using kroui::controls::UI_HotTextNumber;
using kroui::controls::UI_RadioButton;
using testing::ElementsAre;
using testing::IsEmpty;
using uit::controls::UI_EditNumber;

namespace qocui::ui {

// The arithmetic behind the fields.
class PitchShiftEditorAccess {
public:
    using View = PitchShiftEditorView;
    static std::int32_t MakeWhole(double x) { return View::MakeWhole(x); }
    static double MakeHundredths(double x) { return View::MakeHundredths(x); }
    static double ToRatio(double s, double c) { return View::ConvertSemitoneAndCentsToRatio(s, c); }
    static double ToCents(double ratio) { return View::ConvertRatioToCents(ratio); }
    static double ToSemitone(double ratio) { return View::ConvertRatioToSemitone(ratio); }
    static std::int16_t MakesureSemitonesIsInteger(double x) { return View::MakesureSemitonesIsInteger(x); }
    static std::pair<double, double> Split(double ratio, double s, double c) {
        View::ConvertRatioToSemitoneAndCents(ratio, s, c);
        return {s, c};
    }
};

} // namespace qocui::ui

namespace {

using Access = qocui::ui::PitchShiftEditorAccess;

enum : int { kRatio, kPrecision, kSplicing, kOverlap, kDefaults };

double Ratio(double semitones) {
    return std::exp2(semitones / 12);
}

// The panel of the real effect.
class PitchShiftEditorTest : public test::PanelHost<>, public kroaudiofilterhost::AudioFilterListener {
protected:
    PitchShiftEditorTest() : PanelHost({600, 400}) {
        fFilter = qoc::components::CreateEffect(qoc::components::kPitchShiftComponentID);
    }
    ~PitchShiftEditorTest() override { fFilter->RemoveListener(*this); }

    void Open() {
        ShowPanelOf(fFilter);
        fFilter->AddListener(*this);
    }
    void ParameterChanged(AudioFilter& /*filter*/,
                          const kroaudiofilterhost::AudioFilterParameterChange& change) override {
        if (!change.quiet) fChanged.push_back(change.index);
    }
    void ParameterEditBegun(AudioFilter& /*filter*/, int index) override { fChanged.push_back(-10 - index); }
    void ParameterEditEnded(AudioFilter& /*filter*/, int index) override { fChanged.push_back(-10 - index); }
    std::vector<int> TakeChanged() { return std::exchange(fChanged, {}); }

    template <class Control>
    Control& Get(std::string_view id) {
        return dynamic_cast<Control&>(*fView->UI_FindNode(id));
    }
    UI_EditNumber& Semitones() { return Find<UI_EditNumber>("PS_SemiTones"); }
    UI_EditNumber& Cents() { return Find<UI_EditNumber>("PS_Cents"); }
    UI_HotTextNumber& Field(std::string_view id) { return Find<UI_HotTextNumber>(id); }
    Point CentreOf(std::string_view id) { return kroui::ui::HeadlessWindow::CentreOf(*fView->UI_FindNode(id)); }
    Point Knob(const UI_EditNumber& slider) {
        const Rect track = slider.Layout().track;
        const double part = (slider.GetValue() - slider.GetMinValue()) / (slider.GetMaxValue() - slider.GetMinValue());
        return slider.UI_LocalToWindow({track.left + static_cast<float>(part) * track.width, track.top});
    }
    double Natural(int index) { return fFilter->GetParameterInfo(index)->ToNatural(fFilter->GetParameterValue(index)); }
    void SetNatural(int index, double value) {
        fFilter->SetParameterValue(index, fFilter->GetParameterInfo(index)->ToNormalised(static_cast<float>(value)));
    }
    // Types a number into a field.
    void TypeInto(std::string_view id, std::u16string_view text) {
        fWindow.DoubleClick(CentreOf(id));
        fWindow.Type(text);
        fWindow.PressKey(kroui::ui::Key::kEnter);
    }
    std::pair<double, double> Shown() { return {Semitones().GetValue(), Cents().GetValue()}; }
    std::string Checked() {
        std::string checked;
        for (const char* id : {"PS_PrecisionLow", "PS_PrecisionMedium", "PS_PrecisionHigh"})
            checked += Find<UI_RadioButton>(id).GetValue() != 0 ? '1' : '0';
        return checked;
    }
    bool AreSettingsEnabled() {
        const bool enabled = Field("PS_SplicingFrequency").IsEnabled();
        EXPECT_EQ(Field("PS_Overlapping").IsEnabled(), enabled);
        return enabled;
    }

    boost::intrusive_ptr<AudioFilter> fFilter;
    std::vector<int> fChanged;
};

TEST(PitchShiftArithmetic, RoundsHalvesAwayFromZero) {
    EXPECT_EQ(Access::MakeWhole(2.5), 3);
    EXPECT_EQ(Access::MakeWhole(-2.5), -3);
    EXPECT_EQ(Access::MakeWhole(-2.4), -2);
    EXPECT_EQ(Access::MakeWhole(0), 0);
    EXPECT_EQ(Access::MakeHundredths(0.125), 0.13);
    EXPECT_EQ(Access::MakeHundredths(-0.125), -0.13);
    EXPECT_EQ(Access::MakeHundredths(-40), -40);
}

TEST(PitchShiftArithmetic, IntegerSemitonesRoundHalvesDownAndCutNegativesOff) {
    EXPECT_EQ(Access::MakesureSemitonesIsInteger(2.5), 2);
    EXPECT_EQ(Access::MakesureSemitonesIsInteger(2.6), 3);
    EXPECT_EQ(Access::MakesureSemitonesIsInteger(-2.7), -2);
    EXPECT_EQ(Access::MakesureSemitonesIsInteger(-0.2), 0);
}

TEST(PitchShiftArithmetic, CentsCountUpwardsFromTheSemitoneBelow) {
    EXPECT_DOUBLE_EQ(Access::ToRatio(7, 50), std::exp2(7.5 / 12));
    EXPECT_DOUBLE_EQ(Access::ToRatio(-12, 0), 0.5);
    EXPECT_EQ(Access::ToSemitone(Ratio(2.6)), 2);
    EXPECT_EQ(Access::ToSemitone(Ratio(-2.6)), -3);
    EXPECT_EQ(Access::ToCents(Ratio(2.6)), 60);
    EXPECT_EQ(Access::ToCents(Ratio(-2.6)), 40);
    EXPECT_EQ(Access::ToCents(Ratio(4.996)), 100);
    EXPECT_TRUE(std::signbit(Access::ToCents(1))) << "no fraction is a negative zero";
    EXPECT_TRUE(std::isnan(Access::ToCents(-1)));
}

TEST(PitchShiftArithmetic, TheSplitKeepsTheSemitonesWhereItCan) {
    const struct {
        double semitones, shownSemitones, shownCents, expectedSemitones, expectedCents;
    } cases[] = {
        {2.6, 3, 0, 3, -40},   // kept
        {2.6, 1, 0, 2, 60},    // 160 cents above 1 are too many
        {2.6, 6, 0, 2, 60},    // too far
        {3.5, 3, 0, 3, 50},    // the same semitone
        {2.6, 4, 60, 2, 60},   // the same cents
        {2.0, 4, 25, 2, 0},    // -200 cents are too many
        {2.0, 3, 25, 3, -100}, // just reached
        {4.996, 5, 30, 5, 0},  {4.996, 3, 30, 4, 100}, {-2.6, -2, 0, -2, -60},
    };
    for (const auto& each : cases) {
        const auto [s, c] = Access::Split(Ratio(each.semitones), each.shownSemitones, each.shownCents);
        EXPECT_EQ(s, each.expectedSemitones) << each.semitones << " from " << each.shownSemitones;
        EXPECT_NEAR(c, each.expectedCents, 1e-9) << each.semitones << " from " << each.shownSemitones;
    }
}

TEST_F(PitchShiftEditorTest, OpensWithWhatTheFilterHolds) {
    SetNatural(kRatio, Ratio(-5));
    SetNatural(kPrecision, 1);
    SetNatural(kSplicing, 80);
    SetNatural(kOverlap, 33.3);
    SetNatural(kDefaults, 0);
    Open();
    EXPECT_EQ(Shown(), std::pair(-5.0, 0.0));
    EXPECT_NEAR(Field("PS_Ratio").GetValue(), Ratio(-5), 1e-6);
    EXPECT_EQ(Checked(), "010");
    EXPECT_NEAR(Field("PS_SplicingFrequency").GetValue(), 80, 1e-3);
    EXPECT_EQ(Field("PS_SplicingFrequency").FormatValue(), u"80") << "without trailing zeros";
    EXPECT_EQ(Field("PS_Overlapping").FormatValue(), u"33.3");
    EXPECT_FALSE(Find<UI_Checkbox>("PS_UseDefaultSetting").IsChecked());
    EXPECT_TRUE(AreSettingsEnabled());
    EXPECT_EQ(Find<uit::controls::UI_OutlineBoxWithLabel>("PS_OutlineBox_Settings").Label(), u"Pitch Settings");
    EXPECT_THAT(TakeChanged(), IsEmpty());
}

TEST_F(PitchShiftEditorTest, SemitonesWriteTheRatioOnlyWhenTheDragEnds) {
    Open();
    const Point knob = Knob(Semitones());
    fWindow.Press(knob);
    fWindow.MoveTo({knob.x + 60, knob.y});
    fWindow.MoveTo({knob.x + 80, knob.y});
    EXPECT_GT(Semitones().GetValue(), 1);
    EXPECT_EQ(Field("PS_Ratio").GetValue(), 1);
    EXPECT_THAT(TakeChanged(), IsEmpty());
    fWindow.Release();
    EXPECT_THAT(TakeChanged(), ElementsAre(int{kRatio}));
    EXPECT_DOUBLE_EQ(Field("PS_Ratio").GetValue(), Ratio(std::round(Semitones().GetValue())));
    EXPECT_NEAR(Natural(kRatio), Field("PS_Ratio").GetValue(), 1e-6);
    const auto shown = Shown();
    fWindow.Advance(0.1);
    EXPECT_EQ(Shown(), shown) << "the poll brings nothing back";
}

TEST_F(PitchShiftEditorTest, AnAbandonedDragWritesNothing) {
    Open();
    const Point knob = Knob(Cents());
    fWindow.Press(knob);
    fWindow.MoveTo({knob.x + 60, knob.y});
    fWindow.PressKey(kroui::ui::Key::kEscape);
    fWindow.Release();
    EXPECT_THAT(TakeChanged(), IsEmpty());
    EXPECT_EQ(Cents().GetValue(), 0);
}

TEST_F(PitchShiftEditorTest, TheRatioWrittenIsHeldInTheRatiosRange) {
    SetNatural(kRatio, 2);
    Open();
    EXPECT_EQ(Shown(), std::pair(12.0, 0.0));
    const Point knob = Knob(Cents());
    fWindow.Drag(knob, {knob.x + 60, knob.y});
    EXPECT_GT(Cents().GetValue(), 10);
    EXPECT_EQ(Field("PS_Ratio").GetValue(), 2);
    EXPECT_EQ(fFilter->GetParameterValue(kRatio), 1);
}

TEST_F(PitchShiftEditorTest, ATypedRatioMovesSemitonesAndCentsAndIsWritten) {
    Open();
    TypeInto("PS_Ratio", u"0.5");
    EXPECT_EQ(Shown(), std::pair(-12.0, 0.0));
    EXPECT_EQ(Natural(kRatio), 0.5);
    TypeInto("PS_Ratio", u"1.4983"); // 7 semitones are 1.49831, and this a thousandth of a cent less
    EXPECT_EQ(Shown(), std::pair(6.0, 100.0));
}

TEST_F(PitchShiftEditorTest, ARatioFromElsewhereNearTheFieldsMovesTheRatioOnly) {
    Open();
    SetNatural(kRatio, 1.0095);
    fWindow.Advance(0.011);
    EXPECT_EQ(Shown(), std::pair(0.0, 0.0));
    EXPECT_NEAR(Field("PS_Ratio").GetValue(), 1.0095, 1e-6);
    SetNatural(kRatio, Ratio(0.6));
    fWindow.Advance(0.011);
    EXPECT_EQ(Shown(), std::pair(0.0, 60.0));
    SetNatural(kRatio, Ratio(2.6));
    fWindow.Advance(0.011);
    EXPECT_EQ(Shown(), std::pair(2.0, 60.0)) << "the same cents: no reason to keep the semitones";
}

TEST_F(PitchShiftEditorTest, RadioButtonsWriteThePrecisionAndFollowIt) {
    Open();
    EXPECT_EQ(Checked(), "001");
    fWindow.Click(CentreOf("PS_PrecisionMedium"));
    EXPECT_EQ(Checked(), "010");
    EXPECT_EQ(Natural(kPrecision), 1);
    fWindow.Click(CentreOf("PS_PrecisionLow"));
    EXPECT_EQ(Natural(kPrecision), 0);
    EXPECT_THAT(TakeChanged(), ElementsAre(int{kPrecision}, int{kPrecision}));
    fWindow.Advance(0.011);
    for (const auto& [value, checked] : {std::pair(2.0, "001"), {3.0, "100"}, {1.0, "010"}, {-1.0, "100"}}) {
        SetNatural(kPrecision, value);
        fWindow.Advance(0.011);
        EXPECT_EQ(Checked(), checked) << value;
    }
}

TEST_F(PitchShiftEditorTest, DefaultSettingsTakeBothExpertFieldsOutOfUse) {
    Open();
    EXPECT_FALSE(AreSettingsEnabled());
    fWindow.Click(CentreOf("PS_UseDefaultSetting"));
    EXPECT_TRUE(AreSettingsEnabled());
    EXPECT_EQ(fFilter->GetParameterValue(kDefaults), 0);
    fWindow.Click(CentreOf("PS_UseDefaultSetting"));
    EXPECT_FALSE(AreSettingsEnabled());
    EXPECT_EQ(fFilter->GetParameterValue(kDefaults), 1);
    SetNatural(kDefaults, 0.49);
    fWindow.Advance(0.011);
    EXPECT_TRUE(AreSettingsEnabled());
    EXPECT_FALSE(Find<UI_Checkbox>("PS_UseDefaultSetting").IsChecked());
}

TEST_F(PitchShiftEditorTest, ExpertFieldsStepByTheirIncrementsAndWriteTheirOwnParameter) {
    SetNatural(kDefaults, 0);
    Open();
    fWindow.Click(CentreOf("PS_SplicingFrequency"));
    fWindow.PressKey(kroui::ui::Key::kUp);
    EXPECT_NEAR(Natural(kSplicing), 53, 1e-3);
    fWindow.Click(CentreOf("PS_Overlapping"));
    fWindow.PressKey(kroui::ui::Key::kDown);
    EXPECT_NEAR(Natural(kOverlap), 21.4, 1e-4);
    fWindow.Advance(1); // ends the runs of steps
    EXPECT_NEAR(Field("PS_Overlapping").GetValue(), 21.4, 1e-4);
    TypeInto("PS_SplicingFrequency", u"5");
    EXPECT_NEAR(Natural(kSplicing), 10, 1e-4) << "not below its range";
}

// Whose switch has a range of its own.
class FilterWithOtherRanges : public test::FakeFilter {
public:
    FilterWithOtherRanges() : FakeFilter(5, qoc::components::kPitchShiftComponentID) {}
    const kroaudiofilterhost::AudioFilterParameterInfo* GetParameterInfo(int index) const override {
        return index == kDefaults ? &fInfo : nullptr;
    }

private:
    qoc::components::GenericParameterInfo fInfo{{.id = "defaults", .hi = 2}};
};

TEST_F(PitchShiftEditorTest, TheCheckBoxIsSetUpByTheStoredValueAndFollowsTheNaturalOne) {
    const boost::intrusive_ptr<FilterWithOtherRanges> filter(new FilterWithOtherRanges);
    fFilter = filter;
    filter->Store(kDefaults, 0.3F); // 0.6 of 2
    Open();
    EXPECT_TRUE(AreSettingsEnabled());
    filter->Store(kDefaults, 0.31F);
    fWindow.Advance(0.011);
    EXPECT_FALSE(AreSettingsEnabled());
    fWindow.Click(CentreOf("PS_UseDefaultSetting"));
    fWindow.Click(CentreOf("PS_UseDefaultSetting"));
    EXPECT_EQ(filter->GetParameterValue(kDefaults), 0.5F) << "1 of 2";
}

TEST_F(PitchShiftEditorTest, AFilterWithoutDescriptionsKeepsTheArchivesRanges) {
    const boost::intrusive_ptr<test::FakeFilter> plain(
        new test::FakeFilter(5, qoc::components::kPitchShiftComponentID));
    plain->Store(kRatio, 1.5F);
    plain->Store(kSplicing, 500);
    fFilter = plain;
    Open();
    EXPECT_EQ(Field("PS_Ratio").GetValue(), 1.5);
    EXPECT_EQ(Field("PS_SplicingFrequency").GetValue(), 10) << "outside its range: the lowest";
    TypeInto("PS_Ratio", u"0.75");
    EXPECT_EQ(plain->GetParameterValue(kRatio), 0.75F);
}

} // namespace
