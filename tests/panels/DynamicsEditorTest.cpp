#include "PanelHost.h"
#include "SourcePaths.h"
#include "kroui/controls/UI_Button.h"
#include "orrin/sheet.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"
#include "qocui/controls/TarnLioAudioComponentEditorView.h"
#include "uit/controls/UI_CompExpList.h"
#include "uit/controls/UI_CurveEditor.h"
#include "uit/controls/UI_EditNumber.h"

#include <gmock/gmock.h>

#include <fstream>

using namespace kroui;
using namespace qoc::components;
using orrin::name_t;
using testing::ElementsAre;
using testing::FloatNear;
using testing::Pair;
using uit::controls::UI_CurveEditor;

namespace {

using Levels = std::vector<std::pair<float, float>>; // in and out, in decibels

// The panel of a real effect, from the factory, in a window.
class DynamicsEditorTest : public test::PanelHost<> {
protected:
    static constexpr int kWidth = 1000;

    DynamicsEditorTest() : PanelHost({kWidth, 700}) {
        fFilter = CreateEffect(kDynamicsComponentID);
        fFilter->Prepare(44100, 64, kromediatypes::AudioChannelLayout::Stereo());
        SetPoints({{-100, -100}, {-40, -40}, {0, -20}});
        ShowPanelOf(fFilter);
    }

    UI_CurveEditor& Curve() { return Find<UI_CurveEditor>("CurveEditor"); }
    void Press(std::string_view button) {
        fWindow.Click(ui::HeadlessWindow::CentreOf(Find<controls::UI_Button>(button)));
        Poll();
    }
    Point PixelOf(int point) {
        const auto& points = Curve().GetCurvePoints();
        return Curve().UI_LocalToWindow(
            Curve().GetPixelForCoordinatePair(points[static_cast<std::size_t>(point)].coordinates));
    }

    // 0...255, of a pixel.
    unsigned Brightness(Point place) {
        const auto index = static_cast<std::size_t>(place.y) * kWidth + static_cast<std::size_t>(place.x);
        return fWindow.Snapshot()->Pixels()[index] >> 8 & 0xFF;
    }

