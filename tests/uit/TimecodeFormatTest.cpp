#include "uit/TimecodeFormat.h"

#include <gmock/gmock.h>

#include <limits>
#include <numbers>

namespace uit {
namespace {

using Settings = TimecodeSettings;

Settings Of(Settings::Format format) {
    Settings settings;
    settings.format = format;
    return settings;
}

std::string Text(const Settings& settings, double seconds) {
    return krocore::ToStdString(TimecodeFormat(settings).Format(seconds));
}

struct Written {
    Settings settings;
    double seconds;
    const char* text;
};

// What is written, and what is read from it: both ways of each row.
void ExpectBothWays(std::initializer_list<Written> rows) {
    for (const Written& row : rows) {
        const TimecodeFormat format(row.settings);
        EXPECT_EQ(Text(row.settings, row.seconds), row.text) << row.seconds;
        const std::optional<double> read = format.Parse(krocore::ToUTF16(row.text));
        ASSERT_TRUE(read) << row.text;
        EXPECT_NEAR(*read, row.seconds, format.Resolution() / 2) << row.text;
        EXPECT_EQ(format.Format(*read), krocore::ToUTF16(row.text));
    }
}

TEST(TimecodeFormatTest, DecimalCountsMinutesAndHoursOnlyAsNeeded) {
    const Settings decimal = Of(Settings::kDecimal);
    ExpectBothWays({{decimal, 0, "0:00.000"},
                    {decimal, 59.9996, "1:00.000"},
                    {decimal, 61.25, "1:01.250"},
                    {decimal, 3599.999, "59:59.999"},
                    {decimal, 3600, "1:00:00.000"},
                    {decimal, 90061.5, "25:01:01.500"},
                    {decimal, -1.5, "-0:01.500"}});
    EXPECT_EQ(Text(decimal, -0.0001), "0:00.000") << "no minus for nothing";
}

TEST(TimecodeFormatTest, FramesCountByTheRateRoundedUp) {
    Settings film = Of(Settings::kCurrentFrames);
    film.currentFps = 23.976; // 24000 / 1001
    Settings fast = Of(Settings::kCustomFrames);
    fast.customFps = 120;
    Settings odd = fast;
    odd.customFps = 12.5; // 13 names a second of the clock
    ExpectBothWays({{Of(Settings::kFilmFrames), 1 + 23.0 / 24, "00:00:01:23"},
                    {Of(Settings::kPALFrames), 3661.04, "01:01:01:01"},
                    {Of(Settings::kThirtyFrames), 59.99, "00:01:00:00"},
                    {Of(Settings::kThirtyFrames), 360000, "100:00:00:00"},
                    {film, 86400 * 1001.0 / 24000, "01:00:00:00"},
                    {fast, 1 + 5.0 / 120, "00:00:01:005"},
                    {odd, 13 / 12.5, "00:00:01:00"},
                    {Of(Settings::kPALFrames), -0.04, "-00:00:00:01"}});
}

// The frame numbers around the places where SMPTE ST 12-1 leaves two out, by frame.
TEST(TimecodeFormatTest, DropFrameLeavesOutTwoNumbersAMinuteButNotEveryTenth) {
    constexpr double kFrame = 1001.0 / 30000;
    const Settings drop = Of(Settings::kNTSCDropFrames);
    const Settings all = Of(Settings::kNTSCNonDropFrames);
    ExpectBothWays({{drop, 1799 * kFrame, "00:00:59;29"},
                    {drop, 1800 * kFrame, "00:01:00;02"},
                    {drop, 3597 * kFrame, "00:01:59;29"},
                    {drop, 3598 * kFrame, "00:02:00;02"},
                    {drop, 17981 * kFrame, "00:09:59;29"},
                    {drop, 17982 * kFrame, "00:10:00;00"},
                    {drop, 17983 * kFrame, "00:10:00;01"},
                    {drop, 19782 * kFrame, "00:11:00;02"},
                    {drop, 107892 * kFrame, "01:00:00;00"},
                    {all, 1800 * kFrame, "00:01:00:00"},
                    {all, 107892 * kFrame, "00:59:56:12"}});
}

TEST(TimecodeFormatTest, DropFrameStaysWithinFiveFramesOfTheClockForADay) {
    const TimecodeFormat drop(Of(Settings::kNTSCDropFrames));
    for (int minute = 0; minute < 24 * 60; ++minute) {
        const std::u16string text = drop.Format(minute * 60.0).c_str();
        const int shown = std::stoi(krocore::ToStdString(text.substr(0, 2))) * 60 * 60 * 30 +
                          std::stoi(krocore::ToStdString(text.substr(3, 2))) * 60 * 30 +
                          std::stoi(krocore::ToStdString(text.substr(6, 2))) * 30 +
                          std::stoi(krocore::ToStdString(text.substr(9, 2)));
        EXPECT_NEAR(shown, minute * 60 * 30, 5) << krocore::ToStdString(text);
    }
    EXPECT_DOUBLE_EQ(drop.Parse(u"00:01:00;00").value(), 1800 * 1001.0 / 30000) << "left out: the next one";
}

TEST(TimecodeFormatTest, SamplesAreWhole) {
    Settings samples = Of(Settings::kSamples);
    samples.sampleRate = 48000;
    ExpectBothWays({{samples, 1, "48000"}, {samples, 0.00001, "0"}, {samples, -2.5, "-120000"}});
    EXPECT_FALSE(TimecodeFormat(samples).Parse(u"1:00"));
    EXPECT_FALSE(TimecodeFormat(samples).Parse(u"1.5"));
}

TEST(TimecodeFormatTest, BarsCountFromOneForPlacesAndFromNoneForLengths) {
    Settings place = Of(Settings::kBarsAndBeats); // 120 in 4/4: a beat is half a second, a tick 1/960
    Settings length = place;
    length.isDuration = true;
    Settings waltz = place;
    waltz.beatsPerBar = 3;
    waltz.beatsPerMinute = 90;
    waltz.beatOffsetMs = 250;
    Settings eighths = place; // 6/8: 240 ticks a beat
    eighths.beatsPerBar = 6;
    eighths.noteLength = 8;
    Settings waltzLength = waltz;
    waltzLength.isDuration = true;
    ExpectBothWays({{place, 0, "1:1.000"},
                    {place, 2.5, "2:2.000"},
                    {place, 479.0 / 960, "1:1.479"},
                    {place, -1.0 / 960, "0:4.479"},
                    {place, -4, "-1:1.000"},
                    {length, 0, "0:0.000"},
                    {length, 2.5, "1:1.000"},
                    {length, -0.5, "-0:1.000"},
                    {waltz, 0.25, "1:1.000"},
                    {waltz, 0.25 + 2 + 2.0 / 3, "2:2.000"},
                    {waltz, 0.25 - 2.0 / 3, "0:3.000"},
                    {waltzLength, 2, "1:0.000"},
                    {eighths, 3.25, "2:1.120"}});
}

TEST(TimecodeFormatTest, ParseFillsUpWhatIsLeftOut) {
    const Settings decimal = Of(Settings::kDecimal);
    const Settings pal = Of(Settings::kPALFrames);
    const Settings bars = Of(Settings::kBarsAndBeats);
    const struct {
        Settings settings;
        const char16_t* text;
        double seconds;
    } kRows[] = {{decimal, u"90", 90},
                 {decimal, u" 1:5 ", 65},
                 {decimal, u".5", 0.5},
                 {decimal, u"5.", 5},
                 {decimal, u"1:2,25", 62.25},
                 {decimal, u"90:00", 5400},
                 {decimal, u"\u22122", -2},
                 {decimal, u"+3", 3},
                 {decimal, u"1:00:00", 3600},
                 {decimal, u"0.1234567", 0.1234567},
                 {pal, u"90", 3.6},
                 {pal, u"1:05", 1.2},
                 {pal, u"90:05", 90.2},
                 {pal, u"1.2.3.4", 3723.16},
                 {bars, u"5", 8},
                 {bars, u"5:3", 9},
                 {bars, u"1:1:240", 0.25}};
    for (const auto& row : kRows) {
        const std::optional<double> read = TimecodeFormat(row.settings).Parse(row.text);
        ASSERT_TRUE(read) << krocore::ToStdString(row.text);
        EXPECT_NEAR(*read, row.seconds, 1e-9) << krocore::ToStdString(row.text);
    }
}

TEST(TimecodeFormatTest, ParseRefusesWhatIsNoTime) {
    for (const char16_t* const text :
         {u"", u" ", u"-", u"abc", u":", u"1:", u":30", u"1:60", u"1:60:00", u"1:2:3:4", u".", u"1..5", u"1.2.3",
          u"--1", u"1e5", u"0x10", u"1 2", u"99999999999999999999", u"999999999999"})
        EXPECT_FALSE(TimecodeFormat(Of(Settings::kDecimal)).Parse(text)) << krocore::ToStdString(text);
    for (const char16_t* const text : {u"1:25", u"1:60:00", u"1:60:00:00", u"1:2:3:4:5", u"1:-2", u"::", u"1;"})
        EXPECT_FALSE(TimecodeFormat(Of(Settings::kPALFrames)).Parse(text)) << krocore::ToStdString(text);
    for (const char16_t* const text : {u"1:0", u"1:5", u"1:1.480", u"1:1.0.0", u"1:", u"x"})
        EXPECT_FALSE(TimecodeFormat(Of(Settings::kBarsAndBeats)).Parse(text)) << krocore::ToStdString(text);
}

TEST(TimecodeFormatTest, EveryFormatReadsBackWhatItWrites) {
    for (int number = Settings::kDecimal; number <= Settings::kBarsAndBeats; ++number) {
        for (const bool isDuration : {false, true}) {
            Settings settings = Of(static_cast<Settings::Format>(number));
            settings.currentFps = 59.94;
            settings.customFps = 48;
            settings.beatsPerMinute = 133.7;
            settings.beatsPerBar = 7;
            settings.beatOffsetMs = -412.5;
            settings.isDuration = isDuration;
            const TimecodeFormat format(settings);
            double seconds = 0.0007;
            for (int i = 0; i < 400; ++i, seconds = seconds * 1.05 + std::numbers::pi / 1000) {
                for (const double time : {seconds, -seconds}) {
                    const krocore::string16 text = format.Format(time);
                    const std::optional<double> read = format.Parse(text);
                    ASSERT_TRUE(read) << krocore::ToStdString(text);
                    EXPECT_LE(std::abs(*read - time), format.Resolution() * 0.5001) << krocore::ToStdString(text);
                    EXPECT_EQ(format.Format(*read), text);
                }
            }
        }
    }
}

TEST(TimecodeFormatTest, SenselessSettingsAndTimesAreHeld) {
    const double kNaN = std::numeric_limits<double>::quiet_NaN();
    const double kInfinity = std::numeric_limits<double>::infinity();
    for (const double senseless : {0.0, -1.0, kNaN, kInfinity, 1e300}) {
        Settings settings;
        settings.sampleRate = settings.currentFps = settings.customFps = settings.beatsPerMinute = senseless;
        settings.beatOffsetMs = senseless > 0 ? senseless : 0;
        settings.ticksPerQuarter = settings.beatsPerBar = settings.noteLength = senseless < 0 ? -1 : 0;
        settings.format = Settings::kSamples;
        EXPECT_EQ(Text(settings, 1), "44100");
        settings.format = Settings::kCustomFrames;
        EXPECT_EQ(Text(settings, 1.5), "00:00:01:15");
        settings.format = Settings::kBarsAndBeats;
        EXPECT_EQ(Text(settings, 2), "2:1.000");
    }
    Settings unknown;
    unknown.format = 99;
    EXPECT_EQ(Text(unknown, 1), "0:01.000");
    EXPECT_EQ(Text(unknown, kNaN), "\u2014");
    EXPECT_EQ(Text(unknown, kInfinity), Text(unknown, TimecodeFormat::kMostSeconds));
    EXPECT_EQ(Text(unknown, -1e30), Text(unknown, -TimecodeFormat::kMostSeconds));
}

} // namespace
} // namespace uit
