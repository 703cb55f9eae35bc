#include "uit/controls/UI_RulerGridBase.h"

#include "kroui/limner/CairoSupplier.h"
#include "kroui/limner/RecordingLimner.h"
#include "kroui/ui/HeadlessWindow.h"
#include "kroui/utility/DecibelRuler.h"
#include "kroui/utility/LinearRuler.h"
#include "kroui/utility/LogRuler.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace uit::controls {
namespace {

using kroui::Point;
using kroui::Rect;
using kroui::ui::kCommand;
using kroui::ui::kNoModifier;
using kroui::utility::RulerTick;
using testing::Contains;
using testing::StartsWith;

class Grid : public UI_RulerGridBase {
public:
    Grid(RulerPtr horizontal, RulerPtr vertical) : UI_RulerGridBase(horizontal, vertical) {}
    using UI_RulerGridBase::HorizontalRuler;
    using UI_RulerGridBase::VerticalRuler;

    void SetCurrentRange(double left, double right, double top, double bottom) override {
        ++rangesSet;
        UI_RulerGridBase::SetCurrentRange(left, right, top, bottom);
    }
    int rangesSet = 0;

protected:
    ~Grid() override = default;
};

UI_RulerGridBase::RulerPtr Linear() {
    return new kroui::utility::LinearRuler;
}

class RulerGridTest : public testing::Test {
protected:
    RulerGridTest() {
        grid->UI_SetFrame({0, 0, 453, 226}); // a content of 400 x 200
        grid->SetRanges(10, 100000, 24, -24);
        grid->SetRulersSupportZooming(true);
        window.Window().SetContent(grid);
        window.Paint();
    }
    Rect Content() const { return grid->GetContentRect(); }
    Point OnHorizontalRuler(float part) const { return {Content().left + part * 400, Content().Bottom() + 8}; }
    Point OnVerticalRuler(float part) const { return {10, Content().top + part * 200}; }

