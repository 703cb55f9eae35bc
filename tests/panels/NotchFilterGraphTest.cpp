#include "qocui/ui/NotchFilterGraph.h"

#include "CurveGraphFixture.h"

#include <cmath>

using namespace kroui;
using qocui::ui::NotchFilterGraph;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

enum Index { kGain = 6, kEnable = 12, kShared = 18, kLinked = 22, kViewStart = 27, kViewEnd = 28, kParameters = 29 };
constexpr float kNyquist = 22050;

float StoredFrequency(double hertz) {
    return static_cast<float>((hertz - 0.5) / kNyquist);
}

float StoredGain(double decibels) {
    return static_cast<float>(decibels / 96 * 0.5 + 0.5);
}

// Sections at 100, 200, 400, 800, 1600, 3200 Hz with -10, -20 ... -60 dB.
class NotchFilterGraphTest : public test::CurveGraphTest<NotchFilterGraph> {
protected:
    NotchFilterGraphTest() : CurveGraphTest(kParameters, 0) {
        for (int i = 0; i < 6; ++i) {
            fFilter->Store(i, StoredFrequency(100 << i));
            fFilter->Store(kGain + i, StoredGain(-10 * (i + 1)));
            fFilter->Store(kEnable + i, 1);
        }
        fFilter->Store(kShared, StoredGain(-30));
    }
    std::vector<double> Heights() const {
        std::vector<double> heights;
        for (const auto& point : Points())
            heights.push_back(point.coordinates.vertical);
        return heights;
    }
    std::vector<double> Range() const {
        return {fGraph->GetHorizontalStart(), fGraph->GetHorizontalEnd(), fGraph->GetVerticalStart(),
                fGraph->GetVerticalEnd()};
    }
};

TEST_F(NotchFilterGraphTest, HandlesStandWhereTheSectionsAre) {
    Open();
    ASSERT_EQ(Points().size(), 6U);
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(Points()[i].identifier, i);
        EXPECT_NEAR(At(i).horizontal, 100 << i, 1e-3);
        EXPECT_NEAR(At(i).vertical, -10.0 * static_cast<double>(i + 1), 1e-4);
    }
    fFilter->Store(kLinked, 0.5F);
    fGraph->UpdateGraph();
    EXPECT_THAT(Heights(), Each(testing::DoubleNear(-30, 1e-4)));
    EXPECT_THAT(Range(), ElementsAre(20, kNyquist, 96, -96));
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty());
}

TEST_F(NotchFilterGraphTest, AHandleThatIsHalfOffCanNotBeTaken) {
    fFilter->Store(kEnable + 2, 0.5F);
    Open();
    fWindow.Drag(PixelOf(2), Moved(PixelOf(2), 30, 30));
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty());
    fFilter->Store(kEnable + 2, 0.51F);
    fGraph->UpdateGraph();
    fWindow.Drag(PixelOf(2), Moved(PixelOf(2), 30, 30));
    EXPECT_FALSE(fFilter->TakeLog().empty());
}

TEST_F(NotchFilterGraphTest, ADragWritesTheSectionsFrequencyAndGainBetweenBrackets) {
    Open();
    fWindow.Drag(PixelOf(3), Moved(PixelOf(3), 25, -15), 3);
    const auto log = fFilter->TakeLog();
    ASSERT_GE(log.size(), 6U);
    EXPECT_EQ(log[0], "begin 3");
    EXPECT_EQ(log[1], "begin 9");
    for (std::size_t i = 2; i + 2 < log.size(); ++i)
        EXPECT_THAT(log[i], StartsWith(i % 2 == 0 ? "set 3 " : "set 9 "));
    EXPECT_EQ(log[log.size() - 2], "end 3");
    EXPECT_EQ(log.back(), "end 9");
    EXPECT_GT(At(3).horizontal, 900);
    EXPECT_GT(At(3).vertical, -39);
    EXPECT_EQ(Value(3), StoredFrequency(At(3).horizontal));
    EXPECT_NEAR(Value(kGain + 3), StoredGain(At(3).vertical), 1e-7);
}

TEST_F(NotchFilterGraphTest, ADragUpAndDownLeavesTheFrequencyAlone) {
    Open();
    fWindow.Drag(PixelOf(1), Moved(PixelOf(1), 0, 40));
    for (const std::string& entry : fFilter->TakeLog())
        EXPECT_FALSE(entry.starts_with("set 1 ")) << entry;
    EXPECT_LT(Value(kGain + 1), StoredGain(-30));
    EXPECT_EQ(Value(1), StoredFrequency(200));
}

TEST_F(NotchFilterGraphTest, LinkedGainsMoveTogetherAndAreWrittenOnce) {
    fFilter->Store(kLinked, 1);
    Open();
    fWindow.Press(PixelOf(2));
    fWindow.MoveTo(Moved(PixelOf(2), 0, 30));
    const auto log = fFilter->TakeLog();
    EXPECT_EQ(log[0], "begin 2");
    EXPECT_EQ(log[1], "begin 18");
    for (std::size_t i = 2; i < log.size(); ++i)
        EXPECT_THAT(log[i], StartsWith("set 18 "));
    const double shared = At(2).vertical;
    EXPECT_LT(shared, -40);
    EXPECT_THAT(Heights(), Each(testing::DoubleNear(shared, 1e-4)));
    EXPECT_NEAR(Value(kShared), StoredGain(shared), 1e-7);
    fWindow.Release();
    const auto end = fFilter->TakeLog();
    EXPECT_THAT(std::vector(end.end() - 2, end.end()), ElementsAre("end 2", "end 18"));
    EXPECT_EQ(Value(kGain + 2), StoredGain(-30)) << "its own gain is kept for later";
}

