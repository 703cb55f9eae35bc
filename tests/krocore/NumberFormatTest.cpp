#include "krocore/NumberFormat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace krocore {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class NumberFormat : public testing::Test {
protected:
    ~NumberFormat() override { NumberLocale::SetCurrent({}); }
};

struct Shown {
    Shown(double number, int decimalPlaces, std::u16string_view expected, int fieldWidth = 0)
        : value(number), places(decimalPlaces), text(expected), width(fieldWidth) {}
    double value;
    int places;
    std::u16string_view text;
    int width;
};

void ExpectShown(std::uint32_t flags, std::initializer_list<Shown> cases) {
    for (const Shown& c : cases) {
        const string16 text = FormatNumber(c.value, c.places, flags, c.width);
        EXPECT_TRUE(text == c.text) << ToStdString(text) << " instead of " << ToStdString(c.text);
    }
}

TEST_F(NumberFormat, RoundsTheDecimalValueHalfAwayFromZero) {
    ExpectShown(kFormatNormal,
                {Shown(0, 2, u"0.00"), Shown(2.675, 2, u"2.68"), Shown(0.125, 2, u"0.13"), Shown(-0.125, 2, u"-0.13"),
                 Shown(1.005, 2, u"1.01"), Shown(2.5, 0, u"3"), Shown(0.5, 0, u"1"), Shown(0.49, 0, u"0"),
                 Shown(0.05, 1, u"0.1"), Shown(0.005, 1, u"0.0"), Shown(9.995, 2, u"10.00"),
                 Shown(999.9999, 3, u"1000.000"), Shown(0.0999, 3, u"0.100"), Shown(1.0449999999999, 2, u"1.04"),
                 Shown(20000, 1, u"20000.0"), Shown(1e21, 1, u"1000000000000000000000.0"),
                 Shown(5e-324, 15, u"0.000000000000000"), Shown(1.5, -3, u"2"), Shown(0.1, 40, u"0.100000000000000")});
    EXPECT_EQ(FormatNumber(std::numeric_limits<double>::max(), 15, kFormatUseSeparator).size(), 309U + 102U + 1U + 15U);
}

TEST_F(NumberFormat, NeverShowsMinusZero) {
    ExpectShown(kFormatNormal, {Shown(-0.0, 1, u"0.0"), Shown(-0.04, 1, u"0.0"), Shown(-0.05, 1, u"-0.1")});
    ExpectShown(kFormatAlwaysSign, {Shown(-0.001, 2, u"+0.00")});
    ExpectShown(kFormatNoTrailingZeros, {Shown(-0.001, 2, u"0")});
}

TEST_F(NumberFormat, FlagsCombine) {
    ExpectShown(kFormatNoTrailingZeros,
                {Shown(1.5, 2, u"1.5"), Shown(2, 2, u"2"), Shown(1.204, 2, u"1.2"), Shown(100, 0, u"100")});
    ExpectShown(kFormatAlwaysSign, {Shown(3, 0, u"+3"), Shown(-3, 0, u"-3")});
    ExpectShown(kFormatPadSign, {Shown(3, 0, u"\u20073"), Shown(-3, 0, u"-3")});
    ExpectShown(kFormatPadSign | kFormatAlwaysSign, {Shown(3, 0, u"+3")});
    ExpectShown(kFormatLeadingSpaces, {Shown(7, 1, u"\u2007\u20077.0", 5), Shown(-12345, 1, u"-12345.0", 5)});
    ExpectShown(kFormatNormal, {Shown(7, 1, u"7.0", 5)});
    ExpectShown(kFormatUseSeparator, {Shown(999, 0, u"999"), Shown(1000, 0, u"1,000"),
                                      Shown(-1234567.25, 2, u"-1,234,567.25"), Shown(999999.5, 0, u"1,000,000")});
}

TEST_F(NumberFormat, WritesWhatIsNoFiniteNumber) {
    ExpectShown(kFormatNormal, {Shown(kInfinity, 2, u"\u221E"), Shown(-kInfinity, 2, u"-\u221E")});
    ExpectShown(kFormatAlwaysSign, {Shown(kInfinity, 2, u"+\u221E"), Shown(kNaN, 2, u"\u2014")});
    ExpectShown(kFormatLeadingSpaces, {Shown(-kInfinity, 2, u"\u2007\u2007-\u221E", 4)});
}

TEST_F(NumberFormat, UsesTheLocaleUnlessToldNotTo) {
    NumberLocale::SetCurrent({u',', u'.'});
    ExpectShown(kFormatUseSeparator, {Shown(1234.5, 1, u"1.234,5")});
    ExpectShown(kFormatUseSeparator | kFormatNoLocalization, {Shown(1234.5, 1, u"1,234.5")});
}

