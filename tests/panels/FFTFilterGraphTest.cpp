#include "qocui/ui/FFTFilterGraph.h"

#include "CurveGraphFixture.h"

#include <cmath>
#include <limits>

using namespace kroui;
using qocui::ui::FFTFilterGraph;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

enum Index { kScale = 4, kViewStart = 5, kViewEnd = 6, kCount = 9, kFirst = 10, kParameters = 266 };
constexpr float kNyquist = 22050;
constexpr float kLeft = 20 / kNyquist; // the stored place of the axis' left end
constexpr float kFlat = 0.6309573F;    // of a fader at 0 dB, when +12 dB is its top: 10^(-12/60)

class FFTFilterGraphTest : public test::CurveGraphTest<FFTFilterGraph> {
protected:
    FFTFilterGraphTest() : CurveGraphTest(kParameters, kCount) {
        StorePoints({{kLeft, kFlat}, {0.1F, 0.25F}, {1, kFlat}});
    }
};

TEST_F(FFTFilterGraphTest, ThePointsStandWhereTheFilterHasThem) {
    Open();
    ASSERT_EQ(Points().size(), 3U);
    EXPECT_NEAR(At(0).horizontal, 20, 1e-4);
    EXPECT_NEAR(At(1).horizontal, 2205, 1e-3);
    EXPECT_EQ(At(1).vertical, 0.25);
    EXPECT_EQ(At(2).horizontal, kNyquist);
    EXPECT_EQ(Points()[2].identifier, 2U);
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty());
}

TEST_F(FFTFilterGraphTest, AnyStoredCountGivesPointsThatExist) {
    Open();
    const struct {
        float stored;
        std::size_t count;
    } cases[] = {{0.015625F, 2}, {0.0156F, 1}, {0, 0},     {-0.5F, 0},
                 {1, 128},       {7, 128},     {0.03F, 3}, {std::numeric_limits<float>::quiet_NaN(), 0}};
    for (const auto& c : cases) {
        fFilter->Store(kCount, c.stored);
        fGraph->SyncParameters();
        EXPECT_EQ(Points().size(), c.count) << c.stored;
    }
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty());
}

TEST_F(FFTFilterGraphTest, EveryStoredValueMovesItsPointAtTheNextPoll) {
    Open();
    for (int index = kFirst; index < kFirst + 6; ++index) {
        const auto before = Points();
        fFilter->Store(index, 0.75F * Value(index));
        fGraph->SyncParameters();
        for (std::size_t point = 0; point < 3; ++point) {
            const bool isMoved = !(Points()[point] == before[point]);
            EXPECT_EQ(isMoved, static_cast<int>(point) == (index - kFirst) / 2) << index;
        }
    }
}

TEST_F(FFTFilterGraphTest, ADragWritesTheWholeCurveBetweenMarkers) {
    Open();
    fWindow.Press(PixelOf(1));
    fWindow.MoveTo(Moved(PixelOf(1), 10, -20));
    fWindow.MoveTo(Moved(PixelOf(1), 5, -5));
    auto log = fFilter->TakeLog();
    const std::vector<std::string> pass = {
        "quiet 3 1",
        "quiet 9 0.0234375",
        Entry("set", 10, kLeft),
        Entry("set", 11, kFlat),
        Entry("set", 12, static_cast<float>(At(1).horizontal / kNyquist)),
        Entry("set", 13, static_cast<float>(At(1).vertical)),
        "set 14 1",
        Entry("set", 15, kFlat),
        "quiet 3 0",
    };
    ASSERT_GE(log.size(), pass.size());
    EXPECT_EQ(std::vector<std::string>(log.end() - static_cast<long>(pass.size()), log.end()), pass);
    EXPECT_GT(Value(12), 0.1F);
    EXPECT_GT(Value(13), 0.25F);

    fWindow.Release();
    log = fFilter->TakeLog();
    EXPECT_EQ(log, pass) << "the final state once more";
}

TEST_F(FFTFilterGraphTest, ThePollsLeaveThePointsAloneDuringADrag) {
    Open();
    fWindow.Press(PixelOf(1));
    fWindow.MoveTo(Moved(PixelOf(1), 12, 12));
    const auto dragged = Points();
    fFilter->Store(kFirst + 2, 0.9F);
    fFilter->Store(kScale, 1);
    fGraph->SyncParameters();
    EXPECT_EQ(Points(), dragged);
    fWindow.Release();
    fGraph->SyncParameters();
    EXPECT_NEAR(Value(kFirst + 2), dragged[1].coordinates.horizontal / kNyquist, 1e-6) << "the drag's end won";
}

TEST_F(FFTFilterGraphTest, EscapeInADragGivesTheFilterItsCurveBack) {
    Open();
    fWindow.Press(PixelOf(1));
    fWindow.MoveTo(Moved(PixelOf(1), 30, 30));
    EXPECT_NE(Value(kFirst + 3), 0.25F);
    fWindow.PressKey(ui::Key::kEscape);
    fFilter->TakeLog();
    EXPECT_NEAR(Value(kFirst + 2), 0.1F, 1e-6);
    EXPECT_EQ(Value(kFirst + 3), 0.25F);
    fWindow.MoveTo(Moved(PixelOf(1), 60, 60));
    fWindow.Release();
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty());
}

TEST_F(FFTFilterGraphTest, TheEndsMoveVerticallyOnlyAndStay) {
    Open();
    for (const std::size_t end : {std::size_t{0}, std::size_t{2}}) {
        const auto before = At(end);
        fWindow.Drag(PixelOf(end), Moved(PixelOf(end), end == 0 ? 80 : -80, 40));
        EXPECT_EQ(At(end).horizontal, before.horizontal);
        EXPECT_LT(At(end).vertical, before.vertical - 0.05);
        fWindow.PressKey(ui::Key::kDelete);
        EXPECT_EQ(Points().size(), 3U);
    }
}