    float Natural(int index) const {
        return fFilter->GetParameterInfo(index)->ToNatural(fFilter->GetParameterValue(index));
    }
    void Set(int index, float natural) {
        fFilter->SetParameterValue(index, fFilter->GetParameterInfo(index)->ToNormalised(natural));
    }
    void SetPoints(const Levels& points) {
        Set(kDynamicsPointCount, static_cast<float>(points.size()));
        int index = kDynamicsFirstPoint;
        for (const auto& [input, output] : points) {
            Set(index++, input);
            Set(index++, output);
        }
    }
    // What the effect has.
    Levels Points() const {
        Levels points;
        const auto count = static_cast<int>(std::lround(Natural(kDynamicsPointCount)));
        for (int index = kDynamicsFirstPoint; index < kDynamicsFirstPoint + 2 * count; index += 2)
            points.emplace_back(Natural(index), Natural(index + 1));
        return points;
    }
    static auto At(float input, float output) { return Pair(FloatNear(input, 1e-3F), FloatNear(output, 1e-3F)); }

    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
};

// In the middle of the widest gap, -100...-40.
TEST_F(DynamicsEditorTest, AddPointPutsAPointOntoTheCurve) {
    Press("AddPointButton");
    EXPECT_THAT(Points(), ElementsAre(At(-100, -100), At(-70, -70), At(-40, -40), At(0, -20)));
    EXPECT_EQ(Curve().GetSelectedNode(), 1);
}

TEST_F(DynamicsEditorTest, ThereIsRoomForSixPoints) {
    for (int i = 0; i < 5; ++i)
        Press("AddPointButton");
    EXPECT_EQ(Points().size(), 6U);
}

TEST_F(DynamicsEditorTest, DeleteTakesTheSelectedPointAndLeavesTheEnds) {
    int changes = 0;
    Curve().NotifyWhenChanged([&](controls::UI_ControlChangedMessage*) { ++changes; });
    const std::int32_t before = fFilter->GetParameterDirtyCount();
    Press("DeletePointButton");
    EXPECT_EQ(fFilter->GetParameterDirtyCount(), before);
    EXPECT_EQ(changes, 0) << "nothing was selected";
    fWindow.Click(PixelOf(1));
    Poll();
    Press("DeletePointButton");
    EXPECT_THAT(Points(), ElementsAre(At(-100, -100), At(0, -20)));
    EXPECT_EQ(changes, 1);
    Curve().SelectAll();
    Press("DeletePointButton");
    EXPECT_EQ(Points().size(), 2U);
    EXPECT_EQ(changes, 1);
}

// Mirrored at the diagonal, (0, -20) goes to (-20, 0).
TEST_F(DynamicsEditorTest, InvertChangesInAndOutAndTwiceIsAsBefore) {
    int changes = 0;
    Curve().NotifyWhenChanged([&](controls::UI_ControlChangedMessage*) { ++changes; });
    Press("InvertButton");
    EXPECT_THAT(Points(), ElementsAre(At(-100, -100), At(-40, -40), At(-20, 0)));
    Press("InvertButton");
    EXPECT_THAT(Points(), ElementsAre(At(-100, -100), At(-40, -40), At(0, -20)));
    EXPECT_EQ(changes, 2);
}

TEST_F(DynamicsEditorTest, ADraggedPointWritesItsTwoLevelsAndStaysSelected) {
    std::vector<float> before;
    for (int i = 0; i < fFilter->GetParameterCount(); ++i)
        before.push_back(fFilter->GetParameterValue(i));
    const Point from = PixelOf(1);
    fWindow.Drag(from, {from.x - 20, from.y + 30});
    Poll();
    EXPECT_LT(Natural(kDynamicsFirstPoint + 2), -45);
    EXPECT_LT(Natural(kDynamicsFirstPoint + 3), -50);
    EXPECT_EQ(Curve().GetSelectedNode(), 1);
    for (int i = 0; i < fFilter->GetParameterCount(); ++i)
        if (i != kDynamicsFirstPoint + 2 && i != kDynamicsFirstPoint + 3) {
            EXPECT_FLOAT_EQ(fFilter->GetParameterValue(i), before[static_cast<std::size_t>(i)]) << i;
        }
}

TEST_F(DynamicsEditorTest, ChangesFromElsewhereAreShownAndNotWrittenBack) {
    SetPoints({{-90, -100}, {-50, -30}, {-20, -25}, {0, -5}});
    const std::int32_t before = fFilter->GetParameterDirtyCount();
    Poll();
    ASSERT_EQ(Curve().GetCurvePoints().size(), 4U);
    EXPECT_NEAR(Curve().GetCurvePoints()[2].coordinates.vertical, -25, 1e-4);
    Poll();
    EXPECT_EQ(fFilter->GetParameterDirtyCount(), before);
}

// The minus is a bar in the middle of its button, dark on the light panel, and the other way round.
TEST_F(DynamicsEditorTest, ButtonsHaveThePicturesOfTheThemeTheyAreOpenedIn) {
    for (const ui::Theme* theme : {&ui::Theme::Light(), &ui::Theme::Dark()}) {
        Close();
        fWindow.Window().SetTheme(*theme);
        ShowPanelOf(fFilter);
        const Point centre = ui::HeadlessWindow::CentreOf(Find<controls::UI_Button>("DeletePointButton"));
        EXPECT_EQ(Brightness(centre) > 128, theme == &ui::Theme::Dark());
    }
}

// The latency can't change while sound runs.
TEST_F(DynamicsEditorTest, TheLookAheadCanBeSetOnlyWhileTheEffectIsSuspended) {
    const auto shown = [&](bool suspended) {
        fFilter->SetSuspended(suspended);
        Poll();
        int numbers = 0;
        const std::function<void(ui::UI_Node&)> count = [&](ui::UI_Node& node) {
            if (!node.UI_IsVisible()) return;
            const bool isNumber = dynamic_cast<uit::controls::UI_EditNumber*>(&node) != nullptr;
            numbers += isNumber && node.UI_GetAccessibleInfo().name == u"Look-Ahead:";
            for (const auto& child : node.Children())
                count(*child);
        };
        count(*fView);
        return numbers;
    };
    EXPECT_EQ(shown(true), 1);
    EXPECT_EQ(shown(false), 0);
    EXPECT_EQ(shown(true), 1);
}

// The sheet alone: what each parameter is in the panel, and that it comes out as it went in.
TEST_F(DynamicsEditorTest, EveryParameterGoesThroughItsCell) {
    orrin::sheet_t sheet;
    dynamic_cast<qocui::controls::TarnLioAudioComponentEditorView&>(*fView).SetupVirtualMachine(sheet.machine(),
                                                                                                &sheet);
    std::ifstream script(QO_SOURCE_DIR "/resources/scripts/DYNAMICSUI.trn", std::ios::binary);
    sheet.load(std::string(std::istreambuf_iterator<char>(script), {}), "DYNAMICSUI");
    EXPECT_THAT(sheet.errors(), testing::IsEmpty());
    const std::pair<int, const char*> numbers[] = {
        {kDynamicsMakeUpGain, "make_up_gain"},
        {kDynamicsAttack, "gain_attack"},
        {kDynamicsRelease, "gain_release"},
        {kDynamicsHold, "hold"},
        {kDynamicsLookAhead, "look_ahead_time"},
        {kDynamicsRange, "gain_limit"},
        {kDynamicsMix, "mix"},
        {kDynamicsKnee, "knee"},
        {kDynamicsDetectorGain, "detector_gain"},
        {kDynamicsDetectorAttack, "detector_attack"},
        {kDynamicsDetectorRelease, "detector_release"},
        {kDynamicsLowCutoff, "low_cutoff"},
        {kDynamicsHighCutoff, "high_cutoff"},
    };
    const std::pair<int, const char*> switches[] = {{kDynamicsSmoothCurve, "smooth_curve"},
                                                    {kDynamicsAutoMakeUp, "auto_make_up"},
                                                    {kDynamicsDetectorMode, "detector_rms"},
                                                    {kDynamicsLimitBand, "limit_band"},
                                                    {kDynamicsListen, "listen"}};
    const auto take = [&](int index, double value) {
        sheet.set(name_t("in" + std::to_string(index)), value);
        sheet.update();
        sheet.reinitialise();
        return static_cast<float>(sheet[name_t("out" + std::to_string(index))].get<double>());
    };
    for (const auto& [index, cell] : numbers) {
        const auto& info = *fFilter->GetParameterInfo(index);
        EXPECT_FLOAT_EQ(take(index, info.GetDefault()), info.GetDefault());
        for (const float value : {0.0F, 0.3F, 1.0F}) {
            EXPECT_FLOAT_EQ(take(index, value), value) << cell;
            EXPECT_NEAR(sheet[name_t(cell)].get<double>(), info.ToNatural(value), 1e-6 * info.ToNatural(1) + 1e-6)
                << cell;
        }
    }
    for (const auto& [index, cell] : switches) {
        for (const float value : {0.0F, 1.0F}) {
            EXPECT_EQ(take(index, value), value) << cell;
            EXPECT_EQ(sheet[name_t(cell)].get<bool>(), value == 1) << cell;
        }
    }
    for (const float value : {0.0F, 0.5F, 1.0F})
        EXPECT_EQ(take(kDynamicsDetectorChannels, value), value);
    for (const float value : {0.0F, 0.25F, 0.5F, 0.75F, 1.0F})
        EXPECT_EQ(take(kDynamicsPointCount, value), value);
    for (int index = kDynamicsFirstPoint; index < kDynamicsFirstPoint + 12; ++index)
        EXPECT_FLOAT_EQ(take(index, 0.375), 0.375F) << index;
}

} // namespace
