#include "uit/controls/UI_CompExpList.h"

#include "kroui/controls/UI_HotTextNumber.h"
#include "kroui/controls/UI_TextField.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/limner/RecordingLimner.h"
#include "kroui/ui/HeadlessWindow.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace uit::controls {
namespace {

using kroui::Point;
using kroui::Rect;
using kroui::controls::UI_ControlChangedMessage;
using kroui::controls::UI_HotTextNumber;
using kroui::controls::UI_InteractiveControlChangedMessage;
using kroui::ui::Key;
using testing::Contains;
using testing::StartsWith;
using Kind = TransferSegment::Kind;
using Points = std::vector<TransferPoint>;

TEST(TransferSegmentTest, KindAndRatioFollowTheSlope) {
    const struct {
        TransferPoint lower;
        TransferPoint upper;
        Kind kind;
        const char* ratio;
        double compression;
    } kRows[] = {
        {{-40, -40}, {0, 0}, Kind::kStraight, "1:1", 0},
        {{-40, -30}, {0, 10}, Kind::kStraight, "1:1", 0},
        {{-20, -20}, {0, -15}, Kind::kCompressor, "4.0:1", 3},
        {{-30, -30}, {0, -10}, Kind::kCompressor, "1.50:1", 0.5},
        {{-100, -100}, {-60, 20}, Kind::kExpander, "3.0:1", -2},
        {{-20, -5}, {0, -5}, Kind::kCompressor, "\u221E:1", 29},
        {{-20, -5}, {0, -15}, Kind::kCompressor, "-2.0:1", 29},
        {{-20, -60}, {-20, -10}, Kind::kExpander, "\u221E:1", -29},
        {{-20, -20}, {-20, -20}, Kind::kStraight, "1:1", 0},
    };
    for (const auto& row : kRows) {
        const TransferSegment segment{row.lower, row.upper};
        EXPECT_EQ(segment.GetKind(), row.kind) << row.ratio;
        EXPECT_EQ(krocore::ToStdString(segment.RatioText()), row.ratio);
        EXPECT_NEAR(segment.Compression(), row.compression, 1e-9 + (row.compression == 0 ? 1e-9 : 0)) << row.ratio;
    }
}

TEST(TransferSegmentTest, TypedRatiosMeanWhatTheSegmentDoes) {
    const TransferSegment compressor{{-20, -20}, {0, -10}};
    const TransferSegment expander{{-60, -100}, {-40, -40}};
    const struct {
        const TransferSegment& segment;
        const char16_t* text;
        double slope;
    } kRows[] = {{compressor, u"4", 0.25},
                 {compressor, u"4:1", 0.25},
                 {compressor, u"4,0 : 1", 0.25},
                 {compressor, u"1:2", 2},
                 {compressor, u"3:2", 2.0 / 3},
                 {compressor, u"1", 1},
                 {compressor, u"0.5", 2},
                 {expander, u"4", 4},
                 {expander, u"4:1", 4},
                 {expander, u"1:4", 4},
                 {expander, u"\u221E:1", std::numeric_limits<double>::infinity()}};
    for (const auto& row : kRows) {
        const std::optional<double> compression = row.segment.ParseRatio(row.text);
        ASSERT_TRUE(compression) << krocore::ToStdString(row.text);
        EXPECT_DOUBLE_EQ(TransferSegment::SlopeOf(*compression), row.slope) << krocore::ToStdString(row.text);
    }
    for (const char16_t* const text : {u"", u":", u"4:", u":1", u"x", u"4:0", u"-2", u"4:1:1", u"\u221E:\u221E"})
        EXPECT_FALSE(compressor.ParseRatio(text)) << krocore::ToStdString(text);
}

class CompExpListTest : public testing::Test {
protected:
    CompExpListTest() {
        window.Window().SetContent(root);
        root->UI_SetFrame({0, 0, 400, 300});
        list->UI_SetFrame({20, 20, 280, 140});
        root->ChildPushBack(list);
        list->SetPoints({{-20, -20}, {-100, -100}, {-60, -60}, {0, -10}});
        list->NotifyWhenChangedInteractively([this](UI_InteractiveControlChangedMessage* message) {
            heard += static_cast<char>('0' + message->GetChangeMessage());
        });
        list->NotifyWhenChanged([this](UI_ControlChangedMessage*) { heard += 'c'; });
        window.Paint();
    }
    std::string Heard() { return std::exchange(heard, {}); }
    UI_HotTextNumber& Ratio(int segment) {
        return dynamic_cast<UI_HotTextNumber&>(*list->Child(static_cast<std::size_t>(segment)));
    }
    Point InRow(int segment) {
        const Rect row = list->RowRect(segment);
        return list->UI_LocalToWindow({row.left + 20, row.Centre().y});
    }
    void TypeRatio(int segment, std::u16string_view text) {
        window.DoubleClick(kroui::ui::HeadlessWindow::CentreOf(Ratio(segment)));
        window.Type(text);
        window.PressKey(Key::kEnter);
    }

