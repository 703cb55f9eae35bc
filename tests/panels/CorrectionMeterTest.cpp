#include "qocui/ui/CorrectionMeterView.h"

#include "kroui/limner/CairoSupplier.h"
#include "kroui/limner/RecordingLimner.h"
#include "kroui/ui/HeadlessWindow.h"

#include <gmock/gmock.h>

#include <limits>

using namespace kroui;
using qocui::ui::CorrectionMeterView;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

using Operations = std::vector<std::string>;

// In the middle of a window; 61 x 217: the bar's area is 30, 8, 23, 201, so 100 cents lie at 8, 0 at 108, -100 at 208.
class CorrectionMeterTest : public testing::Test {
protected:
    CorrectionMeterTest() {
        fMeter->UI_SetFrame({20, 10, 61, 217});
        fRoot->ChildPushBack(fMeter);
        fWindow.Window().SetContent(fRoot);
        fWindow.Paint();
    }
    ~CorrectionMeterTest() override { fWindow.Window().SetContent(nullptr); }

    Operations Drawn() const {
        limner::RecordingLimner limner;
        fMeter->UI_Draw(&limner);
        return limner.Operations();
    }
    // The red one.
    std::string Bar() const {
        for (const std::string& operation : Drawn())
            if (operation.ends_with(" #CC0000E6")) return operation;
        return {};
    }
    bool IsRepaintedBy(float cents) {
        fWindow.Paint();
        fMeter->SetValue(cents);
        fWindow.Paint();
        return !fWindow.LastDamage().empty();
    }

    limner::CairoSupplier fSupplier;
    ui::HeadlessWindow fWindow{fSupplier, {100, 240}};
    boost::intrusive_ptr<ui::UI_SubView> fRoot{new ui::UI_SubView};
    boost::intrusive_ptr<CorrectionMeterView> fMeter{new CorrectionMeterView};
};

TEST_F(CorrectionMeterTest, TheScaleIsDrawnUnderTheBarAndTheFrameOverIt) {
    fMeter->SetValue(-50);
    const Operations drawn = Drawn();
    ASSERT_GT(drawn.size(), 6U);
    EXPECT_EQ(drawn.front(), "FillRect 0 0 61 217 #2A2B2F");
    EXPECT_THAT(Operations(drawn.end() - 5, drawn.end()),
                ElementsAre("FillRect 30 8 23 201 #333333E6", "FillRect 30 108 23 50 #CC0000E6", "NewPath",
                            "AddRect 30.5 8.5 22 200", "Stroke #5A5D64 1"));
}

TEST_F(CorrectionMeterTest, MarksCrossTheBarWithTheirNumbersOnItsLeft) {
    const Operations drawn = Drawn();
    // From 4 before the area to 5 behind it; what a minor mark is shows at its ends.
    EXPECT_THAT(drawn, testing::Contains("FillRect 26 108 32 1 #8A8E96"));
    EXPECT_THAT(drawn, testing::Contains(testing::StartsWith("FillRect 28 ")));
    std::vector<std::string> texts;
    for (const std::string& operation : drawn)
        if (operation.starts_with("Text ")) texts.push_back(operation.substr(0, operation.find(' ', 6)));
    EXPECT_EQ(texts.front(), "Text \"100\"");
    EXPECT_THAT(texts, testing::Contains("Text \"0\""));
    EXPECT_EQ(texts.back(), "Text \"-100\"");
}

TEST_F(CorrectionMeterTest, TheBarRunsFromZeroToTheValueHeldWithinTheRange) {
    const std::pair<float, const char*> cases[] = {
        {0, "FillRect 30 108 23 1 #CC0000E6"},      {25, "FillRect 30 83 23 25 #CC0000E6"},
        {100, "FillRect 30 8 23 100 #CC0000E6"},    {250, "FillRect 30 8 23 100 #CC0000E6"},
        {-10, "FillRect 30 108 23 10 #CC0000E6"},   {-250, "FillRect 30 108 23 100 #CC0000E6"},
        {-0.5F, "FillRect 30 108 23 0.5 #CC0000E6"}};
    for (const auto& [cents, bar] : cases) {
        fMeter->SetValue(cents);
        EXPECT_EQ(Bar(), bar) << cents;
    }
}

TEST_F(CorrectionMeterTest, OnlyAnotherValueRepaints) {
    EXPECT_FALSE(IsRepaintedBy(0));
    EXPECT_TRUE(IsRepaintedBy(250));
    EXPECT_FALSE(IsRepaintedBy(250));
    EXPECT_FALSE(IsRepaintedBy(100)) << "shown already";
    EXPECT_FALSE(IsRepaintedBy(std::numeric_limits<float>::quiet_NaN()));
    EXPECT_EQ(Bar(), "FillRect 30 8 23 100 #CC0000E6");
    fMeter->SetValue(-3);
    fWindow.Paint();
    ASSERT_THAT(fWindow.LastDamage(), SizeIs(1));
    EXPECT_EQ(fWindow.LastDamage().front(), (Rect{20, 10, 61, 217}));
}

TEST_F(CorrectionMeterTest, OddSizesRoundTheAreaToWholePixelsAndTooSmallOnesHaveNone) {
    fMeter->UI_SetFrame({0, 0, 40.5F, 57});
    fMeter->SetValue(100);
    EXPECT_EQ(Bar(), "FillRect 20 8 13 20 #CC0000E6"); // floor(20.25), ceil(20.25) - 8; zero at 28
    for (const Size size : {Size{15, 100}, Size{16, 100}, Size{60, 16}, Size{0, 0}}) {
        fMeter->UI_SetFrame({0, 0, size.width, size.height});
        EXPECT_EQ(Bar(), "") << size.width << " x " << size.height;
        EXPECT_THAT(Drawn(), Not(testing::Contains(testing::StartsWith("Stroke"))));
    }
}

} // namespace
