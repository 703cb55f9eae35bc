#include "uit/TimecodeFormat.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace uit {

using krocore::string16;

namespace {

constexpr std::int64_t kMillisecondsPerSecond = 1000;
constexpr std::int64_t kSecondsPerMinute = 60;
constexpr std::int64_t kMinutesPerHour = 60;
constexpr double kDecimalIncrement = 0.1;
constexpr std::size_t kMostDigits = 15; // of a field: exact in a double

// SMPTE ST 12-1: at 29.97 frames a second, numbers 0 and 1 are left out in each minute that is no multiple of ten.
constexpr std::int64_t kDropped = 2;
constexpr std::int64_t kDropMinutes = 10;

constexpr char16_t kMinus = u'-';
constexpr char16_t kMathMinus = 0x2212;
constexpr char16_t kEmDash = 0x2014;

// What a host may say; beyond, counts of units would not fit into whole numbers.
constexpr double kMostRate = 1e7;   // samples a second
constexpr double kMostCount = 1e5;  // frames, beats, ticks
constexpr double kMostOffset = 1e9; // milliseconds

template <class T>
T PositiveOr(T value, T fallback, double most) {
    return value > 0 && static_cast<double>(value) <= most ? value : fallback;
}

// The frame rates of NTSC are n * 1000 / 1001; hosts round them.
double ExactRate(double rate) {
    constexpr double kNTSCFactor = 1000.0 / 1001.0;
    constexpr double kRounding = 0.005;
    const double exact = std::ceil(rate) * kNTSCFactor;
    return std::abs(rate - exact) < kRounding ? exact : rate;
}

// A whole number with at least so many digits.
string16 Padded(std::int64_t number, std::size_t digits) {
    const std::string text = std::to_string(number);
    string16 padded(text.size() < digits ? digits - text.size() : 0, u'0');
    padded.append(text.begin(), text.end());
    return padded;
}

// Numerator and remainder of a division that rounds down.
struct Division {
    std::int64_t whole;
    std::int64_t rest;
};
Division Divide(std::int64_t value, std::int64_t by) {
    const std::int64_t rest = ((value % by) + by) % by;
    return {(value - rest) / by, rest};
}

std::u16string_view Trimmed(std::u16string_view text) {
    constexpr std::u16string_view kSpace = u" \t\u00A0";
    const std::size_t first = text.find_first_not_of(kSpace);
    if (first == std::u16string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

std::optional<std::int64_t> WholeNumber(std::u16string_view text) {
    if (text.empty() || text.size() > kMostDigits) return {};
    std::int64_t number = 0;
    for (const char16_t c : text) {
        if (c < u'0' || c > u'9') return {};
        number = number * 10 + (c - u'0');
    }
    return number;
}

// The whole numbers of a text between separators, at most as many as the array holds. None if there is anything else.
template <std::size_t Most>
struct Fields {
    std::array<std::int64_t, Most> numbers{};
    std::size_t count = 0;

    Fields(std::u16string_view text, std::u16string_view separators) {
        while (count < Most) {
            const std::size_t end = text.find_first_of(separators);
            const std::optional<std::int64_t> number = WholeNumber(text.substr(0, end));
            if (!number) break;
            numbers[count++] = *number;
            if (end == std::u16string_view::npos) return;
            text.remove_prefix(end + 1);
        }
        count = 0;
    }
    // A field counted from the last; 0 if it was left out.
    std::int64_t FromEnd(std::size_t index) const { return index < count ? numbers[count - 1 - index] : 0; }
    // Whether that field is below a limit, as all but the first have to be.
    bool Holds(std::size_t indexFromEnd, std::int64_t limit) const {
        return indexFromEnd + 1 >= count || FromEnd(indexFromEnd) < limit;
    }
};

} // namespace

TimecodeFormat::TimecodeFormat(const TimecodeSettings& settings) : fSettings(settings) {
    const TimecodeSettings usual;
    const bool isKnown = settings.format >= 0 && settings.format <= TimecodeSettings::kBarsAndBeats;
    fSettings.format = isKnown ? settings.format : static_cast<std::int32_t>(TimecodeSettings::kDecimal);
    fSettings.sampleRate = PositiveOr(settings.sampleRate, usual.sampleRate, kMostRate);
    fSettings.currentFps = PositiveOr(settings.currentFps, usual.currentFps, kMostCount);
    fSettings.customFps = PositiveOr(settings.customFps, usual.customFps, kMostCount);
    fSettings.beatsPerMinute = PositiveOr(settings.beatsPerMinute, usual.beatsPerMinute, kMostCount);
    fSettings.beatOffsetMs = std::abs(settings.beatOffsetMs) <= kMostOffset ? settings.beatOffsetMs : 0;
    fSettings.ticksPerQuarter = PositiveOr(settings.ticksPerQuarter, usual.ticksPerQuarter, kMostCount);
    fSettings.beatsPerBar = PositiveOr(settings.beatsPerBar, usual.beatsPerBar, kMostCount);
    fSettings.noteLength = PositiveOr(settings.noteLength, usual.noteLength, kMostCount);
}

bool TimecodeFormat::IsFrames() const {
    return fSettings.format >= TimecodeSettings::kFilmFrames && fSettings.format <= TimecodeSettings::kCustomFrames;
}

double TimecodeFormat::FramesPerSecond() const {
    switch (fSettings.format) {
    case TimecodeSettings::kFilmFrames: return 24;
    case TimecodeSettings::kPALFrames: return 25;
    case TimecodeSettings::kNTSCDropFrames:
    case TimecodeSettings::kNTSCNonDropFrames: return ExactRate(29.97);
    case TimecodeSettings::kCurrentFrames: return ExactRate(fSettings.currentFps);
    case TimecodeSettings::kCustomFrames: return ExactRate(fSettings.customFps);
    default: return 30;
    }
}

std::int64_t TimecodeFormat::FramesOnClock() const {
    return std::max<std::int64_t>(1, static_cast<std::int64_t>(std::ceil(FramesPerSecond())));
}

std::int64_t TimecodeFormat::TicksPerBeat() const {
    constexpr std::int64_t kQuartersPerWhole = 4;
    return std::max<std::int64_t>(1, fSettings.ticksPerQuarter * kQuartersPerWhole / fSettings.noteLength);
}

double TimecodeFormat::TicksPerSecond() const {
    return fSettings.beatsPerMinute / static_cast<double>(kSecondsPerMinute) * static_cast<double>(TicksPerBeat());
}

double TimecodeFormat::Resolution() const {
    if (IsFrames()) return 1 / FramesPerSecond();
    if (fSettings.format == TimecodeSettings::kSamples) return 1 / fSettings.sampleRate;
    if (fSettings.format == TimecodeSettings::kBarsAndBeats) return 1 / TicksPerSecond();
    return 1.0 / static_cast<double>(kMillisecondsPerSecond);
}

double TimecodeFormat::Increment() const {
    return fSettings.format == TimecodeSettings::kDecimal ? kDecimalIncrement : Resolution();
}

string16 TimecodeFormat::Format(double seconds) const {
    if (std::isnan(seconds)) return string16(1, kEmDash);
    const double held = std::clamp(seconds, -kMostSeconds, kMostSeconds);
    if (fSettings.format == TimecodeSettings::kBarsAndBeats && !fSettings.isDuration) {
        const double sinceFirstBeat = held - fSettings.beatOffsetMs / static_cast<double>(kMillisecondsPerSecond);
        return FormatBars(std::llround(sinceFirstBeat * TicksPerSecond()));
    }
    double rate = 1 / Resolution();
    if (IsFrames()) rate = FramesPerSecond();
    if (fSettings.format == TimecodeSettings::kSamples) rate = fSettings.sampleRate;
    const std::int64_t units = std::llround(std::abs(held) * rate);
    string16 text;
    if (held < 0 && units > 0) text += kMinus;
    if (IsFrames()) return text + FormatFrames(units);
    if (fSettings.format == TimecodeSettings::kSamples) return text + Padded(units, 1);
    if (fSettings.format == TimecodeSettings::kBarsAndBeats) return text + FormatBars(units);
    return text + FormatDecimal(units);
}

string16 TimecodeFormat::FormatDecimal(std::int64_t milliseconds) const {
    const std::int64_t seconds = milliseconds / kMillisecondsPerSecond;
    const std::int64_t minutes = seconds / kSecondsPerMinute;
    const std::int64_t hours = minutes / kMinutesPerHour;
    string16 text;
    if (hours > 0) text = Padded(hours, 1) + u":";
    text += Padded(minutes % kMinutesPerHour, hours > 0 ? 2 : 1) + u":" + Padded(seconds % kSecondsPerMinute, 2);
    return text + u"." + Padded(milliseconds % kMillisecondsPerSecond, 3);
}

string16 TimecodeFormat::FormatFrames(std::int64_t frames) const {
    const std::int64_t onClock = FramesOnClock();
    if (IsDropFrame()) {
        // Puts the numbers back that are left out, so that the count runs as on the clock.
        const std::int64_t perMinute = onClock * kSecondsPerMinute - kDropped;
        const std::int64_t perTenMinutes = perMinute * kDropMinutes + kDropped;
        const auto [tens, rest] = Divide(frames, perTenMinutes);
        const std::int64_t minutes = rest < kDropped ? 0 : (rest - kDropped) / perMinute;
        frames += kDropped * ((kDropMinutes - 1) * tens + minutes);
    }
    const std::int64_t seconds = frames / onClock;
    const std::int64_t minutes = seconds / kSecondsPerMinute;
    const std::size_t digits = std::max<std::size_t>(2, std::to_string(onClock - 1).size());
    string16 text = Padded(minutes / kMinutesPerHour, 2) + u":" + Padded(minutes % kMinutesPerHour, 2) + u":";
    text += Padded(seconds % kSecondsPerMinute, 2);
    return text + (IsDropFrame() ? u";" : u":") + Padded(frames % onClock, digits);
}

string16 TimecodeFormat::FormatBars(std::int64_t ticks) const {
    const std::int64_t perBeat = TicksPerBeat();
    const auto [beats, tick] = Divide(ticks, perBeat);
    const auto [bars, beat] = Divide(beats, fSettings.beatsPerBar);
    const std::int64_t first = fSettings.isDuration ? 0 : 1;
    string16 text = bars + first < 0 ? string16(1, kMinus) : string16();
    text += Padded(std::abs(bars + first), 1) + u":" + Padded(beat + first, 1);
    return text + u"." + Padded(tick, std::to_string(perBeat - 1).size());
}

std::optional<double> TimecodeFormat::Parse(std::u16string_view text) const {
    text = Trimmed(text);
    const bool isNegative = !text.empty() && (text.front() == kMinus || text.front() == kMathMinus);
    const bool hasSign = isNegative || (!text.empty() && text.front() == u'+');
    if (hasSign) text.remove_prefix(1);
    std::optional<double> seconds;
    const bool isPlaceInBars = fSettings.format == TimecodeSettings::kBarsAndBeats && !fSettings.isDuration;
    if (fSettings.format == TimecodeSettings::kBarsAndBeats) {
        seconds = ParseBars(text, isNegative);
    } else if (fSettings.format == TimecodeSettings::kSamples) {
        seconds = ParseSamples(text);
    } else {
        seconds = IsFrames() ? ParseFrames(text) : ParseDecimal(text);
    }
    // The minus of a place in bars is that of the bar's number.
    if (seconds && isNegative && !isPlaceInBars) seconds = -*seconds;
    if (!seconds || !(std::abs(*seconds) <= kMostSeconds)) return {};
    return *seconds + 0.0; // no negative zero
}

std::optional<double> TimecodeFormat::ParseDecimal(std::u16string_view text) const {
    const std::size_t point = text.find_last_of(u".,");
    const std::size_t colon = text.find_last_of(u":;");
    double fraction = 0;
    if (point != std::u16string_view::npos && (colon == std::u16string_view::npos || colon < point)) {
        const std::u16string_view digits = text.substr(point + 1);
        const std::optional<std::int64_t> number = WholeNumber(digits);
        if (!number && !(digits.empty() && point > 0)) return {};
        fraction = static_cast<double>(number.value_or(0)) / std::pow(10.0, static_cast<double>(digits.size()));
        text = text.substr(0, point);
        if (text.empty()) return fraction;
    }
    const Fields<3> fields(text, u":;");
    if (fields.count == 0) return {};
    if (!fields.Holds(0, kSecondsPerMinute) || !fields.Holds(1, kMinutesPerHour)) return {};
    const std::int64_t minutes = fields.FromEnd(2) * kMinutesPerHour + fields.FromEnd(1);
    return static_cast<double>(minutes) * static_cast<double>(kSecondsPerMinute) +
           static_cast<double>(fields.FromEnd(0)) + fraction;
}

std::optional<double> TimecodeFormat::ParseFrames(std::u16string_view text) const {
    const std::int64_t onClock = FramesOnClock();
    const Fields<4> fields(text, u":;.,");
    const bool isInPlace =
        fields.Holds(0, onClock) && fields.Holds(1, kSecondsPerMinute) && fields.Holds(2, kMinutesPerHour);
    if (fields.count == 0 || !isInPlace) return {};
    // A lone number counts frames, whatever their names.
    if (fields.count == 1) return static_cast<double>(fields.FromEnd(0)) / FramesPerSecond();
    const std::int64_t seconds = fields.FromEnd(1);
    std::int64_t frame = fields.FromEnd(0);
    const std::int64_t minutes = fields.FromEnd(3) * kMinutesPerHour + fields.FromEnd(2) + seconds / kSecondsPerMinute;
    if (std::abs(static_cast<double>(minutes)) > kMostSeconds) return {};
    std::int64_t frames = (minutes * kSecondsPerMinute + seconds % kSecondsPerMinute) * onClock;
    if (IsDropFrame()) {
        const bool isLeftOut = seconds % kSecondsPerMinute == 0 && frame < kDropped && minutes % kDropMinutes != 0;
        if (isLeftOut) frame = kDropped;
        frames -= kDropped * (minutes - minutes / kDropMinutes);
    }
    return static_cast<double>(frames + frame) / FramesPerSecond();
}

std::optional<double> TimecodeFormat::ParseSamples(std::u16string_view text) const {
    const std::optional<std::int64_t> samples = WholeNumber(text);
    if (!samples) return {};
    return static_cast<double>(*samples) / fSettings.sampleRate;
}

std::optional<double> TimecodeFormat::ParseBars(std::u16string_view text, bool isNegative) const {
    const Fields<3> fields(text, u":;.,");
    if (fields.count == 0) return {};
    const std::int64_t first = fSettings.isDuration ? 0 : 1;
    const std::int64_t beat = fields.count > 1 ? fields.numbers[1] - first : 0;
    const std::int64_t tick = fields.numbers[2];
    if (beat < 0 || beat >= fSettings.beatsPerBar || tick >= TicksPerBeat()) return {};
    const bool isNegativeBar = isNegative && !fSettings.isDuration;
    const auto bar = static_cast<double>((isNegativeBar ? -fields.numbers[0] : fields.numbers[0]) - first);
    const double beats = bar * fSettings.beatsPerBar + static_cast<double>(beat);
    const double ticks = beats * static_cast<double>(TicksPerBeat()) + static_cast<double>(tick);
    const double offset = fSettings.isDuration ? 0 : fSettings.beatOffsetMs / kMillisecondsPerSecond;
    return ticks / TicksPerSecond() + offset;
}

} // namespace uit
