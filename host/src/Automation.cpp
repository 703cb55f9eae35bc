#include "host/Automation.h"

#include "host/ByteStream.h"
#include "host/LinkedParameters.h"
#include "host/ParameterText.h"
#include "krocore/Localizer.h"
#include "krocore/config/Error.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

namespace qohost {

namespace {

using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterParameterInfo;
using krocore::config::Error;
using Json = nlohmann::json;

constexpr std::size_t kLargestFile = 64U << 20U; // bytes
constexpr double kLongest = 1e9;                 // seconds

// A point as it is written.
struct Entry {
    std::string place; // "line 3", for messages
    double seconds = 0;
    std::string setting; // "gain=-6 dB"
    bool isLine = false;
};

[[noreturn]] void Refuse(const std::string& place, const char* key, std::string_view about = {}) {
    throw Error(place + ": " +
                krocore::ToStdString(krocore::ReplacePlaceholders(krocore::Localize(key), {krocore::ToUTF16(about)})));
}

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlank = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(kBlank);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(kBlank) + 1 - begin);
}

std::optional<double> NumberIn(std::string_view text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return {};
    return number;
}

double CheckedTime(const std::string& place, std::optional<double> seconds, std::string_view text) {
    if (seconds && *seconds >= 0 && *seconds <= kLongest) return *seconds;
    Refuse(place, "$$$/qohost/Automation/Time=\"@0\" is no time in seconds.", text);
}

bool IsLine(const std::string& place, std::string_view shape) {
    if (shape == "line") return true;
    if (shape.empty() || shape == "step") return false;
    Refuse(place, "$$$/qohost/Automation/Shape=\"@0\" is no shape: there are line and step.", shape);
}

std::vector<std::string_view> FieldsOf(std::string_view line) {
    std::vector<std::string_view> fields;
    while (true) {
        const std::size_t comma = line.find(',');
        fields.push_back(Trimmed(line.substr(0, comma)));
        if (comma == std::string_view::npos) return fields;
        line.remove_prefix(comma + 1);
    }
}

Entry EntryOf(const std::string& place, const std::vector<std::string_view>& fields) {
    constexpr std::size_t kFewest = 3;
    constexpr std::size_t kMost = 4;
    if (fields.size() < kFewest || fields.size() > kMost)
        Refuse(place, "$$$/qohost/Automation/Fields=a line is: time, parameter, value and, if wanted, line or step.");
    return {place, CheckedTime(place, NumberIn(fields[0]), fields[0]),
            std::string(fields[1]) + '=' + std::string(fields[2]), fields.size() == kMost && IsLine(place, fields[3])};
}

std::vector<Entry> EntriesOfLines(std::string_view text) {
    std::vector<Entry> entries;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = text.find('\n');
        const std::string_view line = Trimmed(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.empty() || line.front() == '#') continue;
        const auto fields = FieldsOf(line);
        const bool isHead = entries.empty() && number == 1 && !NumberIn(fields.front());
        if (!isHead) entries.push_back(EntryOf("line " + std::to_string(number), fields));
    }
    return entries;
}

std::string TextOf(const std::string& place, const Json& value) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_boolean()) return value.get<bool>() ? "on" : "off";
    if (value.is_number()) return value.dump();
    Refuse(place, "$$$/qohost/Automation/Value=there is no value.");
}

Entry EntryOf(const std::string& place, const Json& point) {
    const auto member = [&](const char* name) {
        const auto found = point.is_object() ? point.find(name) : point.end();
        return point.is_object() && found != point.end() ? *found : Json();
    };
    const Json time = member("time");
    const Json parameter = member("parameter");
    const Json shape = member("shape");
    if (!parameter.is_string()) Refuse(place, "$$$/qohost/Automation/Parameter=there is no text \"parameter\".");
    return {place, CheckedTime(place, time.is_number() ? std::optional(time.get<double>()) : std::nullopt, time.dump()),
            parameter.get<std::string>() + '=' + TextOf(place, member("value")),
            IsLine(place, shape.is_string() ? shape.get<std::string>()
                          : shape.is_null() ? ""
                                            : shape.dump())};
}

