#include "uit/controls/CurveLine.h"

#include "CurveEditorFixture.h"
#include "kroui/limner/RecordingLimner.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {
namespace {

using kroui::Point;
using Line = std::vector<Point>;

TEST(CurveLine, StraightSortsPointsAndIsLevelBesideThem) {
    const Line points = {{50, 5}, {20, 10}, {50, 30}};
    EXPECT_EQ(CurveLine::Straight(points, 0, 100), (Line{{0, 10}, {20, 10}, {50, 5}, {50, 30}, {100, 30}}));
    EXPECT_TRUE(CurveLine::Straight({}, 0, 100).empty());
    EXPECT_EQ(CurveLine::HeightAt(CurveLine::Straight(points, 0, 100), 35), 7.5F);
    EXPECT_EQ(CurveLine::HeightAt(CurveLine::Straight(points, 0, 100), 75), 30);
}

// On two intervals of slope 0 and 1 and an end slope of the secant the Fritsch-Carlson tangents are 0, 0, 1: the cubic
// of the second is y = 10 (2 t^2 - t^3 + ...) worked out below.
TEST(CurveLine, SplineFollowsTheCubicWorkedOutByHand) {
    const Line line = CurveLine::Spline(Line{{0, 0}, {10, 0}, {20, 10}}, 0, 20, 1, 20);
    for (const Point& p : line) {
        // Hermite with p0 = 0, p1 = 10, slopes 0 and 1, width 10: (3t^2 - 2t^3) * 10 + (t^3 - t^2) * 10.
        const double t = std::max(0.0, (p.x - 10.0) / 10);
        EXPECT_NEAR(p.y, 10 * (2 * t * t - t * t * t), 1e-4) << p.x;
    }
    EXPECT_EQ(line.size(), 21U);
}

TEST(CurveLine, SplineNeverLeavesTheHeightsOfItsNeighbours) {
    const Line cases[] = {{{0, 0}, {1, 100}, {2, 100}, {90, 101}, {100, 0}},
                          {{0, 50}, {10, 50}, {10, 0}, {10, 80}, {30, 20}, {31, 90}},
                          {{-1e6F, 0}, {1e6F, 100}},
                          {{0, 3}, {0, 1}}};
    for (const Line& points : cases) {
        const Line line = CurveLine::Spline(points, 0, 100, 1, 100);
        EXPECT_LE(line.size(), 200U);
        for (const Point& p : line) {
            const auto behind = std::find_if(points.begin(), points.end(), [&](const Point& q) { return q.x >= p.x; });
            if (behind == points.begin() || behind == points.end() || p.x == behind->x) continue;
            const auto [low, high] = std::minmax({(behind - 1)->y, behind->y});
            EXPECT_GE(p.y, low - 1e-3F) << p.x;
            EXPECT_LE(p.y, high + 1e-3F) << p.x;
        }
        EXPECT_TRUE(std::is_sorted(line.begin(), line.end(), [](auto& a, auto& b) { return a.x < b.x; }));
    }
}

// The lines of what the editor draws, as the recording context writes them.
std::vector<std::string> Lines(UI_CurveEditor& editor, std::string_view operation) {
    kroui::limner::RecordingLimner limner;
    editor.UI_Draw(&limner);
    std::vector<std::string> lines = limner.Operations();
    std::erase_if(lines, [&](const std::string& line) { return !line.starts_with(operation); });
    return lines;
}

TEST_F(CurveEditorTest, ResponseIsThinnedToTheColumnsAndKeepsTheirExtremes) {
    editor->SetDrawCurve(false);
    std::vector<double> values(8001, 100); // twenty a pixel
    values[4007] = 170;
    values[4012] = 20;
    editor->SetResponseData(values, 0);
    const auto lines = Lines(*editor, "StrokeFunction");
    ASSERT_EQ(lines.size(), 1U);
    const auto points = std::count(lines[0].begin(), lines[0].end(), ',');
    EXPECT_LE(points, 4 * 401);
    // 4007 / 8000 * 400 is 200.35 to the right of the content's edge at 40; its bottom is at 206.
    EXPECT_THAT(lines[0], testing::HasSubstr(" 240.35,36 240.6,186 "));
}

TEST_F(CurveEditorTest, ResponseIsTranslatedAndInterruptedWhereItIsNoNumber) {
    editor->SetDrawCurve(false);
    editor->SetResponseTranslator([](double value) { return value * 10; });
    editor->SetResponseData({1, 2, std::nan(""), 4, 5}, 0);
    EXPECT_THAT(Lines(*editor, "StrokeFunction"),
                testing::ElementsAre(testing::EndsWith(" 40,196 140,186 nan,nan 340,166 440,156")));
}

TEST_F(CurveEditorTest, BehindACurveTheResponseIsDimmer) {
    Set({{0, 100}, {400, 100}});
    editor->SetResponseData({50, 60}, 0);
    editor->SetResponseData({70, 80}, 1);
    const auto lines = Lines(*editor, "StrokeFunction");
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_THAT(lines[1], testing::StartsWith("StrokeFunction #4DA3FFBF 1.25 "));
    EXPECT_THAT(lines[2], testing::StartsWith("StrokeFunction #FFC94D 1.5 40,106 440,106"));
    editor->SetDrawCurve(false);
    EXPECT_THAT(Lines(*editor, "StrokeFunction"),
                testing::ElementsAre(testing::_, testing::StartsWith("StrokeFunction #FFC94D 1.5 40,156")));
}

TEST_F(CurveEditorTest, PointLabelsStandInARowAboveEachOtherWherePointsStandTogether) {
    editor->SetDrawPointLabelsAtBottom(true);
    editor->SetPointLabels({u"1", u"2", u"3"});
    Set({{100, 50}, {102, 150}, {300, 100}});
    std::vector<std::string> tops;
    for (const std::string& line : Lines(*editor, "Text")) {
        // "Text "1" 10 #D7D9DE left top width height alignment"
        std::istringstream words(line);
        std::string word;
        for (int i = 0; i < 6; ++i)
            words >> word;
        tops.push_back(word);
    }
    EXPECT_THAT(tops, testing::ElementsAre("191", "178", "191"));
}

} // namespace
} // namespace uit::controls
