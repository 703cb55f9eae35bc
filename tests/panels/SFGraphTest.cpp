#include "qocui/ui/SFGraph.h"
#include "FakeFilter.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/limner/RecordingLimner.h"
#include "kroui/ui/HeadlessWindow.h"
#include "qoc/components/ParameterIndices.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <optional>

using namespace kroui;
using namespace qoc::components;
using qocui::ui::SFGraph;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

// Answers with one value a curve, and remembers what it was asked.
class ResponseFilter : public test::FakeFilter {
public:
    ResponseFilter() : FakeFilter(14) {
        Store(kSFLogarithmicAxis, 1);
        Store(kSFViewEnd, 1);
    }
    bool GetResponseCurve(int index, std::size_t size, std::vector<float>& values) const override {
        ++requests;
        lastCurve = index;
        lastSize = size;
        if (!curve) return false;
        values.assign(size, 0);
        std::generate(values.begin(), values.end(), [this, i = std::size_t{0}, size]() mutable {
            return curve(static_cast<double>(i++) / static_cast<double>(size - 1));
        });
        return true;
    }

    std::function<float(double)> curve = [](double) { return 0.0F; }; // place 0...1 -> value
    mutable int requests = 0;
    mutable int lastCurve = -1;
    mutable std::size_t lastSize = 0;
};

class SFGraphTest : public testing::Test {
protected:
    SFGraphTest() {
        fFilter->Prepare(48000, 64, kromediatypes::AudioChannelLayout::Mono());
        fGraph.reset(new SFGraph(fFilter));
        fWindow.Window().SetContent(fGraph);
        fGraph->UI_SetFrame({0, 0, 500, 300});
        fFilter->TakeLog();
    }
    ~SFGraphTest() override { fWindow.Window().SetContent(nullptr); }

    void Show(SFGraph::View view) {
        fFilter->Store(kSFView, static_cast<float>(view) / 2);
        fGraph->UpdateGraph();
    }
    std::vector<std::string> Draw() {
        limner::RecordingLimner limner({0, 0, 500, 300});
        fGraph->UI_Draw(&limner);
        return limner.Operations();
    }
    // The words of the operation that begins with `name`; empty if there is none.
    std::vector<std::string> Drawn(std::string_view name) {
        for (const std::string& operation : Draw()) {
            if (!operation.starts_with(name)) continue;
            std::istringstream stream(operation);
            return {std::istream_iterator<std::string>(stream), {}};
        }
        return {};
    }
    // Where the value of the vertical axis lies.
    float HeightOf(double value) const { return fGraph->GetPixelForCoordinatePair({100, value}).y; }

    limner::CairoSupplier fSupplier;
    ui::HeadlessWindow fWindow{fSupplier, {500, 300}};
    boost::intrusive_ptr<ResponseFilter> fFilter{new ResponseFilter};
    boost::intrusive_ptr<SFGraph> fGraph;
};

// A filter that does not describe itself: 96 dB below the next multiple of 6 that leaves 3 dB of room.
TEST_F(SFGraphTest, DrawsTheMagnitudeAsALineInItsColourOverItsArea) {
    const Rect content = fGraph->GetContentRect();
    EXPECT_EQ(fGraph->GetVerticalStart(), 6);
    EXPECT_EQ(fGraph->GetVerticalEnd(), -90);
    EXPECT_NEAR(HeightOf(0), content.top + content.height * 6 / 96, 0.01);
    const auto line = Drawn("StrokeFunction");
    ASSERT_EQ(line.size(), 3 + fFilter->lastSize);
    EXPECT_EQ(line[1], "#FFC94D");
    const auto area = Drawn("FillFunction");
    ASSERT_EQ(area.size(), line.size());
    EXPECT_TRUE(std::equal(area.begin() + 3, area.end(), line.begin() + 3));
    float x = 0;
    float y = 0;
    ASSERT_EQ(std::sscanf(line.back().c_str(), "%f,%f", &x, &y), 2);
    EXPECT_NEAR(x, content.Right(), 0.01);
    EXPECT_NEAR(y, HeightOf(0), 0.01);
}

TEST_F(SFGraphTest, AsksForTwoValuesAPixelWhenSomethingHasChangedAndNeverToDraw) {
    EXPECT_EQ(fFilter->lastSize, static_cast<std::size_t>(2 * fGraph->GetContentRect().width));
    const int requests = fFilter->requests;
    Draw();
    fWindow.Advance(1);
    EXPECT_EQ(fFilter->requests, requests);
    fGraph->UI_SetFrame({0, 0, 400, 300});
    EXPECT_EQ(fFilter->lastSize, static_cast<std::size_t>(2 * fGraph->GetContentRect().width));
    EXPECT_GT(fFilter->requests, requests);
}

