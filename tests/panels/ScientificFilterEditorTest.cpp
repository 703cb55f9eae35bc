#include "PanelHost.h"
#include "qocui/ui/ScientificFilterEditorView.h"

#include "kroui/controls/UI_HotTextNumber.h"
#include "kroui/controls/UI_Popup.h"
#include "kroui/controls/UI_RadioButton.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"
#include "uit/controls/ColorField.h"
#include "uit/controls/UI_EditNumber.h"

#include <gmock/gmock.h>

using namespace kroui;
using namespace qoc::components;
using kroui::controls::UI_ControlView;
using kroui::controls::UI_HotTextNumber;
using kroui::controls::UI_Popup;
using kroui::controls::UI_RadioButton;
using kroui::ui::Key;
using qocui::ui::SFGraph;
using testing::ElementsAre;

namespace {

constexpr int kChebyshev2 = 3;
constexpr int kBandPass = 2;

// Writes down what a filter is told, "begin 3", "set 3", "quiet 9", "end 3", the same thing in a row once.
class Recorder : public kroaudiofilterhost::AudioFilterListener {
public:
    void ParameterChanged(kroaudiofilterhost::AudioFilter&,
                          const kroaudiofilterhost::AudioFilterParameterChange& change) override {
        Add((change.quiet ? "quiet " : "set ") + std::to_string(change.index));
    }
    void ParameterEditBegun(kroaudiofilterhost::AudioFilter&, int index) override {
        Add("begin " + std::to_string(index));
    }
    void ParameterEditEnded(kroaudiofilterhost::AudioFilter&, int index) override {
        Add("end " + std::to_string(index));
    }
    std::vector<std::string> Take() { return std::exchange(fLog, {}); }

private:
    void Add(const std::string& line) {
        if (fLog.empty() || fLog.back() != line) fLog.push_back(line);
    }
    std::vector<std::string> fLog;
};

// The panel over the real effect, from the factory, in a window.
class ScientificFilterEditorTest : public test::PanelHost<> {
protected:
    ScientificFilterEditorTest() : PanelHost({740, 560}) {
        fFilter = CreateEffect(kScientificFilterComponentID);
        fFilter->Prepare(44100, 64, kromediatypes::AudioChannelLayout::Stereo());
        ShowPanelOf(fFilter);
        fFilter->AddListener(fRecorder);
    }
    ~ScientificFilterEditorTest() override { fFilter->RemoveListener(fRecorder); }

    UI_HotTextNumber& Number(std::string_view id) { return Find<UI_HotTextNumber>(id); }
    bool IsEnabled(const std::string& id) {
        const bool isEnabled = Find<UI_ControlView>(id).IsEnabled();
        EXPECT_EQ(Find<UI_ControlView>(id + "Label").IsEnabled(), isEnabled) << "dims with its number: " << id;
        return isEnabled;
    }
    double Natural(int index) { return fFilter->GetParameterInfo(index)->ToNatural(fFilter->GetParameterValue(index)); }
    // As automation or another panel does; the panel has seen it.
    void Set(int index, double value) {
        fFilter->SetParameterValue(index, fFilter->GetParameterInfo(index)->ToNormalised(static_cast<float>(value)));
        fWindow.Advance(0.02);
        fRecorder.Take();
    }
    void Type(std::string_view id, std::u16string_view text) {
        fWindow.DoubleClick(ui::HeadlessWindow::CentreOf(Number(id)));
        fWindow.PressKey(Key::kCharacter, ui::kCommand, u'a');
        fWindow.Type(text);
        fWindow.PressKey(Key::kEnter);
        fWindow.Advance(1);
    }
    Point Press(std::string_view id) {
        const Point place = ui::HeadlessWindow::CentreOf(Number(id));
        fWindow.Press(place);
        return place;
    }

