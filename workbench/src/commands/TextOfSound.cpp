#include "workbench/commands/TextOfSound.h"

#include "krocore/Localizer.h"
#include "krocore/NumberFormat.h"
#include "krocore/Units.h"

#include <fmt/format.h>

#include <cmath>

namespace workbench {

namespace {

constexpr float kSilence = -100; // dB
constexpr long long kMillisecondsAnHour = 3'600'000;
constexpr long long kMillisecondsAMinute = 60'000;

krocore::string16 LayoutText(const kromediatypes::AudioChannelLayout& layout) {
    using kromediatypes::AudioChannelLayout;
    if (layout.size() == 1) return krocore::Localize("$$$/Workbench/Mono=mono");
    if (layout == AudioChannelLayout::Stereo()) return krocore::Localize("$$$/Workbench/Stereo=stereo");
    if (layout == AudioChannelLayout::Surround51()) return u"5.1";
    if (layout == AudioChannelLayout::Surround71()) return u"7.1";
    return krocore::ReplacePlaceholders(krocore::Localize("$$$/Workbench/Channels=@0 channels"),
                                        {krocore::FormatNumber(static_cast<double>(layout.size()), 0)});
}

} // namespace

krocore::string16 TimeText(double seconds) {
    const long long milliseconds = seconds > 0 ? std::llround(krocore::MillisecondsOfSeconds(seconds)) : 0;
    const long long hours = milliseconds / kMillisecondsAnHour;
    const long long minutes = milliseconds / kMillisecondsAMinute % 60;
    const long long rest = milliseconds % kMillisecondsAMinute;
    const std::string text = hours > 0 ? fmt::format("{}:{:02}:{:02}.{:03}", hours, minutes, rest / 1000, rest % 1000)
                                       : fmt::format("{}:{:02}.{:03}", minutes, rest / 1000, rest % 1000);
    return krocore::ToUTF16(text);
}

std::optional<double> TimeFromText(std::string_view text) {
    constexpr double kSixty = 60;
    double seconds = 0;
    for (int place = 0; place < 3; ++place) {
        const std::size_t colon = text.find(':');
        const auto number = krocore::ParsePlainNumber(text.substr(0, colon));
        const bool isTime = number && *number >= 0 && std::isfinite(*number) && (place == 0 || *number < kSixty);
        if (!isTime) return std::nullopt;
        seconds = seconds * kSixty + *number;
        if (colon == std::string_view::npos) return seconds;
        if (*number != std::trunc(*number)) return std::nullopt;
        text.remove_prefix(colon + 1);
    }
    return std::nullopt;
}

krocore::string16 ClippingText(const qohost::Clipping& clipping) {
    return krocore::ReplacePlaceholders(
        krocore::Localize("$$$/Workbench/Clipped=@0 samples (@1 %) are clipped, the loudest by @2 dB"),
        {krocore::FormatNumber(static_cast<double>(clipping.samples), 0, krocore::kFormatUseSeparator),
         krocore::FormatNumber(krocore::PercentOfFraction(clipping.part), 2),
         krocore::FormatNumber(clipping.decibels, 2)});
}

krocore::string16 RangeText(double begin, double end) {
    return krocore::ReplacePlaceholders(krocore::Localize("$$$/Workbench/Selection=selection @0 - @1"),
                                        {TimeText(begin), TimeText(end)});
}

krocore::string16 SoundText(const qohost::SoundSource& sound) {
    constexpr double kHertzAKilohertz = 1000;
    krocore::string16 text =
        krocore::FormatNumber(sound.SampleRate() / kHertzAKilohertz, 3, krocore::kFormatNoTrailingZeros);
    text += u" kHz ";
    text += LayoutText(sound.Layout());
    text += u' ';
    return text += TimeText(sound.Seconds());
}

krocore::string16 LevelText(float decibels) {
    if (!(decibels > kSilence)) return krocore::FormatNumber(-INFINITY, 0);
    return krocore::FormatNumber(decibels, 1);
}

} // namespace workbench
