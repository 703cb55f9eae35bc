#include "TimecodeSettingsValue.h"

#include "uit/lio/AttributeValues.h"

namespace uit::lio {

using orrin::any_regular_t;

namespace {

constexpr int kGreatest = 1'000'000; // whole number that a host would say

} // namespace

TimecodeSettings TimecodeSettingsOf(const any_regular_t& value, bool isDuration) {
    TimecodeSettings settings;
    settings.isDuration = isDuration;
    if (value.empty()) return settings;
    const auto& dictionary = value.get<orrin::dictionary_t>();
    const auto number = [&](std::string_view key, double& target) {
        ReadEntry(dictionary, key, [&](const any_regular_t& entry) { target = FiniteNumberOf(entry); });
    };
    const auto whole = [&](std::string_view key, std::int32_t& target) {
        ReadEntry(dictionary, key,
                  [&](const any_regular_t& entry) { target = WholeNumberWithin(entry, -kGreatest, kGreatest); });
    };
    whole("format", settings.format);
    number("sample_rate", settings.sampleRate);
    number("current_fps", settings.currentFps);
    number("custom_fps", settings.customFps);
    whole("beatinfo_ticks_per_quarter", settings.ticksPerQuarter);
    number("beatinfo_beats_per_minute", settings.beatsPerMinute);
    whole("beatinfo_beats_per_bar", settings.beatsPerBar);
    whole("beatinfo_note_len", settings.noteLength);
    number("beatinfo_beat_offset_ms", settings.beatOffsetMs);
    return settings;
}

} // namespace uit::lio