    Recorder fRecorder;
    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
};

TEST_F(ScientificFilterEditorTest, WhatATypeOrModeDoesNotUseIsDisabled) {
    for (int type = 0; type < 4; ++type) {
        for (int mode = 0; mode < 4; ++mode) {
            Set(kSFType, type);
            Set(kSFMode, mode);
            EXPECT_EQ(IsEnabled("HighCutoff"), mode >= kBandPass);
            EXPECT_EQ(IsEnabled("PassRipple"), type == 2);
            EXPECT_EQ(IsEnabled("StopAttenuation"), type == kChebyshev2);
            EXPECT_EQ(IsEnabled("TransitionBandwidth"), type == kChebyshev2);
            EXPECT_TRUE(IsEnabled("Order") && IsEnabled("Cutoff"));
            EXPECT_EQ(Find<UI_Popup>("Type").GetValue(), type);
            EXPECT_EQ(Find<UI_Popup>("Mode").GetValue(), mode);
        }
    }
}

TEST_F(ScientificFilterEditorTest, ChoosingATypeIsAnEditAndEnablesAtOnce) {
    Find<UI_Popup>("Type").UI_TakeFocus();
    fWindow.PressKey(Key::kDown);
    EXPECT_EQ(Natural(kSFType), 2);
    EXPECT_TRUE(IsEnabled("PassRipple"));
    EXPECT_THAT(fRecorder.Take(), ElementsAre("set 0"));
}

TEST_F(ScientificFilterEditorTest, NumbersShowTheFiltersValuesInItsRanges) {
    const std::tuple<const char*, int, double> cases[] = {{"Order", kSFOrder, 13},
                                                          {"Cutoff", kSFCutoff, 345.6},
                                                          {"HighCutoff", kSFHighCutoff, 9000},
                                                          {"PassRipple", kSFPassRipple, 0.25},
                                                          {"StopAttenuation", kSFStopAttenuation, 88},
                                                          {"LevelRange", kSFLevelRange, 144}};
    for (const auto& [id, index, value] : cases) {
        Set(index, value);
        EXPECT_NEAR(Number(id).GetValue(), value, value * 1e-5) << id;
        EXPECT_FALSE(Number(id).UI_GetAccessibleInfo().name.empty()) << id;
    }
    Set(kSFMasterGain, -7.5);
    EXPECT_NEAR(Find<uit::controls::UI_EditNumber>("MasterGain").GetValue(), -7.5, 1e-4);
}

TEST_F(ScientificFilterEditorTest, ACutoffPushesTheOtherOneAlongAndLetsItComeBack) {
    Set(kSFMode, kBandPass);
    Set(kSFCutoff, 1000);
    Set(kSFHighCutoff, 1200);
    const Point start = Press("Cutoff");
    fWindow.MoveTo({start.x + 60, start.y});
    EXPECT_GT(Natural(kSFCutoff), 1300);
    EXPECT_NEAR(Natural(kSFHighCutoff) / Natural(kSFCutoff), 1.001, 1e-5);
    EXPECT_NEAR(Number("HighCutoff").GetValue(), Natural(kSFHighCutoff), 0.1) << "shown while it is pushed";
    fWindow.MoveTo({start.x + 1, start.y});
    EXPECT_LT(Natural(kSFCutoff), 1150);
    EXPECT_NEAR(Natural(kSFHighCutoff), 1200, 0.1);
    fWindow.Release();
    const auto log = fRecorder.Take();
    EXPECT_EQ(log.front(), "begin 3");
    EXPECT_EQ(log.back(), "end 3");

    Type("HighCutoff", u"200");
    EXPECT_NEAR(Natural(kSFCutoff), 200 / 1.001, 0.01);
}

TEST_F(ScientificFilterEditorTest, AnAbandonedDragGivesBackAllThatItHasMoved) {
    Set(kSFMode, kBandPass);
    Set(kSFCutoff, 1000);
    Set(kSFHighCutoff, 1200);
    const Point start = Press("Cutoff");
    fWindow.MoveTo({start.x + 60, start.y});
    fWindow.PressKey(Key::kEscape);
    fWindow.Release();
    EXPECT_NEAR(Natural(kSFCutoff), 1000, 0.1);
    EXPECT_NEAR(Natural(kSFHighCutoff), 1200, 0.1);
    EXPECT_NEAR(Number("HighCutoff").GetValue(), 1200, 0.1);
    EXPECT_EQ(fRecorder.Take().back(), "end 3");
}

// The filter takes the two cutoffs of a band in either order, so the band stays what it was about to be.
TEST_F(ScientificFilterEditorTest, ABandHasItsCutoffsInOrderWhereverItComesFrom) {
    for (const int mode : {kBandPass, kBandPass + 1}) {
        Set(kSFMode, 0);
        Set(kSFCutoff, 9000);
        Set(kSFHighCutoff, 4000);
        Find<UI_Popup>("Mode").UI_TakeFocus();
        for (int i = 0; i < mode; ++i)
            fWindow.PressKey(Key::kDown);
        EXPECT_EQ(fFilter->GetParameterInfo(kSFMode)->ToItem(fFilter->GetParameterValue(kSFMode)), mode);
        EXPECT_NEAR(Natural(kSFCutoff), 4000, 0.1);
        EXPECT_NEAR(Natural(kSFHighCutoff), 9000, 0.1);
        EXPECT_NEAR(Number("Cutoff").GetValue(), 4000, 0.1);
        EXPECT_NEAR(Number("HighCutoff").GetValue(), 9000, 0.1);
    }
}

TEST_F(ScientificFilterEditorTest, InALowPassTheHighCutoffStaysWhereItIs) {
    Type("Cutoff", u"9k");
    EXPECT_NEAR(Natural(kSFCutoff), 9000, 0.1);
    EXPECT_NEAR(Natural(kSFHighCutoff), 4000, 0.1);
}

// Chebyshev 2, 60 dB: arcosh(sqrt(10^6 - 1)) = 7.600902; the stop edge of order n is at cosh(7.600902 / n) times the
// warped cutoff, tan(pi / 44.1) = 0.071359: order 6 1.915632, 1907.06 Hz; order 7 1.649776,
// 1645.00 Hz.
TEST_F(ScientificFilterEditorTest, TheTransitionBandwidthChoosesTheLowestOrderThatIsThatNarrow) {
    Set(kSFType, kChebyshev2);
    Type("TransitionBandwidth", u"700");
    EXPECT_EQ(std::lround(Natural(kSFOrder)), 7);
    EXPECT_EQ(Number("Order").GetValue(), 7);
    EXPECT_NEAR(Number("TransitionBandwidth").GetValue(), 645.0, 0.1) << "what the filter then has";
    EXPECT_THAT(fRecorder.Take(), ElementsAre("begin 2", "set 2", "end 2"));
    Type("TransitionBandwidth", u"900");
    EXPECT_EQ(Number("Order").GetValue(), 6) << "907 Hz, which a hundredth forgives";
    Type("TransitionBandwidth", u"890");
    EXPECT_EQ(Number("Order").GetValue(), 7);
}

TEST_F(ScientificFilterEditorTest, TheOrderMovesTheTransitionBandwidthWhileItIsDragged) {
    Set(kSFType, kChebyshev2);
    Set(kSFOrder, 3);
    const double before = Number("TransitionBandwidth").GetValue();
    const Point start = Press("Order");
    fWindow.MoveTo({start.x + 60, start.y});
    EXPECT_LT(Number("TransitionBandwidth").GetValue(), before);
    EXPECT_NEAR(Number("TransitionBandwidth").GetValue(), Natural(kSFTransitionBandwidth), 0.1);
    fWindow.Release();
}

TEST_F(ScientificFilterEditorTest, WhileANumberIsDraggedNoPollMovesItAndAfterwardsAllIsReadAgain) {
    Set(kSFType, kChebyshev2);
    const Point start = Press("TransitionBandwidth");
    fWindow.MoveTo({start.x - 30, start.y});
    const double shown = Number("TransitionBandwidth").GetValue();
    EXPECT_GT(std::abs(Natural(kSFTransitionBandwidth) - shown), 1) << "the order is a whole number";
    fFilter->SetParameterValue(kSFMasterGain, 0.75F); // from elsewhere
    fWindow.Advance(0.1);
    EXPECT_EQ(Number("TransitionBandwidth").GetValue(), shown);
    fWindow.Release();
    EXPECT_NEAR(Number("TransitionBandwidth").GetValue(), Natural(kSFTransitionBandwidth), 0.1);
    EXPECT_NEAR(Find<uit::controls::UI_EditNumber>("MasterGain").GetValue(), 18, 1e-4);
    Set(kSFOrder, 2);
    EXPECT_EQ(Number("Order").GetValue(), 2) << "observers answer again";
}

TEST_F(ScientificFilterEditorTest, ViewsAreQuietAndDecideWhatTheGraphShows) {
    SFGraph& graph = Find<SFGraph>("Graph");
    fWindow.Click(ui::HeadlessWindow::CentreOf(Find<UI_RadioButton>("GroupDelay")));
    EXPECT_EQ(graph.GetView(), SFGraph::View::kGroupDelay);
    EXPECT_EQ(graph.GetVerticalEnd(), 0);
    EXPECT_FALSE(IsEnabled("LevelRange"));
    fWindow.Click(ui::HeadlessWindow::CentreOf(Find<UI_RadioButton>("LinearAxis")));
    EXPECT_EQ(fFilter->GetParameterValue(kSFLogarithmicAxis), 0);
    fWindow.Click(ui::HeadlessWindow::CentreOf(Find<UI_RadioButton>("Magnitude")));
    Type("LevelRange", u"48");
    EXPECT_EQ(graph.GetVerticalStart() - graph.GetVerticalEnd(), 48);
    for (const std::string& line : fRecorder.Take())
        EXPECT_TRUE(line.starts_with("quiet")) << line;
    Set(kSFView, 1);
    EXPECT_TRUE(Find<UI_RadioButton>("Phase").IsChecked());
    EXPECT_EQ(graph.GetView(), SFGraph::View::kPhase);
}

TEST_F(ScientificFilterEditorTest, TheGraphShowsTheFilterAsItIsAfterEveryChange) {
    const SFGraph& graph = Find<SFGraph>("Graph");
    EXPECT_NEAR(graph.GetResponse().front(), 0, 0.01);
    Set(kSFMode, 1);
    EXPECT_LT(graph.GetResponse().front(), -100);
    EXPECT_NEAR(graph.GetResponse().back(), 0, 0.01);
    const Point start = ui::HeadlessWindow::CentreOf(Number("Cutoff"));
    fWindow.Press(start);
    fWindow.MoveTo({start.x - 200, start.y});
    EXPECT_GT(graph.GetResponse().front(), -100) << "in mid-drag";
    fWindow.Release();
}

TEST_F(ScientificFilterEditorTest, TheUserChoosesTheCurvesColours) {
    const SFGraph& graph = Find<SFGraph>("Graph");
    auto& swatch = Find<uit::controls::ColorField>("PhaseColor");
    EXPECT_EQ(swatch.GetColor(), graph.GetCurveColor(SFGraph::View::kPhase));
    fWindow.Click(ui::HeadlessWindow::CentreOf(swatch));
    fWindow.Type(u"00FF00");
    EXPECT_EQ(graph.GetCurveColor(SFGraph::View::kPhase), limner::Color::FromRGB(0x00FF00));
    EXPECT_THAT(fRecorder.Take(), testing::IsEmpty());
}

TEST_F(ScientificFilterEditorTest, AnotherSampleRateMovesTheLimitsAtTheNextPoll) {
    Set(kSFCutoff, 30000);
    EXPECT_NEAR(Number("Cutoff").GetValue(), 0.499 * 44100, 0.01) << "as the filter takes it";
    fFilter->Prepare(96000, 64, kromediatypes::AudioChannelLayout::Stereo());
    fWindow.Advance(0.02);
    EXPECT_NEAR(Number("Cutoff").GetValue(), 30000, 0.1);
    EXPECT_EQ(Find<SFGraph>("Graph").GetHorizontalEnd(), 48000);
}

// Whatever is set, the loudest of what is shown stands in the upper part of the axis.
TEST_F(ScientificFilterEditorTest, TheAxisKeepsTheResponseInSight) {
    auto& graph = Find<SFGraph>("Graph");
    for (const double gain : {-36.0, -12.0, 0.0, 36.0}) {
        for (const double range : {6.0, 12.0, 24.0, 96.0, 240.0}) {
            for (const double start : {0.0, 0.5}) { // a low pass at 1 kHz has lost some 100 dB there
                Set(kSFMasterGain, gain);
                Set(kSFLevelRange, range);
                fFilter->SetParameterValueQuietly(kSFViewStart, static_cast<float>(start));
                fWindow.Advance(0.02);
                SCOPED_TRACE(testing::Message() << gain << " dB, range " << range << ", from " << start);
                const double top = graph.GetBound(2);
                EXPECT_NEAR(top - graph.GetBound(3), range, 1e-3);
                const float loudest = std::ranges::max(graph.GetResponse());
                EXPECT_LT(loudest, top);
                EXPECT_GT(loudest, top - 0.7 * range);
                if (start == 0 && gain > -20 && range > 90) {
                    EXPECT_GT(top, 0) << "0 dB is in sight, too";
                }
            }
        }
    }
}

// A band of a thousandth of its frequency lies between two places of the graph. Its loudest level is the gain, less
// what an even Chebyshev filter loses in the middle; its longest delay that of a graph which is zoomed in on it.
TEST_F(ScientificFilterEditorTest, ANarrowBandHasItsPeakInTheGraph) {
    auto& graph = Find<SFGraph>("Graph");
    Set(kSFMode, kBandPass);
    Set(kSFPassRipple, 12);
    for (const double hertz : {37.0, 1000.0, 11111.0}) {
        for (const int type : {0, 1, 2, kChebyshev2}) {
            for (const int order : {1, 2, 3, 6}) {
                Set(kSFType, type);
                Set(kSFOrder, order);
                Set(kSFHighCutoff, 1.001 * hertz);
                Set(kSFCutoff, hertz);
                SCOPED_TRACE(testing::Message() << hertz << " Hz, type " << type << ", order " << order);
                EXPECT_NEAR(std::ranges::max(graph.GetResponse()), 0, 0.1);

                std::vector<float> delays;
                ASSERT_TRUE(fFilter->GetResponseCurve(2, 1000, delays));
                const float longest = std::ranges::max(delays);
                fFilter->SetParameterValueQuietly(kSFViewStart, static_cast<float>(0.99 * hertz / 22050));
                fFilter->SetParameterValueQuietly(kSFViewEnd, static_cast<float>(1.011 * hertz / 22050));
                ASSERT_TRUE(fFilter->GetResponseCurve(2, 4000, delays));
                if (0.99 * hertz > 20) {
                    EXPECT_NEAR(longest / std::ranges::max(delays), 1, 0.05);
                }
                fFilter->SetParameterValueQuietly(kSFViewStart, 0);
                fFilter->SetParameterValueQuietly(kSFViewEnd, 1);
            }
        }
    }
}

} // namespace