std::vector<Entry> EntriesOfJSON(std::string_view text) {
    std::vector<Entry> entries;
    const Json list = Json::parse(text.begin(), text.end(), nullptr, false);
    if (!list.is_array()) Refuse("JSON", "$$$/qohost/Automation/NoList=this is no list of points.");
    for (const Json& point : list)
        entries.push_back(EntryOf("point " + std::to_string(entries.size() + 1), point));
    return entries;
}

std::vector<ParameterSetting> SettingsOf(const AudioFilter& filter, const Entry& entry) {
    std::vector<ParameterSetting> settings;
    try {
        settings = ParseParameterText(filter, entry.setting);
        CompleteLinkedSettings(filter, settings);
    } catch (const Error& error) {
        throw Error(entry.place + ": " + error.what());
    }
    for (const auto& [index, value] : settings) {
        const AudioFilterParameterInfo& info = *filter.GetParameterInfo(index);
        if (!info.IsAutomatable())
            Refuse(entry.place, "$$$/qohost/Automation/Fixed=\"@0\" can't change while the sound goes on.",
                   info.GetID());
    }
    return settings;
}

// Nothing lies between two items, or between on and off.
bool CanBeLine(const AudioFilter& filter, int index) {
    return filter.GetParameterInfo(index)->GetKind() == AudioFilterParameterInfo::Kind::kNumber;
}

} // namespace

Automation::Automation(const AudioFilter& filter, std::string_view text, double origin) {
    const std::string_view body = Trimmed(text);
    auto entries = body.starts_with('[') || body.starts_with('{') ? EntriesOfJSON(body) : EntriesOfLines(text);
    std::ranges::stable_sort(entries, {}, &Entry::seconds);
    const double rate = filter.GetSampleRate();
    const std::int64_t start = std::llround(-origin * rate);
    for (const Entry& entry : entries) {
        const std::int64_t frame = std::llround((entry.seconds - origin) * rate);
        for (const auto& [index, value] : SettingsOf(filter, entry)) {
            auto track = std::ranges::find(fTracks, index, &Track::index);
            if (track == fTracks.end())
                track = fTracks.insert(fTracks.end(), {index, {{start, filter.GetParameterValue(index), false}}});
            track->points.push_back({frame, value, entry.isLine && CanBeLine(filter, index)});
        }
    }
}

std::uint64_t Automation::NextChange(std::uint64_t frame) const {
    const auto now = static_cast<std::int64_t>(frame);
    const auto step = static_cast<std::int64_t>((frame + kStepFrames - 1) / kStepFrames * kStepFrames);
    std::int64_t next = std::numeric_limits<std::int64_t>::max();
    for (const Track& track : fTracks) {
        const auto ahead = std::find_if(track.points.begin() + static_cast<std::ptrdiff_t>(track.passed),
                                        track.points.end(), [now](const Point& point) { return point.frame >= now; });
        if (ahead == track.points.end()) continue;
        const bool isLine = ahead->isLine && ahead != track.points.begin();
        next = std::min({next, ahead->frame, isLine ? std::max(step, std::prev(ahead)->frame) : ahead->frame});
    }
    return static_cast<std::uint64_t>(next);
}

void Automation::Apply(AudioFilter& filter, std::uint64_t frame) {
    const auto now = static_cast<std::int64_t>(frame);
    for (Track& track : fTracks) {
        while (track.passed + 1 < track.points.size() && track.points[track.passed + 1].frame <= now)
            ++track.passed;
        const Point& from = track.points[track.passed];
        float value = from.value;
        if (track.passed + 1 < track.points.size() && track.points[track.passed + 1].isLine) {
            const Point& to = track.points[track.passed + 1];
            const double part = static_cast<double>(now - from.frame) / static_cast<double>(to.frame - from.frame);
            value += static_cast<float>(part * (to.value - from.value));
        }
        filter.Automate(track.index, value);
    }
}

Automation ReadAutomation(const AudioFilter& filter, const std::filesystem::path& file, double origin) {
    const std::string text = ReadBytes(file, kLargestFile);
    try {
        return {filter, text, origin};
    } catch (const Error& error) {
        throw Error(InputName(file) + ": " + error.what());
    }
}

} // namespace qohost
