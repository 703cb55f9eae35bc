#include "qocui/ui/DopplerGraph.h"
#include "FakeFilter.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/limner/RecordingLimner.h"
#include "kroui/ui/HeadlessWindow.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <sstream>

using namespace kroui;
using qocui::ui::DopplerGraph;

namespace {

constexpr const char* kPathColor = "#4D99FF"; // 0.3, 0.6, 1.0

struct Operation {
    std::string name;
    std::vector<double> numbers;
};

Operation Parse(const std::string& line) {
    std::istringstream stream(line);
    Operation operation;
    stream >> operation.name;
    for (double number = 0; stream >> number;)
        operation.numbers.push_back(number);
    return operation;
}

// The lines are the same, with numbers that agree to a five-hundredth of a pixel.
void ExpectOperations(const std::vector<std::string>& drawn, const std::vector<std::string>& expected) {
    ASSERT_EQ(drawn.size(), expected.size()) << testing::PrintToString(drawn);
    for (std::size_t i = 0; i < drawn.size(); ++i) {
        const Operation a = Parse(drawn[i]);
        const Operation b = Parse(expected[i]);
        EXPECT_EQ(a.name, b.name) << i;
        if (b.name == "Fill" || b.name == "Stroke" || b.name == "FillRect")
            EXPECT_EQ(drawn[i], expected[i]);
        else
            EXPECT_THAT(a.numbers, testing::Pointwise(testing::DoubleNear(2e-3), b.numbers)) << drawn[i];
    }
}

// A view of 220 x 220 pixels whose middle is 110, 110; an extent of 10 makes 10 pixels a metre.
class DopplerGraphTest : public testing::Test {
protected:
    DopplerGraphTest() {
        fFilter->Prepare(1000, 64, kromediatypes::AudioChannelLayout::Stereo());
        fWindow.Window().SetContent(fGraph);
        fGraph->UI_SetFrame({0, 0, 220, 220});
    }
    ~DopplerGraphTest() override { fWindow.Window().SetContent(nullptr); }

    void Set(float distance, float velocity, float direction, float front = 0, float right = 0) {
        fGraph->SetStartingDistance(distance);
        fGraph->SetVelocity(velocity);
        fGraph->SetDirection(direction);
        fGraph->SetPassesFront(front);
        fGraph->SetPassesRight(right);
    }
    void SetSeconds(double seconds) { fFilter->SetDuration(seconds * 1000); }
    std::vector<std::string> Draw() {
        limner::RecordingLimner limner;
        fGraph->UI_Draw(&limner);
        return limner.Operations();
    }
    // What is drawn between the cross and the end.
    std::vector<std::string> Path() {
        auto operations = Draw();
        EXPECT_EQ(operations.back(), "Restore");
        return {operations.begin() + 10, operations.end() - 1};
    }
    std::ptrdiff_t Count(std::string_view name) {
        return std::ranges::count_if(Path(), [&](const std::string& line) { return line.starts_with(name); });
    }

