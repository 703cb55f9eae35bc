#include "qocui/ui/GraphicPhaseShifterGraph.h"

#include "CurveGraphFixture.h"
#include "kroui/limner/RecordingLimner.h"

#include <cmath>
#include <sstream>

using namespace kroui;
using qocui::ui::GraphicPhaseShifterGraph;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

enum Index { kSplines = 0, kRange = 4, kScale = 5, kCount = 10, kFirst = 11, kParameters = 267 };
constexpr double kNyquist = 22050;

class ExposedGraph : public GraphicPhaseShifterGraph {
public:
    using GraphicPhaseShifterGraph::DrawCurvePoints;
    using GraphicPhaseShifterGraph::GraphicPhaseShifterGraph;
};

class GraphicPhaseShifterGraphTest : public test::CurveGraphTest<ExposedGraph> {
protected:
    GraphicPhaseShifterGraphTest() : CurveGraphTest(kParameters, kCount) {
        StorePoints({{0, 0.5F}, {0.5F, 0.75F}, {1, 0.5F}});
    }

    // The line as it is drawn, without the handles.
    std::vector<Point> Line() {
        limner::RecordingLimner limner;
        fGraph->DrawCurvePoints(limner);
        std::istringstream stream(limner.Operations().back());
        std::string name, color, width;
        stream >> name >> color >> width;
        EXPECT_EQ(name, "StrokeFunction");
        std::vector<Point> line;
        char comma = 0;
        for (Point point; stream >> point.x >> comma >> point.y;)
            line.push_back(point);
        return line;
    }
};

TEST_F(GraphicPhaseShifterGraphTest, PositionsAndPhasesCountInPartsOfTheAxes) {
    Open();
    const struct {
        float scale, range, position, phase;
        double hertz, degrees;
    } cases[] = {
        {0, 0, 0.5F, 0.75F, std::sqrt(20 * kNyquist), 90}, // the geometric mean of the ends
        {0.49F, 0.49F, 0, 0, 20, -180},
        {0, 0.5F, 1, 1, kNyquist, 360},
        {0.5F, 1, 0.5F, 0.25F, (20 + kNyquist) / 2, -180},
        {1, 0, 0.1F, 0.5F, 20 + 2203, 0},
        {1, 0, -0.3F, 0.5F, 20, 0}, // held within the axis
        {0, 0, 4, 0.5F, kNyquist, 0},
    };
    for (const auto& c : cases) {
        fFilter->Store(kScale, c.scale);
        fFilter->Store(kRange, c.range);
        fFilter->Store(kFirst + 2, c.position);
        fFilter->Store(kFirst + 3, c.phase);
        fGraph->SyncParameters();
        EXPECT_NEAR(At(1).horizontal, c.hertz, c.hertz * 1e-6) << c.position;
        EXPECT_NEAR(At(1).vertical, c.degrees, 1e-4) << c.phase;
    }
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty());
}

TEST_F(GraphicPhaseShifterGraphTest, ADragStoresTheAxesParts) {
    for (const float setting : {0.0F, 1.0F}) {
        fFilter->Store(kScale, setting);
        fFilter->Store(kRange, setting);
        StorePoints({{0, 0.5F}, {0.5F, 0.75F}, {1, 0.5F}});
        Open();
        const Rect content = fGraph->GetContentRect();
        fWindow.Drag(PixelOf(1), Moved(PixelOf(1), 50, 30));
        // Both axes store what part of their length in pixels lies before the point.
        EXPECT_NEAR(Value(kFirst + 2), 0.5 + 50 / content.width, 1e-3);
        EXPECT_NEAR(Value(kFirst + 3), 0.75 - 30 / content.height, 1e-3);
        EXPECT_EQ(Value(kFirst), 0) << "the ends don't move by being written";
        EXPECT_EQ(Value(kFirst + 4), 1);
        const auto log = fFilter->TakeLog();
        ASSERT_GE(log.size(), 9U);
        const std::vector<std::string> pass(log.end() - 9, log.end());
        EXPECT_THAT(pass, ElementsAre("quiet 2 1", "quiet 10 0.0234375", "set 11 0", "set 12 0.5",
                                      Entry("set", 13, Value(13)), Entry("set", 14, Value(14)), "set 15 1",
                                      "set 16 0.5", "quiet 2 0"));
    }
}

TEST_F(GraphicPhaseShifterGraphTest, OtherAxesChangeTheRulersAndWhatThePointsMean) {
    Open();
    EXPECT_EQ(fGraph->GetVerticalStart(), 180);
    EXPECT_EQ(fGraph->GetVerticalEnd(), -180);
    const Point before = PixelOf(1);
    fFilter->Store(kRange, 1);
    fFilter->Store(kScale, 1);
    fGraph->SyncParameters();
    EXPECT_EQ(fGraph->GetVerticalStart(), 360);
    EXPECT_NEAR(At(1).vertical, 180, 1e-4);
    EXPECT_NEAR(PixelOf(1).x, before.x, 0.01) << "the same part of the axis";
    EXPECT_NEAR(PixelOf(1).y, before.y, 0.01);
}

TEST_F(GraphicPhaseShifterGraphTest, WithoutRoomNothingIsWritten) {
    Open();
    fGraph->UI_SetFrame({0, 0, 0, 0});
    fFilter->TakeLog();
    fGraph->ResetPoints();
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty());
}

TEST_F(GraphicPhaseShifterGraphTest, ResetWritesZeroDegreesAndTheRangeShownPartsOfNyquist) {
    Open();
    fGraph->ResetPoints();
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("quiet 2 1", "quiet 10 0.015625", "set 11 0", "set 12 0.5", "set 13 1",
                                                "set 14 0.5", "quiet 2 0"));
    fGraph->SetCurrentRange(2205, 11025, 180, -180);
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("quiet 6 0.1", "quiet 7 0.5"));
}

TEST_F(GraphicPhaseShifterGraphTest, TheLineRunsStraightThroughThePointsAndOnToTheEdges) {
    StorePoints({{0.25F, 0.5F}, {0.5F, 0.75F}, {0.75F, 0.25F}});
    Open();
    const Rect content = fGraph->GetContentRect();
    const auto line = Line();
    ASSERT_EQ(line.size(), 5U);
    const Point expected[] = {
        {content.left, PixelOf(0).y}, PixelOf(0), PixelOf(1), PixelOf(2), {content.Right(), PixelOf(2).y}};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_NEAR(line[i].x, expected[i].x, 0.01) << i;
        EXPECT_NEAR(line[i].y, expected[i].y, 0.01) << i;
    }
}

TEST_F(GraphicPhaseShifterGraphTest, SplinesBendWithoutOvershootingAPoint) {
    StorePoints({{0, 0.5F}, {0.1F, 0.5F}, {0.2F, 0.95F}, {0.21F, 0.96F}, {0.5F, 0.1F}, {1, 0.9F}});
    fFilter->Store(kSplines, 1);
    Open();
    const auto line = Line();
    EXPECT_GT(line.size(), 300U);
    std::size_t piece = 0;
    for (const Point& point : line) {
        while (piece + 2 < Points().size() && point.x > PixelOf(piece + 1).x)
            ++piece;
        const auto [top, bottom] = std::minmax({PixelOf(piece).y, PixelOf(piece + 1).y});
        EXPECT_GE(point.y, top - 0.02F) << point.x;
        EXPECT_LE(point.y, bottom + 0.02F) << point.x;
    }
    fFilter->Store(kSplines, 0.49F);
    fGraph->SyncParameters();
    EXPECT_LT(Line().size(), 10U);
}

} // namespace
