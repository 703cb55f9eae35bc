#include "PanelHost.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_TabGroup.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"
#include "uit/controls/UI_CurveEditor.h"
#include "uit/controls/UI_EditNumber.h"

#include <gmock/gmock.h>

using namespace kroui;
using namespace qoc::components;
using uit::controls::UI_CurveEditor;
using uit::controls::UI_EditNumber;

namespace {

constexpr int kRoomPage = 1;
constexpr int kEqualizerPage = 2;

// The panel of a real effect, from the factory, in a window.
class FullReverbPanelTest : public test::PanelHost<> {
protected:
    FullReverbPanelTest() : PanelHost({1000, 700}) {
        fFilter = CreateEffect(kFullReverbComponentID);
        fFilter->Prepare(44100, 64, kromediatypes::AudioChannelLayout::Stereo());
        ShowPanelOf(fFilter);
    }

    // The control of that kind that is shown, and called so.
    template <class Control>
    Control& Find(const std::string& name) {
        Control* const control = Find<Control>(name, *fView);
        if (control == nullptr) throw std::runtime_error(name + " is not shown");
        return *control;
    }
    template <class Control>
    Control* Find(const std::string& name, ui::UI_Node& node) {
        if (!node.UI_IsVisible()) return nullptr;
        auto* const control = dynamic_cast<Control*>(&node);
        if (control && (name.empty() || krocore::ToStdString(node.UI_GetAccessibleInfo().name) == name)) return control;
        for (const auto& child : node.Children())
            if (Control* const found = Find<Control>(name, *child)) return found;
        return nullptr;
    }
    void TurnTo(int page) {
        auto& tabs = Find<controls::UI_TabGroup>("Settings");
        fWindow.Click(tabs.UI_LocalToWindow(tabs.TabRect(page).Centre()));
    }
    void ClickSetByRoom() {
        fWindow.Click(ui::HeadlessWindow::CentreOf(Find<controls::UI_Checkbox>("Set by Room Size")));
        Poll();
    }
    double Natural(int index) const {
        return fFilter->GetParameterInfo(index)->ToNatural(fFilter->GetParameterValue(index));
    }
    void Set(int index, double natural) {
        fFilter->SetParameterValue(index, fFilter->GetParameterInfo(index)->ToNormalised(static_cast<float>(natural)));
        Poll();
    }
    std::vector<float> Stored() const {
        std::vector<float> values;
        for (int i = 0; i < fFilter->GetParameterCount(); ++i)
            values.push_back(fFilter->GetParameterValue(i));
        return values;
    }

    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
};

TEST_F(FullReverbPanelTest, APointOfTheGraphMovesFrequencyAndGainOfItsBandAndNothingElse) {
    TurnTo(kEqualizerPage);
    auto& graph = Find<UI_CurveEditor>("");
    const auto placeOf = [&](std::size_t point) {
        return graph.UI_LocalToWindow(graph.GetPixelForCoordinatePair(graph.GetCurvePoints()[point].coordinates));
    };
    const std::vector<float> before = Stored();
    const Point from = placeOf(1);
    fWindow.Drag(from, {from.x + 42, from.y - 30});
    Poll();
    // Three decades are 420 units wide.
    EXPECT_NEAR(Natural(kFullReverbMiddleFrequency), 1000 * std::pow(10, 42 / 140.0), 40);
    EXPECT_GT(Natural(kFullReverbMiddleGain), 4);
    const std::vector<float> after = Stored();
    for (int i = 0; i < fFilter->GetParameterCount(); ++i) {
        if (i == kFullReverbMiddleFrequency || i == kFullReverbMiddleGain) continue;
        EXPECT_NEAR(after[static_cast<std::size_t>(i)], before[static_cast<std::size_t>(i)], 1e-6) << i;
    }
    EXPECT_NEAR(Find<UI_EditNumber>("Peak:").GetValue(), Natural(kFullReverbMiddleFrequency), 0.6);
    EXPECT_NEAR(Find<UI_EditNumber>("Peak Gain:").GetValue(), Natural(kFullReverbMiddleGain), 0.06);
}

TEST_F(FullReverbPanelTest, PointsFollowNumbersAndMayPassEachOther) {
    TurnTo(kEqualizerPage);
    Set(kFullReverbLowFrequency, 8000);
    Set(kFullReverbLowGain, -12);
    const auto& points = Find<UI_CurveEditor>("").GetCurvePoints();
    ASSERT_EQ(points.size(), 3U);
    EXPECT_NEAR(points[0].coordinates.horizontal, 8000, 0.01);
    EXPECT_NEAR(points[0].coordinates.vertical, -12, 1e-4);
    EXPECT_NEAR(points[2].coordinates.horizontal, 5000, 0.01);
}

TEST_F(FullReverbPanelTest, TheRoomsDecayIsShownWhileItHoldsAndTheUsersOwnIsKept) {
    Set(kFullReverbDecay, 4000);
    ClickSetByRoom();
    EXPECT_NEAR(Natural(kFullReverbDecay), 4000, 0.01);
    for (const double size : {100.0, 20000.0}) {
        Set(kFullReverbRoomSize, size);
        const auto& shown = Find<UI_EditNumber>("Decay Time:");
        EXPECT_TRUE(shown.IsDisabled());
        EXPECT_NEAR(shown.GetValue(), Natural(kFullReverbRoomDecay), 0.01) << size;
        EXPECT_NEAR(Find<UI_EditNumber>("Pre-Delay Time:").GetValue(), Natural(kFullReverbRoomPredelay), 0.01);
        EXPECT_NEAR(Natural(kFullReverbDecay), 4000, 0.01);
    }
    ClickSetByRoom();
    EXPECT_FALSE(Find<UI_EditNumber>("Decay Time:").IsDisabled());
    EXPECT_NEAR(Find<UI_EditNumber>("Decay Time:").GetValue(), 4000, 0.01);
}

TEST_F(FullReverbPanelTest, KeepsItsSizeFromPageToPage) {
    const Rect first = fView->UI_GetFrame();
    for (const int page : {kRoomPage, kEqualizerPage}) {
        TurnTo(page);
        EXPECT_NEAR(fView->UI_GetFrame().width, first.width, 1) << page;
        EXPECT_NEAR(fView->UI_GetFrame().height, first.height, 1) << page;
    }
}

} // namespace