TEST_F(NumberFormat, ShortestFormReadsBackAsTheSameValue) {
    EXPECT_EQ(FormatShortest(0.1F), "0.1");
    EXPECT_EQ(FormatShortest(0.1), "0.1");
    EXPECT_EQ(FormatShortest(static_cast<double>(0.1F)), "0.10000000149011612");
    for (const double value : {0.0, -1.0 / 3, 1e22, 5e-324, std::numeric_limits<double>::max(), kInfinity, -kInfinity})
        EXPECT_EQ(ParsePlainNumber(FormatShortest(value)), value);
}

TEST_F(NumberFormat, PlainNumbersAreReadWholeOrNotAtAll) {
    EXPECT_EQ(ParsePlainNumber("-12.5e-1"), -1.25);
    EXPECT_EQ(ParsePlainNumber(".5"), 0.5);
    for (const std::string_view text : {"", " 1", "1 ", "+1", "1,5", "1x", "0x10", "1e999", "nan", "-", "1.2.3"})
        EXPECT_EQ(ParsePlainNumber(text), std::nullopt) << text;
}

struct Typed {
    Typed(std::u16string_view typedText, std::optional<double> expected) : text(typedText), value(expected) {}
    std::u16string_view text;
    std::optional<double> value;
};

void ExpectTyped(std::u16string_view unit, std::initializer_list<Typed> cases) {
    for (const Typed& c : cases)
        EXPECT_EQ(ParseTypedNumber(c.text, unit), c.value) << '"' << ToStdString(c.text) << '"';
}

void ExpectRefused(std::u16string_view unit, std::initializer_list<std::u16string_view> texts) {
    for (const std::u16string_view text : texts)
        EXPECT_EQ(ParseTypedNumber(text, unit), std::nullopt) << '"' << ToStdString(text) << '"';
}

TEST_F(NumberFormat, TypedNumbersTakeEitherDecimalPoint) {
    ExpectTyped(u"",
                {Typed(u"12", 12.0), Typed(u".5", 0.5), Typed(u",5", 0.5), Typed(u"5.", 5.0), Typed(u"1,5", 1.5),
                 Typed(u"1.234", 1.234), Typed(u"1.000,5", 1000.5), Typed(u"1,000.5", 1000.5), Typed(u"1,000,000", 1e6),
                 Typed(u"1.234.567,25", 1234567.25), Typed(u"1 000,5", 1000.5), Typed(u"12\u202F000", 12000.0),
                 Typed(u"1'234'567.5", 1234567.5), Typed(u"1.5e3", 1500.0), Typed(u"25E-2", 0.25)});
}

TEST_F(NumberFormat, TypedNumbersTakeSignsAndInfinity) {
    ExpectTyped(u"dB",
                {Typed(u"+3", 3.0), Typed(u" - 5 ", -5.0), Typed(u"\u22125", -5.0), Typed(u"-inf", -kInfinity),
                 Typed(u"-Inf dB", -kInfinity), Typed(u"-\u221E dB", -kInfinity), Typed(u"+infinity", kInfinity)});
    EXPECT_FALSE(std::signbit(*ParseTypedNumber(u"-0")));
}

TEST_F(NumberFormat, TypedNumbersTakeUnitsAndMultipliers) {
    ExpectTyped(u"", {Typed(u"8k", 8000.0), Typed(u"1.001k", 1001.0), Typed(u"2M", 2e6)});
    ExpectTyped(u" dB", {Typed(u"-5 dB", -5.0), Typed(u"-5DB", -5.0)});
    ExpectTyped(u"hz", {Typed(u"8K", 8000.0), Typed(u"1.5 kHz", 1500.0), Typed(u"2 MHz", 2e6)});
    ExpectTyped(u"kHz", {Typed(u"8k", 8.0), Typed(u"8 khz", 8.0)});
    ExpectTyped(u"\u00B0", {Typed(u"180\u00B0", 180.0)});
    ExpectTyped(u"e", {Typed(u"3 e", 3.0), Typed(u"3e2", 300.0)});
}

TEST_F(NumberFormat, TextThatIsNoNumberIsRefused) {
    ExpectRefused(u"", {u"", u"  ", u"-", u".", u"+-5", u"5-", u"5 dB", u"5m", u"8 kk", u"info", u"1,2,3", u"1.5,3",
                        u"1,000.5,3", u"1 2", u"1.000 000", u"0x10", u"1e999", u"1e9999", u"nan"});
    ExpectRefused(u"dB", {u"dB", u"5 Hz"});
    ExpectRefused(u"ms", {u"5M", u"5 m"});
    ExpectRefused(u"kHz", {u"8 kkHz", u"8 Hz"});
    EXPECT_EQ(ParseTypedNumber(std::u16string(500, u'1')), std::nullopt);
}

} // namespace
} // namespace krocore