TEST_F(SFGraphTest, ThePhaseIsInterruptedWhereItTurnsRound) {
    fFilter->curve = [](double place) { return static_cast<float>(std::remainder(-500 * place, 360)); };
    Show(SFGraph::View::kPhase);
    EXPECT_EQ(fFilter->lastCurve, 1);
    EXPECT_EQ(fGraph->GetVerticalStart(), 180);
    EXPECT_EQ(fGraph->GetVerticalEnd(), -180);
    const auto operations = Draw();
    const auto isStroke = [](const std::string& operation) { return operation.starts_with("StrokeFunction"); };
    EXPECT_EQ(std::ranges::count_if(operations, isStroke), 2) << "-500 degrees turn round once at -180";
    EXPECT_THAT(Drawn("FillFunction"), IsEmpty());
}

TEST_F(SFGraphTest, TheAxisOfTheGroupDelayReachesTheNextRoundNumber) {
    const std::pair<float, double> cases[] = {{3.2F, 5}, {0.7F, 1}, {20, 20}, {1700, 2000}, {0, 0.01}};
    for (const auto& [longest, top] : cases) {
        fFilter->curve = [longest = longest](double place) { return place > 0.4 && place < 0.6 ? longest : 0; };
        Show(SFGraph::View::kGroupDelay);
        EXPECT_NEAR(fGraph->GetVerticalStart(), top, 1e-9);
        EXPECT_EQ(fGraph->GetVerticalEnd(), 0);
    }
    fFilter->curve = [](double) { return std::numeric_limits<float>::quiet_NaN(); };
    Show(SFGraph::View::kGroupDelay);
    EXPECT_TRUE(std::isfinite(fGraph->GetVerticalStart()));
    Draw();
}

TEST_F(SFGraphTest, AFilterWithoutAResponseLeavesTheOneThatIsShown) {
    const auto before = Drawn("StrokeFunction");
    fFilter->curve = nullptr;
    fGraph->UpdateGraph();
    EXPECT_EQ(Drawn("StrokeFunction"), before);
}

TEST_F(SFGraphTest, ZoomingMovesTheViewParametersQuietlyAndAsksAnew) {
    const Rect content = fGraph->GetContentRect();
    const int requests = fFilter->requests;
    fWindow.Wheel({content.Right() - 10, content.Bottom() + 8}, 3);
    const auto log = fFilter->TakeLog();
    ASSERT_FALSE(log.empty());
    for (const std::string& line : log)
        EXPECT_TRUE(line.starts_with("quiet 12 ") || line.starts_with("quiet 13 ")) << line;
    EXPECT_GT(fFilter->GetParameterValue(kSFViewStart), 0.001F);
    EXPECT_NEAR(fFilter->GetParameterValue(kSFViewStart) * 24000, fGraph->GetHorizontalStart(), 0.01);
    EXPECT_GT(fFilter->requests, requests);

    fWindow.DoubleClick({content.left + 50, content.Bottom() + 8});
    EXPECT_EQ(fGraph->GetHorizontalStart(), 20);
    EXPECT_EQ(fFilter->GetParameterValue(kSFViewStart), 0) << "the lowest at any sample rate";
    EXPECT_EQ(fFilter->GetParameterValue(kSFViewEnd), 1);
}

TEST_F(SFGraphTest, FollowsViewParametersAxisAndSampleRate) {
    fFilter->Store(kSFViewStart, 0.25F);
    fFilter->Store(kSFViewEnd, 0.5F);
    fFilter->Store(kSFLogarithmicAxis, 0);
    fGraph->UpdateGraph();
    EXPECT_EQ(fGraph->GetHorizontalStart(), 6000);
    EXPECT_EQ(fGraph->GetHorizontalEnd(), 12000);
    const Rect content = fGraph->GetContentRect();
    EXPECT_NEAR(fGraph->GetPixelForCoordinatePair({9000, 0}).x, content.left + content.width / 2, 0.01) << "linear";
    fFilter->Store(kSFViewEnd, 0.1F);
    fGraph->UpdateGraph();
    EXPECT_EQ(fGraph->GetHorizontalEnd(), 24000) << "ends before it starts";
    fFilter->Prepare(96000, 64, kromediatypes::AudioChannelLayout::Mono());
    fGraph->UpdateGraph();
    EXPECT_EQ(fGraph->GetHorizontalEnd(), 48000);
}

TEST_F(SFGraphTest, AZoomedLevelAxisIsWholeAgainInAnotherView) {
    const Rect content = fGraph->GetContentRect();
    fWindow.Wheel({content.left - 20, content.top + 50}, 4);
    EXPECT_LT(fGraph->GetVerticalStart() - fGraph->GetVerticalEnd(), 60);
    const double top = fGraph->GetVerticalStart();
    fGraph->UpdateGraph();
    EXPECT_EQ(fGraph->GetVerticalStart(), top) << "stays zoomed while the filter changes";
    Show(SFGraph::View::kPhase);
    EXPECT_EQ(fGraph->GetVerticalStart(), 180);
}