TEST_F(NotchFilterGraphTest, EscapeInADragBringsTheOldValuesBack) {
    Open();
    fWindow.Press(PixelOf(4));
    fWindow.MoveTo(Moved(PixelOf(4), -40, 20));
    EXPECT_NE(Value(4), StoredFrequency(1600));
    fWindow.PressKey(ui::Key::kEscape);
    EXPECT_NEAR(Value(4), StoredFrequency(1600), 1e-8);
    EXPECT_NEAR(Value(kGain + 4), StoredGain(-50), 1e-7);
    const auto log = fFilter->TakeLog();
    EXPECT_THAT(std::vector(log.end() - 2, log.end()), ElementsAre("end 4", "end 10"));
    fWindow.Release();
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty());
}

TEST_F(NotchFilterGraphTest, ChangesFromElsewhereWaitForTheEndOfTheDrag) {
    Open();
    fWindow.Press(PixelOf(0));
    fWindow.MoveTo(Moved(PixelOf(0), 10, 10));
    fFilter->Store(5, StoredFrequency(10000));
    fFilter->TakeRequests();
    fGraph->UpdateGraph();
    EXPECT_NEAR(At(5).horizontal, 3200, 1e-2);
    EXPECT_EQ(fFilter->TakeRequests().size(), 1U) << "the curve follows at once";
    fWindow.Release();
    fGraph->UpdateGraph();
    EXPECT_NEAR(At(5).horizontal, 10000, 1e-2);
}

TEST_F(NotchFilterGraphTest, ZoomingStoresTheFrequenciesShownAndAsksForTheirResponse) {
    Open();
    fGraph->SetCurrentRange(100, 1000, 24, -24);
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre(Entry("quiet", kViewStart, StoredFrequency(100)),
                                                Entry("quiet", kViewEnd, StoredFrequency(1000))));
    const auto requests = fFilter->TakeRequests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].axis.start, 100);
    EXPECT_EQ(requests[0].axis.end, 1000);
    EXPECT_TRUE(requests[0].axis.logarithmic);

    const Rect content = fGraph->GetContentRect();
    fWindow.Wheel({content.Centre().x, (content.Bottom() + 300) / 2}, 1);
    EXPECT_THAT(fFilter->TakeLog(), Each(StartsWith("quiet 2")));
    EXPECT_NEAR(Value(kViewStart), StoredFrequency(Range()[0]), 1e-7);
    EXPECT_LT(Range()[1] - Range()[0], 900);
}

TEST_F(NotchFilterGraphTest, AFilterWithoutResponseLeavesTheCurve) {
    Open();
    fFilter->answers = false;
    fGraph->UI_SetFrame({0, 0, 333.2F, 200});
    const auto requests = fFilter->TakeRequests();
    ASSERT_FALSE(requests.empty());
    EXPECT_EQ(requests.back().count, 1336U) << "four for each of 334 pixels";
    fGraph->UI_SetFrame({0, 0, 0, 0});
    EXPECT_THAT(fFilter->TakeRequests(), IsEmpty());
}

TEST_F(NotchFilterGraphTest, AnEditedSectionComesIntoSight) {
    Open();
    struct {
        int parameter;
        double start, end, top, bottom;
    } const cases[] = {
        {kGain + 3, 100, 1000, 24, -90},                                  // the bottom goes down, the rest stays
        {0, 49.5, 1000, 24, -24},                                         // without the stored half hertz
        {4, 100, 9999.5, 24, -24},       {kGain + 5, 100, 8000, 50, -24}, // its frequency is out of sight as well
        {kShared, 100, 1000, 24, -24},                                    // belongs to no section
        {kEnable, 100, 1000, 24, -24},
    };
    for (const auto& each : cases) {
        for (int i = 0; i < 6; ++i) {
            fFilter->Store(i, StoredFrequency(500));
            fFilter->Store(kGain + i, StoredGain(-12));
        }
        fFilter->Store(0, StoredFrequency(50));
        fFilter->Store(4, StoredFrequency(10000));
        fFilter->Store(5, StoredFrequency(8000.5));
        fFilter->Store(kGain + 3, StoredGain(-90));
        fFilter->Store(kGain + 5, StoredGain(50));
        fGraph->SetCurrentRange(100, 1000, 24, -24);
        fGraph->EnsureSectionVisible(each.parameter);
        const auto near = [](double value) { return testing::DoubleNear(value, 1e-2); };
        EXPECT_THAT(Range(), ElementsAre(near(each.start), near(each.end), near(each.top), near(each.bottom)))
            << each.parameter;
    }
}

TEST_F(NotchFilterGraphTest, AnotherSampleRateGivesAnotherAxis) {
    Open();
    fFilter->Prepare(96000, 64, kromediatypes::AudioChannelLayout::Stereo());
    fGraph->FollowSampleRate();
    EXPECT_EQ(Range()[1], 48000);
    EXPECT_NEAR(At(0).horizontal, StoredFrequency(100) * 48000 + 0.5, 1e-3);
    EXPECT_EQ(fFilter->TakeRequests().back().axis.end, 48000);
    fGraph->FollowSampleRate();
    EXPECT_THAT(fFilter->TakeRequests(), IsEmpty());
}

} // namespace
