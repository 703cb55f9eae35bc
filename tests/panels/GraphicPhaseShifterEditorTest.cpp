#include "PanelFixture.h"
#include "qoc/components/ComponentIDs.h"
#include "qocui/ui/GraphicPhaseShifterGraph.h"

using namespace kroui;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

enum Index { kSplines, kSize, kUpdating, kChannel, kRange, kScale, kCount = 10, kFirst = 11, kParameters = 267 };

class GraphicPhaseShifterEditorTest : public test::PanelTest {
protected:
    GraphicPhaseShifterEditorTest() : PanelTest(kParameters, qoc::components::kGraphicPhaseShifterComponentID) {
        fFilter->Store(kCount, 2.0F / 128);
        fFilter->Store(kFirst + 1, 0.75F);
        fFilter->Store(kFirst + 2, 1);
        fFilter->Store(kFirst + 3, 0.5F);
    }
    qocui::ui::GraphicPhaseShifterGraph& Graph() {
        return Find<qocui::ui::GraphicPhaseShifterGraph>("GraphicPhaseShifterGraph");
    }
};

TEST_F(GraphicPhaseShifterEditorTest, TheRadioButtonsTurnTheAxesAtOnce) {
    Open();
    EXPECT_TRUE(IsChecked("Logarithmic"));
    EXPECT_TRUE(IsChecked("Range180"));
    const auto pixelOf1k = [&] { return Graph().GetPixelForCoordinatePair({1000, 0}).x; };
    const float logarithmic = pixelOf1k();
    Click("Linear");
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("quiet 5 1"));
    EXPECT_LT(pixelOf1k(), logarithmic - 100);
    Click("Range360");
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("set 4 1"));
    EXPECT_EQ(Graph().GetVerticalStart(), 360);
    Click("Logarithmic");
    Click("Range180");
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("quiet 5 0", "set 4 0"));
    EXPECT_EQ(pixelOf1k(), logarithmic);
    EXPECT_EQ(Graph().GetVerticalStart(), 180);
}

TEST_F(GraphicPhaseShifterEditorTest, TheButtonsFollowTheFilterAtThePolls) {
    Open();
    fFilter->Store(kScale, 0.5F);
    fFilter->Store(kRange, 0.5F);
    fFilter->Store(kSplines, 0.5F);
    Poll();
    EXPECT_TRUE(IsChecked("Linear"));
    EXPECT_FALSE(IsChecked("Logarithmic"));
    EXPECT_TRUE(IsChecked("Range360"));
    EXPECT_FALSE(IsChecked("Range180"));
    EXPECT_TRUE(IsChecked("SplineCurves"));
    EXPECT_TRUE(Graph().UsesSplines());
    fFilter->TakeLog();
    Click("SplineCurves");
    EXPECT_THAT(TakeEdits(), ElementsAre("set 0 0"));
}

TEST_F(GraphicPhaseShifterEditorTest, EverySizeIsShownFromTheValueThatItStores) {
    Open();
    EXPECT_THAT(Items("FFTSize"), ElementsAre("512", "1024", "2048", "4096", "8192", "16384", "32768", "65536"));
    std::vector<float> stored;
    for (int size = 512; size <= 65536; size *= 2)
        stored.push_back(static_cast<float>((size - 32) / 65504.0));
    ExpectItemsAreStoredAs("FFTSize", kSize, stored);
    EXPECT_EQ(fFilter->GetParameterValue(kSize), 1);
    fFilter->Store(kSize, 0);
    Poll();
    EXPECT_EQ(Popup("FFTSize").GetValue(), -1) << "32 is none of the sizes";
}

TEST_F(GraphicPhaseShifterEditorTest, TheFirstChannelItemSaysAllOrBoth) {
    using kromediatypes::AudioChannelLayout;
    const struct {
        AudioChannelLayout layout;
        std::string first, second, last;
    } cases[] = {{AudioChannelLayout::Stereo(), "Both", "Left", "Right"},
                 {AudioChannelLayout::Mono(), "All", "Mono", "Mono"},
                 {AudioChannelLayout::Discrete(32), "All", "1", "32"}};
    Open();
    for (const auto& c : cases) {
        fFilter->Prepare(44100, 64, c.layout); // also while the panel is open
        Poll();
        const auto items = Items("Channel");
        ASSERT_EQ(items.size(), c.layout.size() + 1);
        EXPECT_EQ(items.front(), c.first);
        EXPECT_EQ(items[1], c.second);
        EXPECT_EQ(items.back(), c.last);
    }
}

TEST_F(GraphicPhaseShifterEditorTest, EveryChannelIsShownFromTheValueThatItStores) {
    fFilter->Prepare(44100, 64, kromediatypes::AudioChannelLayout::Discrete(32));
    Open();
    std::vector<float> stored;
    for (int item = 0; item <= 32; ++item)
        stored.push_back(static_cast<float>(item / 33.0));
    ExpectItemsAreStoredAs("Channel", kChannel, stored);
    fFilter->Store(kChannel, 1);
    Poll();
    EXPECT_EQ(Popup("Channel").GetValue(), -1) << "there is no channel 33";
}

TEST_F(GraphicPhaseShifterEditorTest, TheSizeIsLockedWhileTheEngineRuns) {
    Open();
    for (const bool can : {false, true}) {
        fFilter->SetCanChangeNonAutomatableParameters(can);
        Poll();
        EXPECT_EQ(Popup("FFTSize").IsEnabled(), can);
        EXPECT_TRUE(Popup("Channel").IsEnabled());
    }
}

TEST_F(GraphicPhaseShifterEditorTest, TheResetButtonFlattensTheCurve) {
    Open();
    EXPECT_NEAR(Graph().GetCurvePoints().front().coordinates.vertical, 90, 1e-4);
    Click("ResetButton");
    EXPECT_THAT(fFilter->TakeLog(), Contains("set 12 0.5"));
    Poll();
    EXPECT_EQ(Graph().GetCurvePoints().front().coordinates.vertical, 0);
}

TEST_F(GraphicPhaseShifterEditorTest, TheGraphFollowsTheSampleRate) {
    Open();
    fFilter->Prepare(96000, 64, kromediatypes::AudioChannelLayout::Stereo());
    Poll();
    EXPECT_EQ(Graph().GetHorizontalEnd(), 48000);
    EXPECT_EQ(Graph().GetCurvePoints().back().coordinates.horizontal, 48000);
    EXPECT_THAT(TakeEdits(), IsEmpty());
}

} // namespace