// A response that falls from 0 dB at 20 Hz, evenly along the logarithmic axis, by 10 dB at 24 kHz.
TEST_F(SFGraphTest, TheResponseIsToldAtEveryFrequencyThatIsWritten) {
    fFilter->curve = [](double place) { return static_cast<float>(-10 * place); };
    fGraph->UpdateGraph();
    const int count = fGraph->UI_GetAccessiblePartCount();
    ASSERT_GT(count, 3);
    double previous = 0;
    for (int part = 0; part < count; ++part) {
        const ui::AccessiblePart told = fGraph->UI_GetAccessiblePart(part);
        const double hertz = told.info.position->value;
        EXPECT_GT(hertz, previous) << "from left to right";
        previous = hertz;
        EXPECT_NEAR(told.info.range->value, -10 * std::log(hertz / 20) / std::log(1200.0), 0.02) << hertz;
        EXPECT_TRUE(told.bounds.Contains({told.bounds.Centre().x, HeightOf(told.info.range->value)}));
        if (hertz != 1000) continue;
        EXPECT_EQ(told.info.name, u"1.00 kHz");
        EXPECT_THAT(krocore::ToStdString(told.info.value), testing::MatchesRegex("-5\\.5[0-9]* dB"));
    }
    Show(SFGraph::View::kPhase);
    EXPECT_THAT(krocore::ToStdString(fGraph->UI_GetAccessiblePart(0).info.value), testing::EndsWith("\u00B0"));
}

TEST_F(SFGraphTest, EachViewHasItsColour) {
    fGraph->SetCurveColor(SFGraph::View::kPhase, limner::Color::FromRGB(0x123456));
    EXPECT_EQ(Drawn("StrokeFunction")[1], "#FFC94D");
    Show(SFGraph::View::kPhase);
    EXPECT_EQ(Drawn("StrokeFunction")[1], "#123456");
    fWindow.Paint();
    fGraph->SetCurveColor(SFGraph::View::kPhase, limner::Color::FromRGB(0x123456));
    EXPECT_EQ(fWindow.Paint(), 0);
    fGraph->SetCurveColor(SFGraph::View::kMagnitude, limner::Color::FromRGB(0xFF0000));
    EXPECT_EQ(fWindow.Paint(), 0) << "that curve is not shown";
    EXPECT_EQ(fGraph->UI_GetAccessibleInfo().value, u"Phase");
}

TEST_F(SFGraphTest, ReadsOutTheResponseUnderThePointer) {
    fFilter->curve = [](double place) { return static_cast<float>(-10 * place); };
    fFilter->Store(kSFLogarithmicAxis, 0);
    fGraph->UpdateGraph();
    const Rect content = fGraph->GetContentRect();
    // A quarter of the way from 20 Hz to 24 kHz: 6015 Hz, -2.5 dB.
    fWindow.MoveTo({content.left + content.width / 4, content.top + 100});
    EXPECT_THAT(Draw(), testing::Contains(HasSubstr("6.02 kHz, -2.5 dB")));
    fWindow.MoveTo({content.left - 10, content.top + 100});
    EXPECT_THAT(Draw(), Not(testing::Contains(HasSubstr("dB\" 11"))));
}

TEST_F(SFGraphTest, TheReadOutNeverCoversWhatIsReadOut) {
    const Rect content = fGraph->GetContentRect();
    for (const float x :
         {content.left + 1, content.left + content.width / 2, content.Right() - 100, content.Right() - 1}) {
        for (const float y : {content.top + 1, content.top + 60}) {
            fWindow.MoveTo({x, y});
            const auto words = Drawn("FillRoundRect");
            ASSERT_EQ(words.size(), 7U);
            const float left = std::stof(words[1]);
            const float right = left + std::stof(words[3]);
            EXPECT_GE(left, content.left);
            EXPECT_LE(right, content.Right());
            EXPECT_TRUE(x < left - 8 || x > right + 8) << x << ": " << left << " to " << right;
        }
    }
    fWindow.Paint();
    fWindow.MoveTo({content.left + 5, content.top + 60}); // from the left corner to the right one
    fWindow.Paint();
    for (const float x : {content.left + 20, content.Right() - 20})
        EXPECT_TRUE(std::ranges::any_of(fWindow.LastDamage(),
                                        [&](const Rect& r) {
                                            return r.Contains({x, content.top + 14});
                                        }))
            << "both are painted anew: " << x;
}

} // namespace