    kroui::limner::CairoSupplier supplier;
    kroui::ui::HeadlessWindow window{supplier, {400, 300}};
    boost::intrusive_ptr<kroui::ui::UI_SubView> root{new kroui::ui::UI_SubView};
    boost::intrusive_ptr<UI_CompExpList> list{new UI_CompExpList};
    std::string heard;
};

TEST_F(CompExpListTest, RowsStandFromTheLoudestDown) {
    EXPECT_LT(list->RowRect(2).top, list->RowRect(1).top);
    EXPECT_LT(list->RowRect(1).top, list->RowRect(0).top);
    kroui::limner::RecordingLimner limner;
    list->UI_DrawTree(&limner);
    for (const char* const text : {"Text \"Compressor\" 12", "Text \"2.0:1\" 12 #4DA3FF", "Text \"above -20 dB\"",
                                   "Text \"Straight\"", "Text \"-60 to -20 dB\"", "Text \"below -60 dB\""})
        EXPECT_THAT(limner.Operations(), Contains(StartsWith(text)));
}

TEST_F(CompExpListTest, TypedRatioMovesTheUpperPointAndTheLowestOneInTheLowestSegment) {
    TypeRatio(2, u"4");
    EXPECT_EQ(list->GetPoints(), (Points{{-100, -100}, {-60, -60}, {-20, -20}, {0, -15}}));
    EXPECT_EQ(Heard(), "012c");
    TypeRatio(0, u"2:1");
    EXPECT_EQ(list->GetPoints()[0], (TransferPoint{-100, -80}));
    TypeRatio(1, u"2");
    EXPECT_EQ(list->GetPoints()[2], (TransferPoint{-20, -40}));
    EXPECT_EQ(list->GetPoints()[3], (TransferPoint{0, -15})) << "the points above stay";
}

TEST_F(CompExpListTest, TypedRatioIsHeldWithinTheLevels) {
    list->SetPoints({{-100, -100}, {-60, -60}, {0, -10}});
    TypeRatio(0, u"1:3"); // would lead to -180 dB
    EXPECT_EQ(list->GetPoints()[0].output, -100);
    EXPECT_EQ(Heard(), "012c");
    EXPECT_NEAR(Ratio(0).GetValue(), 0, 1e-9) << "the number is what the curve is";
    TypeRatio(1, u"nonsense");
    EXPECT_NE(Ratio(1).EntryField(), nullptr) << "says so and stays";
    EXPECT_EQ(Heard(), "");
}

TEST_F(CompExpListTest, DragIsOneGestureThatEscapeTakesBack) {
    const Points before = list->GetPoints();
    const Point start = kroui::ui::HeadlessWindow::CentreOf(Ratio(2));
    window.Drag(start, {start.x + 20, start.y}, 4);
    EXPECT_LT(list->GetPoints()[3].output, before[3].output) << "more compression";
    EXPECT_EQ(list->GetPoints()[2], before[2]);
    EXPECT_EQ(Heard(), "011112c");
    const Points between = list->GetPoints();
    window.Press(start);
    window.MoveTo({start.x - 60, start.y});
    EXPECT_NE(list->GetPoints(), between);
    window.PressKey(Key::kEscape);
    EXPECT_EQ(list->GetPoints(), between);
    EXPECT_EQ(Heard(), "013");
    window.Release();
}

TEST_F(CompExpListTest, PointsThatComeBackInADragDoNotDisturbIt) {
    list->NotifyWhenChangedInteractively([this](UI_InteractiveControlChangedMessage*) {
        const Points points = list->GetPoints();
        list->SetPoints({});
        list->SetPoints(points);
    });
    // All rows are made anew under the drag; nothing worse than its end may come of it.
    const Point start = kroui::ui::HeadlessWindow::CentreOf(Ratio(2));
    window.Drag(start, {start.x + 20, start.y}, 4);
    const std::string all = Heard();
    EXPECT_EQ(std::count(all.begin(), all.end(), '0'), std::count(all.begin(), all.end(), '2'));
    EXPECT_EQ(list->GetPoints().size(), 4U);
}

TEST_F(CompExpListTest, PressSelectsTheSegmentAndTheFocusGoesWithIt) {
    window.Click(InRow(1));
    EXPECT_EQ(list->GetSelectedSegment(), 1);
    EXPECT_TRUE(Ratio(1).UI_HasFocus());
    window.PressKey(Key::kTab);
    EXPECT_EQ(list->GetSelectedSegment(), 2);
    list->SetSelectedSegment(7);
    EXPECT_EQ(list->GetSelectedSegment(), -1);
    EXPECT_EQ(Heard(), "") << "selecting changes nothing";
}

TEST_F(CompExpListTest, ManyRowsScrollByWheelThumbAndSelection) {
    Points many;
    for (int i = 0; i <= 20; ++i)
        many.push_back({-100.0 + 5 * i, -100.0 + 5 * i});
    list->SetPoints(many);
    const Rect seen = list->UI_GetLocalRect().Inset(4, 4);
    EXPECT_EQ(list->RowRect(19).top, seen.top);
    window.Wheel(InRow(19), -1);
    EXPECT_EQ(list->ScrollPosition(), 2 * UI_CompExpList::kRowHeight);
    list->SetSelectedSegment(0);
    EXPECT_EQ(list->RowRect(0).Bottom(), seen.Bottom());
    const Point bottom = list->UI_LocalToWindow({seen.Right() - 2, seen.Bottom() - 5});
    window.Drag(bottom, {bottom.x, bottom.y - 200}, 4);
    EXPECT_EQ(list->ScrollPosition(), 0);
    EXPECT_EQ(Heard(), "");
}

TEST_F(CompExpListTest, SetPointsLeavesOutWhatIsNoPoint) {
    const double kNaN = std::numeric_limits<double>::quiet_NaN();
    list->SetPoints({{kNaN, 0}, {-10, kNaN}, {-5, -5}});
    EXPECT_EQ(list->GetPoints(), (Points{{-5, -5}}));
    EXPECT_EQ(list->ChildCount(), 0U);
    window.Click({100, 60});
    EXPECT_EQ(list->GetSelectedSegment(), -1);
    EXPECT_EQ(Heard(), "");
}

} // namespace
} // namespace uit::controls
