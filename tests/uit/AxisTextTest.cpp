#include "uit/controls/AxisText.h"

#include "krocore/FaderTranslator.h"

#include <gtest/gtest.h>

namespace uit::controls {
namespace {

using krocore::ToStdString;

TEST(AxisText, WritesThePlacesThatAPixelNeeds) {
    const struct {
        const char16_t* unit;
        double value, pixel;
        const char* text;
    } cases[] = {
        {u"Hz", 63.456, 0.7, "63.5 Hz"}, {u"Hz", 440.4, 5, "440 Hz"},     {u"Hz", 999.9, 5, "1000 Hz"},
        {u"Hz", 1254, 14, "1.25 kHz"},   {u"Hz", 12540, 140, "12.5 kHz"}, {u"Hz", 1234.56, 0.1, "1.2346 kHz"},
        {u"dB", -3.24, 0.77, "-3.2 dB"}, {u"dB", -0.001, 0.5, "0.0 dB"},  {u"\u00B0", -90.2, 1.2, "-90\u00B0"},
        {u"", 0.12345, 0.001, "0.123"},  {u"dB", 5, 0, "5.0 dB"},
    };
    for (const auto& c : cases) {
        AxisText text;
        text.unit = c.unit;
        EXPECT_EQ(ToStdString(text.Write(c.value, c.pixel)), c.text);
    }
}

TEST(AxisText, TranslatesBothWays) {
    using Fader = krocore::FaderTranslator<double>;
    AxisText level;
    level.unit = u"dB";
    level.typedToAxis = +[](double decibels) { return Fader().GetNormalizedValue(decibels); };
    level.axisToTyped = +[](double position) { return Fader().GetDecibelValue(position); };
    EXPECT_EQ(ToStdString(level.Write(0.630957, 0.005)), "0.0 dB"); // 10^(-0.2)
    EXPECT_EQ(ToStdString(level.Write(0, 0.005)), "-\u221E dB");
    EXPECT_EQ(ToStdString(level.WriteForEntry(1, 0.005)), "12");
    EXPECT_NEAR(level.Read(u"0 dB").value(), 0.630957, 1e-6);
    EXPECT_EQ(level.Read(u"-inf").value(), 0);
    EXPECT_FALSE(level.Read(u"loud"));
    AxisText frequency;
    frequency.unit = u"Hz";
    EXPECT_EQ(frequency.Read(u"1,5 kHz").value(), 1500);
}

} // namespace
} // namespace uit::controls