TEST_F(FFTFilterGraphTest, PointsAreAddedAndDeletedByTheUser) {
    Open();
    const auto content = fGraph->GetContentRect();
    fWindow.Click({content.left + content.width * 0.8F, content.top + 10});
    ASSERT_EQ(Points().size(), 4U);
    EXPECT_EQ(Value(kCount), 4 * 0.0078125F);
    EXPECT_GT(Value(kFirst + 5), 0.9F) << "the level of the new point, third in order";
    EXPECT_EQ(Value(kFirst + 6), 1) << "the last point has moved on";
    fGraph->SyncParameters();
    fWindow.PressKey(ui::Key::kDelete);
    EXPECT_EQ(Points().size(), 3U);
    EXPECT_EQ(Value(kCount), 3 * 0.0078125F);
}

TEST_F(FFTFilterGraphTest, AFullCurveTakesNoMorePoints) {
    std::vector<std::pair<float, float>> points;
    for (int i = 0; i < 128; ++i)
        points.emplace_back(kLeft + (1 - kLeft) * static_cast<float>(i) / 127, 0.5F);
    StorePoints(points);
    Open();
    const auto content = fGraph->GetContentRect();
    fWindow.Click({content.left + content.width / 2, content.top + 10});
    EXPECT_EQ(Points().size(), 128U);
    EXPECT_EQ(Value(kCount), 1);
}

TEST_F(FFTFilterGraphTest, AnUnchangedCurveIsNotBuiltAgain) {
    Open();
    fGraph->SyncParameters();
    EXPECT_THAT(fFilter->TakeRequests(), IsEmpty());
    fFilter->Store(kFirst + 3, 0.5F);
    fGraph->SyncParameters();
    EXPECT_EQ(At(1).vertical, 0.5);
    EXPECT_EQ(fFilter->TakeRequests().size(), 1U);
    fGraph->SyncParameters();
    EXPECT_THAT(fFilter->TakeRequests(), IsEmpty());
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty());
}

TEST_F(FFTFilterGraphTest, TheScaleParameterChoosesTheAxisAndTheResponseFollows) {
    fFilter->Store(kScale, 0.2F);
    Open();
    const auto content = fGraph->GetContentRect();
    const auto part = [&](double hertz) {
        return (fGraph->GetPixelForCoordinatePair({hertz, 0}).x - content.left) / content.width;
    };
    EXPECT_NEAR(part(1000), std::log(1000 / 20.0) / std::log(22050 / 20.0), 0.003);
    fFilter->Store(kScale, 0.7F);
    fGraph->SyncParameters();
    EXPECT_NEAR(part(1000), 980.0 / 22030, 0.003);
    auto requests = fFilter->TakeRequests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_FALSE(requests[0].axis.logarithmic);
    fFilter->Store(kScale, 0.5F);
    fGraph->SyncParameters();
    EXPECT_THAT(fFilter->TakeRequests(), IsEmpty()) << "linear from one half on";
    fFilter->Store(kScale, 0.4999F);
    fGraph->SyncParameters();
    requests = fFilter->TakeRequests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_TRUE(requests[0].axis.logarithmic);
    EXPECT_EQ(requests[0].count, 4096U);
    EXPECT_EQ(requests[0].axis.start, 20);
    EXPECT_EQ(requests[0].axis.end, kNyquist);
}

TEST_F(FFTFilterGraphTest, NoResponseIsComputedToPaint) {
    Open();
    fGraph->UI_Invalidate();
    fWindow.Paint();
    EXPECT_THAT(fFilter->TakeRequests(), IsEmpty());
    fGraph->UI_SetFrame({0, 0, 500, 250});
    EXPECT_THAT(fFilter->TakeRequests(), Not(IsEmpty())) << "another size";
}

TEST_F(FFTFilterGraphTest, ResetWritesAFlatCurveOfTwoPoints) {
    Open();
    fGraph->ResetPoints();
    EXPECT_THAT(fFilter->TakeLog(),
                ElementsAre("quiet 3 1", "quiet 9 0.015625", Entry("set", 10, kLeft), StartsWith("set 11 0.63095"),
                            "set 12 1", StartsWith("set 13 0.63095"), "quiet 3 0"));
    fGraph->SyncParameters();
    ASSERT_EQ(Points().size(), 2U);
    EXPECT_NEAR(At(1).vertical, kFlat, 1e-6);
}

TEST_F(FFTFilterGraphTest, ThePartShownIsStoredQuietlyInPartsOfNyquist) {
    Open();
    fGraph->SetCurrentRange(2205, 11025, 1, 0);
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre(Entry("quiet", kViewStart, 0.1F), Entry("quiet", kViewEnd, 0.5F)));
}

TEST_F(FFTFilterGraphTest, AnotherSampleRateGivesAnotherAxis) {
    Open();
    fFilter->Prepare(96000, 64, kromediatypes::AudioChannelLayout::Stereo());
    fGraph->FollowSampleRate();
    EXPECT_EQ(fGraph->GetHorizontalEnd(), 48000);
    EXPECT_NEAR(At(1).horizontal, 4800, 1e-3);
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty());
    fFilter->TakeRequests();
    fGraph->FollowSampleRate();
    EXPECT_THAT(fFilter->TakeRequests(), IsEmpty());
}

} // namespace
