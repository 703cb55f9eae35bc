#include "PanelFixture.h"
#include "kroui/limner/RecordingLimner.h"
#include "qoc/components/ComponentIDs.h"
#include "qocui/ui/FFTFilterGraph.h"

using namespace kroui;
using kroui::ui::Key;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

enum Index { kSplines, kSize, kWindow, kUpdating, kScale, kCount = 9, kFirst = 10, kParameters = 266 };

class FFTFilterEditorTest : public test::PanelTest {
protected:
    FFTFilterEditorTest() : PanelTest(kParameters, qoc::components::kFFTFilterComponentID) {
        fFilter->Store(kCount, 2.0F / 128);
        fFilter->Store(kFirst, 20 / 22050.0F);
        fFilter->Store(kFirst + 1, 0.5F);
        fFilter->Store(kFirst + 2, 1);
        fFilter->Store(kFirst + 3, 0.5F);
    }
    qocui::ui::FFTFilterGraph& Graph() { return Find<qocui::ui::FFTFilterGraph>("FFTFilterGraph"); }
};

TEST_F(FFTFilterEditorTest, EverySizeIsShownFromTheValueThatItStores) {
    Open();
    Click("Advanced");
    EXPECT_THAT(Items("FFTSize"),
                ElementsAre("32", "64", "128", "256", "512", "1024", "2048", "4096", "8192", "16384", "32768"));
    std::vector<float> stored;
    for (int size = 32; size <= 32768; size *= 2)
        stored.push_back(static_cast<float>((size - 32) / 23968.0));
    ExpectItemsAreStoredAs("FFTSize", kSize, stored);
    EXPECT_GT(fFilter->GetParameterValue(kSize), 1) << "the largest size is stored above 1";
    for (const float odd : {0.5F, -2.0F, 1e30F}) {
        fFilter->Store(kSize, odd);
        Poll();
        EXPECT_EQ(Popup("FFTSize").GetValue(), -1) << odd;
    }
}

TEST_F(FFTFilterEditorTest, WindowTypesAreStoredInEighths) {
    Open();
    Click("Advanced");
    EXPECT_THAT(Items("WindowType"), ElementsAre("Triangular", "Hann", "Hamming", "Blackman", "Gaussian",
                                                 "Blackman-Harris", "Kaiser (140 dB)", "Kaiser (180 dB)"));
    const struct {
        float stored;
        int item;
    } cases[] = {{0, 0}, {0.125F, 1}, {0.2499F, 1}, {0.625F, 5}, {0.875F, 7}, {0.999F, 7}};
    for (const auto& c : cases) {
        fFilter->Store(kWindow, c.stored);
        Poll();
        EXPECT_EQ(Popup("WindowType").GetValue(), c.item) << c.stored;
    }
    fFilter->Store(kWindow, 1);
    Poll();
    EXPECT_EQ(Popup("WindowType").GetValue(), 7) << "an item that does not exist is not shown";
    fFilter->TakeLog();
    PressIn("WindowType", Key::kUp);
    EXPECT_THAT(TakeEdits(), ElementsAre("set 2 0.75"));
}

TEST_F(FFTFilterEditorTest, TheScalePopupWritesQuietlyAndTurnsTheAxis) {
    Open();
    EXPECT_EQ(Shown("LinearLogMode"), "Logarithmic");
    const auto pixelOf1k = [&] { return Graph().GetPixelForCoordinatePair({1000, 0}).x; };
    const float logarithmic = pixelOf1k();
    PressIn("LinearLogMode", Key::kUp);
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("quiet 4 1"));
    Poll();
    EXPECT_LT(pixelOf1k(), logarithmic - 100);
    fFilter->TakeLog();
    PressIn("LinearLogMode", Key::kDown);
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("quiet 4 0"));
    fFilter->Store(kScale, 0.5F);
    Poll();
    EXPECT_EQ(Shown("LinearLogMode"), "Linear");
}

TEST_F(FFTFilterEditorTest, TheSplineBoxAndTheGraphFollowTheParameter) {
    Open();
    Click("SplineCurves");
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("set 0 1"));
    Poll();
    EXPECT_TRUE(Graph().UsesSplines());
    fFilter->Store(kSplines, 0.49F);
    Poll();
    EXPECT_FALSE(IsChecked("SplineCurves"));
    EXPECT_FALSE(Graph().UsesSplines());
}

TEST_F(FFTFilterEditorTest, TheAdvancedSectionOpensBelowAndThePanelGrows) {
    Open();
    const Rect closed = fView->UI_GetFrame();
    EXPECT_EQ(closed, (Rect{0, 0, 672, 400})) << "the archive's bounds";
    int tellings = 0;
    fView->GetContentSizeChangedSignal().connect([&] { ++tellings; });
    EXPECT_FALSE(fView->UI_FindNode("AdvancedSection")->UI_IsVisible());
    EXPECT_FALSE(Popup("FFTSize").IsEnabled());

    Click("Advanced");
    const auto* const section = fView->UI_FindNode("AdvancedSection");
    EXPECT_TRUE(section->UI_IsVisible());
    EXPECT_TRUE(Popup("FFTSize").IsEnabled());
    EXPECT_TRUE(Popup("WindowType").IsEnabled());
    EXPECT_EQ(fView->UI_GetFrame().height, closed.height + 8 + section->UI_GetFrame().height);
    EXPECT_EQ(section->UI_GetFrame().Bottom() + 16, fView->UI_GetFrame().height) << "the margin stays";
    EXPECT_EQ(tellings, 1);

    PressIn("Advanced", Key::kSpace);
    EXPECT_EQ(fView->UI_GetFrame(), closed);
    EXPECT_FALSE(Popup("WindowType").IsEnabled());
    EXPECT_EQ(tellings, 2);
    EXPECT_THAT(TakeEdits(), IsEmpty());
}

TEST_F(FFTFilterEditorTest, WhatCannotBeAutomatedIsLockedWhileTheEngineRuns) {
    fFilter->SetCanChangeNonAutomatableParameters(false);
    Open();
    Click("Advanced");
    for (const bool can : {false, true, false}) {
        fFilter->SetCanChangeNonAutomatableParameters(can);
        Poll();
        EXPECT_EQ(Popup("FFTSize").IsEnabled(), can);
        EXPECT_EQ(Popup("WindowType").IsEnabled(), can);
        EXPECT_TRUE(Popup("LinearLogMode").IsEnabled());
    }
}

TEST_F(FFTFilterEditorTest, TheResetButtonFlattensTheCurve) {
    Open();
    Click("ResetButton");
    EXPECT_THAT(fFilter->TakeLog(), Contains(StartsWith("set 11 0.63095")));
    Poll();
    EXPECT_NEAR(Graph().GetCurvePoints().front().coordinates.vertical, 0.63095, 1e-5);
    limner::RecordingLimner limner;
    fView->UI_FindNode("ResetButton")->UI_Draw(&limner);
    EXPECT_THAT(limner.Operations(), Contains(StartsWith("Image 16x16 4 4 16 16")));
}

TEST_F(FFTFilterEditorTest, TheGraphFollowsTheFilterAndItsSampleRateAtThePolls) {
    Open();
    fFilter->Store(kFirst + 1, 0.25F);
    fFilter->Prepare(48000, 64, kromediatypes::AudioChannelLayout::Stereo());
    Poll();
    EXPECT_EQ(Graph().GetCurvePoints().front().coordinates.vertical, 0.25);
    EXPECT_EQ(Graph().GetHorizontalEnd(), 24000);
    EXPECT_THAT(TakeEdits(), IsEmpty());
}

} // namespace
