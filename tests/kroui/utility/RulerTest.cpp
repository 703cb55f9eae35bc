#include "kroui/limner/CairoSupplier.h"
#include "kroui/limner/RecordingLimner.h"
#include "kroui/utility/DecibelRuler.h"
#include "kroui/utility/LinearRuler.h"
#include "kroui/utility/LogRuler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

namespace kroui::utility {
namespace {

using testing::ElementsAre;
using RulerPtr = boost::intrusive_ptr<RulerBase>;

const limner::SupplierInterface& Supplier() {
    static const limner::CairoSupplier sSupplier;
    return sSupplier;
}

enum class Kind { kLinear, kLog, kDecibel, kFader };

RulerPtr MakeRuler(Kind kind, double first, double last, float length, double stepFactor = 20) {
    RulerPtr ruler;
    if (kind == Kind::kLinear) ruler = new LinearRuler;
    if (kind == Kind::kLog) ruler = new LogRuler;
    if (kind >= Kind::kDecibel) ruler = new DecibelRuler;
    if (kind == Kind::kFader) ruler->SetStyle(RulerBase::kFader);
    ruler->SetValueRange(first, last);
    ruler->SetPixelRange(0, length);
    ruler->SetStepFactor(stepFactor);
    return ruler;
}

std::vector<std::string> Labels(const RulerBase& ruler) {
    std::vector<std::string> labels;
    for (const RulerTick& tick : ruler.GetTicks(&Supplier()))
        if (!tick.text.empty()) labels.push_back(krocore::ToStdString(tick.text));
    return labels;
}

std::vector<double> Marks(const RulerBase& ruler) {
    std::vector<double> values;
    for (const RulerTick& tick : ruler.GetTicks(&Supplier()))
        values.push_back(tick.value);
    return values;
}

TEST(Ruler, AnyChangeShowsInTheMarksAtOnce) {
    using Change = void (*)(RulerBase&);
    const Change changes[] = {
        [](RulerBase& ruler) { ruler.SetPixelRange(0, 420); },
        [](RulerBase& ruler) { ruler.SetPixelRange(60, 200); },
        [](RulerBase& ruler) { ruler.SetPixelRange(200, 0); },
        [](RulerBase& ruler) { ruler.SetValueRange(1, 37); },
        [](RulerBase& ruler) { ruler.SetValueRange(3, 900); },
        [](RulerBase& ruler) { ruler.SetValueRange(900, 1); },
        [](RulerBase& ruler) { ruler.SetStepFactor(90); },
        [](RulerBase& ruler) { ruler.SetFontSize(19); },
        [](RulerBase& ruler) { ruler.SetVertical(true); },
        [](RulerBase& ruler) { ruler.SetLabel1(u"Least of all"); },
        [](RulerBase& ruler) { ruler.SetLabel2(u"Most of all"); },
    };
    const auto marks = [](const RulerBase& ruler) {
        std::string text;
        for (const RulerTick& tick : ruler.GetTicks(&Supplier()))
            text += std::to_string(tick.value) + " at " + std::to_string(tick.pixel) + " " +
                    krocore::ToStdString(tick.text) + "\n";
        return text;
    };
    for (const Kind kind : {Kind::kLinear, Kind::kLog, Kind::kDecibel}) {
        for (const Change& change : changes) {
            const RulerPtr fresh = MakeRuler(kind, 1, 900, 200);
            const RulerPtr drawn = MakeRuler(kind, 1, 900, 200);
            marks(*drawn);
            change(*fresh);
            change(*drawn);
            EXPECT_EQ(marks(*drawn), marks(*fresh)) << static_cast<int>(kind) << ", " << &change - changes;
        }
    }
}

TEST(LinearRuler, LabelsMeetBothEndsOfTheRangeIfARoundStepCan) {
    const struct {
        double first, last;
        float length;
        double stepFactor;
        std::vector<std::string> labels;
    } cases[] = {
        {-12, 12, 250, 50, {"-12", "-6", "0", "6", "12"}},
        {-100, 100, 250, 50, {"-100", "-50", "0", "50", "100"}},
        {-96, 48, 200, 20, {"-96", "-72", "-48", "-24", "0", "24", "48"}},
        {0, 1, 200, 30, {"0.0", "0.2", "0.4", "0.6", "0.8", "1.0"}},
        {180, -180, 400, 60, {"180", "120", "60", "0", "-60", "-120", "-180"}},
        {20, 24000, 500, 60, {"5k", "10k", "15k", "20k"}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Labels(*MakeRuler(Kind::kLinear, c.first, c.last, c.length, c.stepFactor)), c.labels)
            << c.first << "..." << c.last;
}

TEST(LinearRuler, MarksBetweenLabelsDivideTheStep) {
    // 24 semitones on 240 pixels, labels 60 apart: the step 6 falls into six parts of 10 pixels.
    const RulerPtr ruler = MakeRuler(Kind::kLinear, -6, 6, 120, 60);
    EXPECT_THAT(Marks(*ruler), ElementsAre(-6, -5, -4, -3, -2, -1, 0, 1, 2, 3, 4, 5, 6));
}

TEST(LogRuler, LabelsOneTwoFiveOfEveryPowerAndMarksTwoToNine) {
    // 184 pixels a decade, as a graph of 552 pixels has them.
    const RulerPtr ruler = MakeRuler(Kind::kLog, 20, 20000, 552);
    EXPECT_THAT(Labels(*ruler), ElementsAre("20", "50", "100", "200", "500", "1k", "2k", "5k", "10k", "20k"));
    std::vector<double> expected;
    for (const double power : {10, 100, 1000, 10000})
        for (int multiple = 1; multiple <= 9; ++multiple)
            if (power * multiple >= 20 && power * multiple <= 20000) expected.push_back(power * multiple);
    EXPECT_EQ(Marks(*ruler), expected);
}

TEST(LogRuler, LabelsFollowTheRoom) {
    EXPECT_THAT(Labels(*MakeRuler(Kind::kLog, 20, 20000, 120)), ElementsAre("20", "100", "1k", "10k"));
    EXPECT_THAT(Labels(*MakeRuler(Kind::kLog, 100, 1000, 1000)),
                ElementsAre("100", "200", "300", "400", "500", "600", "700", "800", "900", "1k"));
    EXPECT_THAT(Labels(*MakeRuler(Kind::kLog, 1e-3, 1, 600)),
                ElementsAre("0.001", "0.002", "0.005", "0.01", "0.02", "0.05", "0.1", "0.2", "0.5", "1"));
}

TEST(LogRuler, NarrowRangeIsLabelledAtRoundNumbers) {
    EXPECT_THAT(Labels(*MakeRuler(Kind::kLog, 440, 480, 200, 40)), ElementsAre("440", "450", "460", "470", "480"));
}

TEST(LogRuler, PowersFollowStepAndSeed) {
    boost::intrusive_ptr<LogRuler> octaves(new LogRuler);
    octaves->SetLogStep(2);
    octaves->SetLogSeed(440);
    octaves->SetLogStep(0.5); // refused
    octaves->SetLogSeed(-1);
    octaves->SetAbbreviateNumbers(false);
    octaves->SetValueRange(100, 2000);
    octaves->SetPixelRange(0, 400);
    EXPECT_THAT(Marks(*octaves), ElementsAre(110, 220, 440, 880, 1760));
    EXPECT_THAT(Labels(*octaves), ElementsAre("110", "220", "440", "880", "1760"));
}

TEST(DecibelRuler, FaderLawPutsDecibelsAtTheCubeRootOfTheAmplitude) {
    const RulerPtr ruler = MakeRuler(Kind::kFader, 1, 0, 200);
    ruler->SetVertical(true);
    // (1 - 10^((dB - 12) / 60)) * 200, rounded by hand.
    const std::pair<const char*, float> expected[] = {{"12", 0.0F}, {"0", 73.81F}, {"-12", 120.38F}, {"-24", 149.76F}};
    for (const auto& [text, pixel] : expected) {
        bool isFound = false;
        for (const RulerTick& tick : ruler->GetTicks(&Supplier())) {
            if (krocore::ToStdString(tick.text) != text) continue;
            isFound = true;
            EXPECT_NEAR(tick.pixel, pixel, 0.05) << text;
        }
        EXPECT_TRUE(isFound) << text;
    }
    EXPECT_EQ(Labels(*ruler).back(), "-\u221E");
    EXPECT_FLOAT_EQ(ruler->GetTicks(&Supplier()).back().pixel, 200);
}

TEST(DecibelRuler, PlainStyleLaysAmplitudesEvenly) {
    const RulerPtr ruler = MakeRuler(Kind::kDecibel, 0, 1, 400);
    for (const RulerTick& tick : ruler->GetTicks(&Supplier()))
        if (tick.text == u"-6") {
            EXPECT_NEAR(tick.pixel, 200.47, 0.01); // 400 * 10^(-6 / 20)
        }
    EXPECT_THAT(Labels(*ruler), testing::Contains("-6"));
}

TEST(Ruler, ValueAndPixelAreEachOthersInverseInBothDirections) {
    for (const Kind kind : {Kind::kLinear, Kind::kLog}) {
        for (const bool descends : {false, true}) {
            const RulerPtr ruler = MakeRuler(kind, descends ? 1000 : 10, descends ? 10 : 1000, 300);
            ruler->SetPixelRange(50, 250);
            EXPECT_FLOAT_EQ(ruler->GetPixel(descends ? 1000 : 10), 50);
            EXPECT_FLOAT_EQ(ruler->GetPixel(descends ? 10 : 1000), 250);
            for (const double value : {10.0, 55.0, 440.0, 1000.0})
                EXPECT_NEAR(ruler->GetValue(ruler->GetPixel(value)), value, value * 1e-5);
        }
    }
    EXPECT_FLOAT_EQ(MakeRuler(Kind::kLog, 10, 1000, 300)->GetPixel(100), 150);
}

// A sweep over every kind, many ranges and all widths that a panel may come to have.
TEST(Ruler, LabelsNeverOverlapNorLeaveTheRectangle) {
    const struct {
        Kind kind;
        double first, last;
        const char16_t* label;
    } rulers[] = {
        {Kind::kLinear, -96, 48, u""},   {Kind::kLinear, 24000, 20, u""},    {Kind::kLinear, 0.001, 0.0234, u""},
        {Kind::kLinear, -1e7, 3e7, u""}, {Kind::kLinear, 0, 100, u"Slow"},   {Kind::kLog, 20, 96000, u""},
        {Kind::kLog, 0.001, 200, u"Hz"}, {Kind::kLog, 995, 1005, u""},       {Kind::kDecibel, 0, 2, u""},
        {Kind::kFader, 1, 0, u""},       {Kind::kFader, 0.2, 0.7, u"quiet"},
    };
    for (const auto& r : rulers) {
        for (int width = 20; width <= 2000; width += width < 200 ? 1 : 37) {
            const RulerPtr ruler = MakeRuler(r.kind, r.first, r.last, static_cast<float>(width), 1);
            ruler->SetLabel1(r.label);
            limner::RecordingLimner limner;
            const Rect rect{-5, 0, static_cast<float>(width) + 10, 20};
            ruler->Draw(limner, rect, {}, &Supplier());
            float end = rect.left;
            for (const RulerTick& tick : ruler->GetTicks(&Supplier())) {
                if (tick.text.empty()) continue;
                ASSERT_GE(tick.textStart, end) << krocore::ToStdString(tick.text) << " at width " << width;
                ASSERT_NE(tick.text, u"-0");
                end = tick.textStart + Supplier().MeasureText(tick.text, {9, false}).width;
                // A lone word that is wider than the ruler has nowhere to go.
                if (tick.textLength > rect.width) continue;
                ASSERT_LE(end, rect.Right() + 0.01F) << "at width " << width;
            }
        }
    }
}

TEST(Ruler, RangesThatTellNothingAreSafe) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const Kind kind : {Kind::kLinear, Kind::kLog, Kind::kDecibel, Kind::kFader}) {
        const RulerPtr ruler = MakeRuler(kind, 5, 5, 100);
        EXPECT_TRUE(ruler->GetTicks(&Supplier()).empty());
        EXPECT_FLOAT_EQ(ruler->GetPixel(7), 0);
        EXPECT_EQ(ruler->GetValue(50), 5);
        ruler->SetValueRange(nan, 1);
        ruler->SetValueRange(0, infinity);
        EXPECT_EQ(ruler->GetFirstValue(), 5);
        ruler->SetValueRange(1, 2);
        for (const float length : {0.0F, 0.5F, -100.0F, 1e9F}) {
            ruler->SetPixelRange(0, length);
            ruler->GetTicks(&Supplier());
        }
        ruler->SetPixelRange(0, 100);
        ruler->SetValueRange(1, std::nextafter(1, 2));
        EXPECT_LT(ruler->GetTicks(&Supplier()).size(), 200U);
    }
    EXPECT_TRUE(MakeRuler(Kind::kDecibel, -2, -1, 100)->GetTicks(&Supplier()).empty());
    EXPECT_TRUE(MakeRuler(Kind::kFader, 2, 3, 100)->GetTicks(&Supplier()).empty());
    const RulerPtr logarithmic = MakeRuler(Kind::kLog, 0, 100, 100);
    EXPECT_TRUE(logarithmic->GetTicks(&Supplier()).empty());
    logarithmic->SetValueRange(-10, 100);
    EXPECT_TRUE(logarithmic->GetTicks(&Supplier()).empty());
    EXPECT_EQ(logarithmic->GetPixel(10), 0);
}

TEST(Ruler, EndLabelsStandInPlaceOfNumbers) {
    const RulerPtr ruler = MakeRuler(Kind::kLinear, 0, 100, 300, 50);
    ruler->SetLabel1(u"Slow");
    ruler->SetLabel2(u"Fast");
    EXPECT_THAT(Labels(*ruler), ElementsAre("Slow", "20", "40", "60", "80", "Fast"));
}

TEST(Ruler, TruncatedLabelsAreHiddenOrMovedInside) {
    const RulerPtr ruler = MakeRuler(Kind::kLinear, -100, 100, 200, 80);
    limner::RecordingLimner limner;
    ruler->Draw(limner, {0, 0, 200, 20}, {}, &Supplier());
    EXPECT_THAT(Labels(*ruler), ElementsAre("-100", "0", "100"));
    EXPECT_FLOAT_EQ(ruler->GetTicks(&Supplier()).front().textStart, 0);
    ruler->HideTruncatedStrings(true);
    ruler->Draw(limner, {0, 0, 200, 20}, {}, &Supplier());
    EXPECT_THAT(Labels(*ruler), ElementsAre("0"));
    EXPECT_TRUE(ruler->GetTicks(&Supplier()).front().major);
}

TEST(Ruler, SpanStyleCrossesWhatItMeasuresAndPutsTextsBeforeIt) {
    const RulerPtr ruler = MakeRuler(Kind::kLinear, 100, -100, 100, 40);
    ruler->SetVertical(true);
    ruler->SetStyle(RulerBase::kSpan);
    ruler->SetTextNearTickStart(true);
    ruler->SetMajorTickSpan(30, 50);
    ruler->SetMinorTickSpan(32, 48);
    ruler->SetPixelRange(20, 120);
    limner::RecordingLimner limner;
    const limner::Color white = limner::Color::FromRGB(0xFFFFFF);
    ruler->Draw(limner, {0, 0, 60, 140}, {white, white}, &Supplier());
    // 0 is in the middle of 20...120; its line is a pixel around 70, its text ends 2 before the line, 11 high.
    EXPECT_THAT(limner.Operations(), testing::Contains("FillRect 30 70 20 1 #FFFFFF"));
    EXPECT_THAT(limner.Operations(), testing::Contains("Text \"0\" 9 #FFFFFF 0 64.5 28 11 right"));
}

// Everything that marks show.
std::vector<std::string> Drawn(const RulerBase& ruler, const Rect& rect) {
    limner::RecordingLimner limner;
    ruler.Draw(limner, rect, {}, &Supplier());
    return limner.Operations();
}

TEST(Ruler, MarksAfterAnyChangeAreThoseOfANewRuler) {
    using Change = std::function<void(RulerBase&)>;
    const std::pair<const char*, Change> changes[] = {
        {"a shorter length", [](RulerBase& r) { r.SetPixelRange(0, 90); }},
        {"a longer length", [](RulerBase& r) { r.SetPixelRange(0, 700); }},
        {"another place", [](RulerBase& r) { r.SetPixelRange(20, 260); }},
        {"turned round", [](RulerBase& r) { r.SetPixelRange(240, 0); }},
        {"another range", [](RulerBase& r) { r.SetValueRange(0.05, 0.9); }},
        {"a range turned round", [](RulerBase& r) { r.SetValueRange(2, 0.1); }},
        {"vertical", [](RulerBase& r) { r.SetVertical(true); }},
        {"wider steps", [](RulerBase& r) { r.SetStepFactor(90); }},
        {"smaller letters", [](RulerBase& r) { r.SetFontSize(6); }},
        {"the law of a fader", [](RulerBase& r) { r.SetStyle(RulerBase::kFader); }},
        {"hidden labels", [](RulerBase& r) { r.HideTruncatedStrings(true); }},
        {"no abbreviations", [](RulerBase& r) { r.SetAbbreviateNumbers(false); }},
        {"a word at the start", [](RulerBase& r) { r.SetLabel1(u"slow"); }},
        {"a word at the end", [](RulerBase& r) { r.SetLabel2(u"fast"); }},
        {"marks that cross",
         [](RulerBase& r) {
             r.SetStyle(RulerBase::kSpan);
             r.SetMajorTickSpan(3, 9);
             r.SetMinorTickSpan(4, 8);
             r.SetTextNearTickStart(true);
         }},
    };
    constexpr Rect kRects[] = {{0, 0, 240, 30}, {0, 0, 90, 40}, {10, 5, 700, 700}};
    for (const Kind kind : {Kind::kLinear, Kind::kLog, Kind::kDecibel})
        for (const auto& [name, change] : changes) {
            const RulerPtr used = MakeRuler(kind, 0.1, 2, 240);
            for (const Rect& rect : kRects)
                Drawn(*used, rect);
            change(*used);
            for (const Rect& rect : kRects) {
                const RulerPtr fresh = MakeRuler(kind, 0.1, 2, 240);
                change(*fresh);
                EXPECT_EQ(Drawn(*used, rect), Drawn(*fresh, rect)) << name;
            }
        }
}

TEST(Ruler, RangesAtTheEndsOfWhatNumbersCanHoldHaveMarksThatAreNumbers) {
    constexpr double kLargest = std::numeric_limits<double>::max();
    constexpr double kSmallest = std::numeric_limits<double>::denorm_min();
    const std::pair<double, double> ranges[] = {
        {0, 1e308},     {-1e308, 1e308},    {0, kLargest},    {-kLargest, kLargest}, {1e307, 1e308},  {0, kSmallest},
        {kSmallest, 1}, {kSmallest, 1e308}, {1, 1 + 1e-15},   {-1e-308, 1e-308},     {1e300, 1e-300}, {0, 1e-300},
        {5, 5},         {-1, -1e-300},      {1e15, 1e15 + 1},
    };
    for (const Kind kind : {Kind::kLinear, Kind::kLog, Kind::kDecibel, Kind::kFader})
        for (const auto& [first, last] : ranges)
            for (const float length : {0.5F, 200.0F, 30000.0F}) {
                const RulerPtr ruler = MakeRuler(kind, first, last, length);
                EXPECT_LE(ruler->GetTicks(&Supplier()).size(), 4096U);
                for (const RulerTick& tick : ruler->GetTicks(&Supplier())) {
                    EXPECT_TRUE(std::isfinite(tick.value) && std::isfinite(tick.pixel)) << first << "..." << last;
                    EXPECT_LE(tick.text.size(), 400U);
                }
                EXPECT_TRUE(std::isfinite(ruler->GetPixel(first)));
                EXPECT_TRUE(std::isfinite(ruler->GetValue(length / 3)));
            }
}

TEST(Ruler, WhatIsNoNumberIsRefused) {
    for (const double odd : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                             -std::numeric_limits<double>::infinity()}) {
        const RulerPtr ruler = MakeRuler(Kind::kLog, 20, 20000, 200);
        const std::vector<std::string> before = Labels(*ruler);
        ruler->SetValueRange(odd, 100);
        ruler->SetValueRange(100, odd);
        ruler->SetPixelRange(static_cast<float>(odd), 100);
        ruler->SetPixelRange(0, static_cast<float>(odd));
        ruler->SetStepFactor(odd);
        ruler->SetFontSize(static_cast<float>(odd));
        dynamic_cast<LogRuler&>(*ruler).SetLogStep(odd);
        dynamic_cast<LogRuler&>(*ruler).SetLogSeed(odd);
        EXPECT_EQ(Labels(*ruler), before);
        EXPECT_TRUE(std::isfinite(ruler->GetPixel(odd)));
        EXPECT_TRUE(std::isfinite(ruler->GetValue(static_cast<float>(odd))));
    }
}

} // namespace
} // namespace kroui::utility