    kroui::limner::CairoSupplier supplier;
    kroui::ui::HeadlessWindow window{supplier, {500, 300}};
    boost::intrusive_ptr<Grid> grid{new Grid(new kroui::utility::LogRuler, Linear())};
};

TEST_F(RulerGridTest, WheelOverARulerZoomsAboutThePointerInTheRulersOwnMeasure) {
    window.Wheel(OnHorizontalRuler(0.25F), 1); // at 100 of 10...100000
    EXPECT_NEAR(grid->GetCoordinatePairForPixel(OnHorizontalRuler(0.25F)).horizontal, 100, 0.01);
    // A fifth less is shown: 4 decades / 1.25.
    EXPECT_NEAR(std::log10(grid->GetHorizontalEnd() / grid->GetHorizontalStart()), 3.2, 1e-6);
    EXPECT_EQ(grid->GetVerticalStart(), 24);
    EXPECT_EQ(grid->rangesSet, 1);
    window.Wheel(OnHorizontalRuler(1), -5); // beyond all: all
    EXPECT_EQ(grid->GetHorizontalStart(), 10);
    EXPECT_EQ(grid->GetHorizontalEnd(), 100000);
    for (int i = 0; i < 100; ++i)
        window.Wheel(OnVerticalRuler(0.5F), 1);
    EXPECT_NEAR(grid->GetVerticalStart() - grid->GetVerticalEnd(), 0.048, 1e-6); // a thousandth
    EXPECT_NEAR(grid->GetVerticalStart(), 0.024, 1e-6);
}

TEST_F(RulerGridTest, CtrlWheelOverTheContentZoomsBothAxesAtOnce) {
    const Point at{Content().left + 100, Content().top + 150};
    window.Wheel(at, 2);
    EXPECT_EQ(grid->rangesSet, 0);
    window.Wheel(at, 2, kCommand);
    EXPECT_EQ(grid->rangesSet, 1);
    EXPECT_NEAR(grid->GetCoordinatePairForPixel(at).horizontal, 100, 0.01);
    EXPECT_NEAR(grid->GetCoordinatePairForPixel(at).vertical, -12, 0.001);
    EXPECT_NEAR(grid->GetVerticalStart() - grid->GetVerticalEnd(), 48 / 1.5625, 1e-6);
}

TEST_F(RulerGridTest, DragOnARulerPansWithinTheBoundsAndDoubleClickShowsAll) {
    grid->SetCurrentRange(100, 10000, 12, -12);
    window.Drag(OnHorizontalRuler(0.5F), OnHorizontalRuler(0.75F)); // a quarter of two decades
    EXPECT_NEAR(grid->GetHorizontalStart(), 100 / std::sqrt(10), 1e-3);
    EXPECT_NEAR(grid->GetHorizontalEnd(), 10000 / std::sqrt(10), 1e-1);
    window.Press(OnVerticalRuler(0.5F));
    window.MoveTo({10, 1000});
    EXPECT_EQ(grid->GetVerticalStart(), 24);
    EXPECT_NEAR(grid->GetVerticalEnd(), 0, 1e-6);
    window.MoveTo(OnVerticalRuler(0.25F)); // counted from the press, not from the bound
    EXPECT_NEAR(grid->GetVerticalStart(), 6, 1e-6);
    window.Window().Deactivated();
    EXPECT_NEAR(grid->GetVerticalStart(), 12, 1e-6);
    window.DoubleClick(OnVerticalRuler(0.5F));
    EXPECT_EQ(grid->GetVerticalStart(), 24);
    EXPECT_EQ(grid->GetVerticalEnd(), -24);
    EXPECT_NEAR(grid->GetHorizontalEnd(), 10000 / std::sqrt(10), 1e-1);
}

TEST_F(RulerGridTest, WithoutZoomingRulersNothingMoves) {
    grid->SetRulersSupportZooming(false);
    window.Wheel(OnHorizontalRuler(0.5F), 3);
    window.Drag(OnHorizontalRuler(0.5F), OnHorizontalRuler(0.75F));
    window.DoubleClick(OnHorizontalRuler(0.5F));
    EXPECT_EQ(grid->rangesSet, 0);
}

TEST_F(RulerGridTest, NewBoundsKeepThePartShownAsFarAsItIsThere) {
    grid->SetRanges(10, 50000, 24, -24);
    EXPECT_EQ(grid->GetHorizontalEnd(), 50000);
    grid->SetCurrentRange(100, 40000, 12, -12);
    grid->SetRanges(20, 22050, 6, -96);
    EXPECT_EQ(grid->GetHorizontalStart(), 100);
    EXPECT_EQ(grid->GetHorizontalEnd(), 22050);
    EXPECT_EQ(grid->GetVerticalStart(), 6);
    EXPECT_EQ(grid->GetVerticalEnd(), -12);
    grid->SetRanges(30000, 40000, 6, -96); // nothing of what was shown
    EXPECT_EQ(grid->GetHorizontalStart(), 30000);
    EXPECT_EQ(grid->GetHorizontalEnd(), 40000);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    grid->SetRanges(nan, 1, 3, 3);
    grid->SetCurrentRange(35000, std::numeric_limits<double>::infinity(), -96, 6); // upside down is put right
    EXPECT_EQ(grid->GetHorizontalStart(), 30000);
    EXPECT_EQ(grid->GetVerticalStart(), 6);
    EXPECT_EQ(grid->GetBound(2), 6);
}

TEST_F(RulerGridTest, ValuesAndPixelsAreEachOthersInverse) {
    EXPECT_EQ(grid->GetPixelForCoordinatePair({10, 24}), (Point{Content().left, Content().top}));
    EXPECT_EQ(grid->GetPixelForCoordinatePair({1000, 0}), Content().Centre());
    EXPECT_EQ(grid->GetPixelForCoordinatePair({100000, -24}), (Point{Content().Right(), Content().Bottom()}));
}

TEST_F(RulerGridTest, GridIsDrawnOnceAndCopiedUntilItChanges) {
    const auto draw = [this] {
        kroui::limner::RecordingLimner limner;
        grid->UI_Draw(&limner);
        return limner.Operations();
    };
    const auto isCopy = [](const std::vector<std::string>& operations) {
        EXPECT_THAT(operations, Contains(StartsWith("Image 453x226 0 0 453 226")));
        return testing::Matches(testing::Each(testing::Not(StartsWith("FillRect"))))(operations);
    };
    EXPECT_TRUE(isCopy(draw()));
    const auto before = window.Snapshot();
    grid->SetCurrentRange(10, 1000, 24, -24);
    const auto after = window.Snapshot();
    EXPECT_FALSE(std::equal(before->Pixels().begin(), before->Pixels().end(), after->Pixels().begin()));
    grid->SetCurrentRange(10, 1000, 24, -24);
    EXPECT_EQ(window.Paint(), 0);
    // A light theme and another scale are followed.
    window.Window().SetTheme(kroui::ui::Theme::Light());
    const auto light = window.Snapshot();
    EXPECT_EQ(light->Pixels()[0], 0xFFF6F7F9);
    window.Window().SetHostScale(2);
    EXPECT_EQ(window.Snapshot()->Pixels()[0], 0xFFF6F7F9);
}

TEST_F(RulerGridTest, LabelsNeitherOverlapNorLeaveTheNodeAtAnySize) {
    const auto decibel = [] {
        UI_RulerGridBase::RulerPtr ruler(new kroui::utility::DecibelRuler);
        ruler->SetStyle(kroui::utility::RulerBase::kFader);
        ruler->SetStepFactor(1);
        ruler->HideTruncatedStrings(true);
        return ruler;
    };
    const struct {
        UI_RulerGridBase::RulerPtr horizontal, vertical;
        double left, right, top, bottom;
    } cases[] = {{new kroui::utility::LogRuler, Linear(), 20, 96000, 96, -96},
                 {Linear(), decibel(), 20, 24000, 1, 0},
                 {Linear(), Linear(), -100, 0, 0, -100},
                 {new kroui::utility::LogRuler, Linear(), 995, 1005, 180.5, 179.5}};
    for (const auto& c : cases) {
        c.horizontal->SetStepFactor(20);
        if (!dynamic_cast<kroui::utility::DecibelRuler*>(c.vertical.get())) c.vertical->SetStepFactor(20);
        grid->SetRulers(c.horizontal, c.vertical);
        grid->SetRanges(c.left, c.right, c.top, c.bottom);
        grid->SetHorizontalLabel1(u"Hz");
        for (float width = 200; width <= 2000; width += 29) {
            grid->UI_SetFrame({0, 0, width, width / 2});
            kroui::limner::RecordingLimner limner;
            grid->UI_Draw(&limner);
            const struct {
                const kroui::utility::RulerBase& ruler;
                float start, end;
            } axes[] = {{grid->HorizontalRuler(), 0, width - 16}, {grid->VerticalRuler(), 0, width / 2}};
            for (const auto& [ruler, start, end] : axes) {
                float last = start;
                int count = 0;
                for (const RulerTick& tick : ruler.GetTicks(&supplier)) {
                    if (tick.text.empty()) continue;
                    ASSERT_GE(tick.textStart, last) << width;
                    last = tick.textStart + tick.textLength;
                    ASSERT_LE(last, end) << width;
                    ++count;
                }
                EXPECT_GE(count, width < 300 ? 1 : 2) << width;
            }
        }
    }
}

} // namespace
} // namespace uit::controls