    limner::CairoSupplier fSupplier;
    ui::HeadlessWindow fWindow{fSupplier, {220, 220}};
    boost::intrusive_ptr<test::FakeFilter> fFilter{new test::FakeFilter(9)};
    boost::intrusive_ptr<DopplerGraph> fGraph{new DopplerGraph(fFilter)};
    bool fCircular = false;
    std::array<float, 5> fValues{}; // distance, velocity, direction, front, right
};

const std::vector<std::string> kGround = {"Save",
                                          "SetSmoothing 1",
                                          "ClipRect 0 0 220 220",
                                          "FillRect 0 0 220 220 #000000",
                                          "NewPath",
                                          "MoveTo 110.5 0.5",
                                          "LineTo 110.5 220.5",
                                          "MoveTo 0.5 110.5",
                                          "LineTo 220.5 110.5",
                                          "Stroke #4A4C52 1"};

std::vector<std::string> WithGround(std::vector<std::string> path) {
    path.insert(path.begin(), kGround.begin(), kGround.end());
    path.push_back("Restore");
    return path;
}

// From 10 m to the right of a centre 5 m ahead, at 2 m/s to the left past it: after 8 s 6 m left of the centre.
TEST_F(DopplerGraphTest, ThePlacesOfAPathAreTold) {
    const auto told = [this] {
        std::vector<std::string> texts;
        for (int part = 0; part < fGraph->UI_GetAccessiblePartCount(); ++part) {
            const ui::AccessibleInfo info = fGraph->UI_GetAccessiblePart(part).info;
            texts.push_back(krocore::ToStdString(info.name + u": " + info.value));
        }
        return texts;
    };
    Set(10, 2, 90, 5);
    EXPECT_THAT(told(), testing::ElementsAre("Centre of the path: 5.0 m ahead, 0.0 m to the right",
                                             "Start: 5.0 m ahead, 10.0 m to the right"));
    SetSeconds(8);
    EXPECT_EQ(told().back(), "End: 5.0 m ahead, 6.0 m to the left");
    // Half of the circle, clockwise from the right.
    fGraph->SetCircular(true);
    fGraph->SetVelocity(3.14159F * 10 / 8);
    EXPECT_EQ(told().back(), "End: 5.0 m ahead, 10.0 m to the left");
    const Rect end = fGraph->UI_GetAccessiblePart(2).bounds;
    EXPECT_NEAR(end.Centre().x, 110 - 10 * 210 / 2.1 / 15, 0.01) << "15 m and a little air from the middle to a margin";
}

TEST_F(DopplerGraphTest, WithoutAPathThereAreOnlyTheGroundAndTheListener) {
    Set(10, 2, 0);
    SetSeconds(0);
    ExpectOperations(Draw(), WithGround({}));
    fGraph->SetCircular(true);
    ExpectOperations(Draw(), WithGround({}));
    SetSeconds(3);
    fGraph->SetStartingDistance(0);
    ExpectOperations(Draw(), WithGround({}));
    Set(10, 2, 0);
    fGraph->SetCircular(false);
    fFilter->sampleRate = 0; // none yet, so no duration either
    ExpectOperations(Draw(), WithGround({}));
}

// From 10 m ahead, 20 pixels a second down; the sound ends after 2.5 s, in the third step. The arrow's strokes go back
// and up at 45 degrees: 7 * sin 45 = 4.9497, 6 * sin 45 = 4.2426.
TEST_F(DopplerGraphTest, AStraightPathHasADotASecondAndEndsWithTheSound) {
    Set(10, 2, 0);
    SetSeconds(2.5);
    const std::string fill = std::string("Fill ") + kPathColor;
    ExpectOperations(Draw(), WithGround({"NewPath",
                                         "Arc 110.5 10.5 2 0 360",
                                         fill,
                                         "NewPath",
                                         "Arc 110.5 30.5 2 0 360",
                                         fill,
                                         "NewPath",
                                         "Arc 110.5 50.5 2 0 360",
                                         fill,
                                         "NewPath",
                                         "MoveTo 110.5 10.5",
                                         "LineTo 110.5 30.5",
                                         "MoveTo 110.5 30.5",
                                         "LineTo 110.5 50.5",
                                         "MoveTo 110.5 50.5",
                                         "LineTo 110.5 70.5",
                                         "MoveTo 110.5 70.5",
                                         "LineTo 115.4497 65.5503",
                                         "MoveTo 114.7426 66.2574",
                                         "LineTo 106.2574 66.2574",
                                         "MoveTo 110.5 70.5",
                                         "LineTo 105.5503 65.5503",
                                         std::string("Stroke ") + kPathColor + " 1"}));
}

// Direction 90 comes from the right: extent 4 + 6, so 10 pixels a metre, centre 40 pixels up and 20 right, start 60
// further right, 50 pixels a second to the left. 190 -> 140 -> 90 -> 40; the next point, -10, is outside.
TEST_F(DopplerGraphTest, AStraightPathEndsAtItsLastPointInside) {
    Set(6, 5, 90, 4, 2);
    SetSeconds(100);
    const auto path = Path();
    ASSERT_EQ(path.size(), 3U * 3 + 1 + 3 * 2 + 6 + 1);
    ExpectOperations({path.begin() + 9, path.begin() + 18},
                     {"NewPath", "MoveTo 190.5 70.5", "LineTo 140.5 70.5", "MoveTo 140.5 70.5", "LineTo 90.5 70.5",
                      "MoveTo 90.5 70.5", "LineTo 40.5 70.5", "MoveTo 40.5 70.5", "LineTo 45.4497 75.4497"});
}

TEST_F(DopplerGraphTest, SlowOrCrowdedPathsHaveNoDots) {
    const struct {
        float distance, velocity;
        bool circular;
        std::ptrdiff_t dots;
    } cases[] = {
        {2, 1, false, 1},      // 50 pixels a second, and at least 1 m/s
        {2, 0.99F, false, 0},  //
        {20, 1.01F, false, 1}, // 5.05 pixels a second
        {20, 0.99F, false, 0}, //
        {40, 1.9F, false, 0},  // 4.75 pixels
        {40, 1.9F, true, 0},   //
        {20, 1.1F, true, 1},   // 5.5 pixels along the circle
    };
    SetSeconds(1);
    for (const auto& c : cases) {
        Set(c.distance, c.velocity, 0);
        fGraph->SetCircular(c.circular);
        EXPECT_EQ(Count("Arc"), c.dots) << c.distance << " m, " << c.velocity << " m/s";
    }
}

// A radius of 10 m at 5 pi m/s: a quarter turn a second, in 10 segments of 9 degrees. Starts on the right, ends below
// after one second; there the way back points right, so the arrow's strokes go up and down to the right.
TEST_F(DopplerGraphTest, ACircularPathRunsClockwiseInArcsOfASecond) {
    Set(10, 15.70795F, 90);
    fGraph->SetCircular(true);
    SetSeconds(1);
    std::vector<std::string> expected = {"NewPath", "Arc 210.5 110.5 2 0 360", std::string("Fill ") + kPathColor,
                                         "NewPath", "MoveTo 210.5 110.5"};
    for (int j = 0; j <= 10; ++j) {
        const double angle = j * 9 * std::acos(-1.0) / 180;
        expected.push_back("LineTo " + std::to_string(110.5 + 100 * std::cos(angle)) + " " +
                           std::to_string(110.5 + 100 * std::sin(angle)));
    }
    for (const char* const line : {"MoveTo 110.5 210.5", "LineTo 115.4497 215.4497", "MoveTo 114.7426 214.7426",
                                   "LineTo 114.7426 206.2574", "MoveTo 110.5 210.5", "LineTo 115.4497 205.5503"})
        expected.emplace_back(line);
    expected.push_back(std::string("Stroke ") + kPathColor + " 1");
    ExpectOperations(Path(), expected);
}

// Steps of 2 radians: after two of them (4) a third would still be below 6.1261, a fourth would not.
TEST_F(DopplerGraphTest, ACircleStopsBeforeItMeetsItsStart) {
    fGraph->SetCircular(true);
    SetSeconds(100);
    Set(10, 20, 0);
    EXPECT_EQ(Count("Arc"), 3);
    Set(10, 35, 0); // a second step would make 7
    EXPECT_EQ(Count("Arc"), 1);
    EXPECT_EQ(Count("LineTo"), 18 + 3) << "17 segments for 35 m/s, both ends counted, and the arrow";
}

TEST_F(DopplerGraphTest, TheScaleFitsTheFarthestPointOfTheCircle) {
    fGraph->SetCircular(true);
    SetSeconds(1);
    Set(6, 0.5F, 0, -2, 4); // extent 4 + 6 to the right; the centre is 40 pixels right and 20 down
    const auto path = Path();
    ExpectOperations({path[1]}, {"MoveTo 150.5 70.5"});
}

TEST_F(DopplerGraphTest, AShortPathStaysSmall) {
    SetSeconds(1);
    Set(1, 0.5F, 0); // extent 2: 50 pixels a metre
    const auto path = Path();
    ExpectOperations({path[1], path[2]}, {"MoveTo 110.5 60.5", "LineTo 110.5 85.5"});
}

// An hour in 36,000 lines: they are drawn once, until something changes.
TEST_F(DopplerGraphTest, ALongPathIsKeptAsAPictureUntilSomethingChanges) {
    fGraph->SetCircular(true);
    Set(100, 0.1F, 0);
    SetSeconds(3600);
    const auto image = [&] { return fWindow.Snapshot(); };
    const auto isPath = [](const limner::ImagePtr& picture, int x, int y) {
        const std::uint32_t pixel = picture->Pixels()[static_cast<std::size_t>(y * picture->PixelWidth() + x)];
        return (pixel & 0xFF) > 0xA0;
    };
    EXPECT_EQ(Count("LineTo"), 0);
    EXPECT_EQ(Count("Image"), 1);
    // 3.6 radians of a circle of 100 pixels from the top on: past the bottom, not as far as the left.
    const limner::ImagePtr before = image();
    EXPECT_TRUE(isPath(before, 210, 110));
    EXPECT_TRUE(isPath(before, 110, 210));
    EXPECT_FALSE(isPath(before, 10, 110));

    const auto differs = [&](const char* what, const std::function<void()>& change) {
        const limner::ImagePtr kept = image();
        change();
        const limner::ImagePtr now = image();
        EXPECT_FALSE(std::ranges::equal(kept->Pixels(), now->Pixels())) << what;
        // As a graph that has never drawn anything else.
        boost::intrusive_ptr<DopplerGraph> fresh(new DopplerGraph(fFilter));
        fresh->SetCircular(fCircular);
        fresh->SetStartingDistance(fValues[0]);
        fresh->SetVelocity(fValues[1]);
        fresh->SetDirection(fValues[2]);
        fresh->SetPassesFront(fValues[3]);
        fresh->SetPassesRight(fValues[4]);
        const Rect frame = fGraph->UI_GetFrame();
        fWindow.Window().SetContent(fresh);
        fresh->UI_SetFrame(frame);
        EXPECT_TRUE(std::ranges::equal(image()->Pixels(), now->Pixels())) << what;
        fWindow.Window().SetContent(fGraph);
        image();
    };
    fCircular = true;
    fValues = {100, 0.1F, 0, 0, 0};
    differs("distance", [&] { fGraph->SetStartingDistance(fValues[0] = 120); });
    differs("velocity", [&] { fGraph->SetVelocity(fValues[1] = 0.15F); });
    differs("direction", [&] { fGraph->SetDirection(fValues[2] = 45); });
    differs("front", [&] { fGraph->SetPassesFront(fValues[3] = 30); });
    differs("right", [&] { fGraph->SetPassesRight(fValues[4] = -20); });
    differs("duration", [&] {
        SetSeconds(3000);
        fGraph->FollowDuration();
    });
    differs("size", [&] { fGraph->UI_SetFrame({0, 0, 180, 200}); });
    differs("shape", [&] { fGraph->SetCircular(fCircular = false); });
}

TEST_F(DopplerGraphTest, OddValuesEndTheDrawing) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    SetSeconds(1.9);
    for (const float velocity : {0.0F, -3.0F, nan, 1e30F})
        for (const float distance : {-5.0F, 0.0F, nan, 1e30F})
            for (const bool circular : {false, true}) {
                Set(distance, velocity, 0);
                fGraph->SetCircular(circular);
                EXPECT_EQ(Draw().back(), "Restore");
            }
}

TEST_F(DopplerGraphTest, EverySetterRepaintsTheWholeView) {
    const std::function<void()> setters[] = {
        [this] { fGraph->SetStartingDistance(1); }, [this] { fGraph->SetVelocity(1); },
        [this] { fGraph->SetDirection(1); },        [this] { fGraph->SetPassesFront(1); },
        [this] { fGraph->SetPassesRight(1); },      [this] { fGraph->SetCircular(true); }};
    for (const auto& set : setters) {
        fWindow.Paint();
        set();
        EXPECT_EQ(fWindow.Paint(), 220 * 220);
    }
}

} // namespace
