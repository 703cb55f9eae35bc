#include "host/Preset.h"

#include "host/ByteStream.h"
#include "host/LinkedParameters.h"
#include "krocore/Localizer.h"
#include "krocore/config/Error.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <set>
#include <utility>

namespace qohost {

namespace {

using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterParameterInfo;
using kroaudiofilterhost::AudioFilterParameterValue;
using krocore::config::Error;
using Kind = AudioFilterParameterInfo::Kind;
using PresetValues = std::map<std::string, Preset::Value, std::less<>>;

// Floats, so that they are written as briefly as gives the same float again.
using Json = nlohmann::basic_json<std::map, std::vector, std::string, bool, std::int64_t, std::uint64_t, float>;

constexpr const char* kNaturalMember = "natural";
constexpr const char* kNormalisedMember = "values";
constexpr const char* kCurvesMember = "curves";
constexpr const char* kVersionMember = "version";
constexpr int kVersion = 1;
constexpr int kIndent = 2;
constexpr std::u16string_view kHertz = u"Hz";

constexpr std::size_t kLargestFile = 16U << 20U; // bytes; thousands of times what any effect needs
constexpr int kDeepest = 16;                     // levels of JSON; a preset has two, a collection four
constexpr std::size_t kLongestQuote = 80;        // bytes of what a message repeats
constexpr std::size_t kMostNotes = 20;

// A message stays readable, whatever the file holds.
std::string Quoted(std::string_view text) {
    if (text.size() <= kLongestQuote) return std::string(text);
    std::size_t end = kLongestQuote;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80) // inside a letter
        --end;
    return std::string(text.substr(0, end)) + "...";
}

std::string Text(const char* key, std::string_view about, std::string_view instead = {}) {
    return krocore::ToStdString(krocore::ReplacePlaceholders(
        krocore::Localize(key), {krocore::ToUTF16(Quoted(about)), krocore::ToUTF16(Quoted(instead))}));
}

[[noreturn]] void Refuse(const char* key, std::string_view about = {}, std::string_view instead = {}) {
    throw Error(Text(key, about, instead));
}

// Without the "[json.exception.parse_error.101] " in front.
std::string ReasonOf(const Json::exception& error) {
    const std::string reason = error.what();
    const std::size_t end = reason.find("] ");
    return end == std::string::npos ? reason : reason.substr(end + 2);
}

// Watches a text while it is parsed: what is nested too deeply, or says something twice, is no preset.
class ParsingGuard {
public:
    bool operator()(int depth, Json::parse_event_t event, const Json& parsed) {
        using Event = Json::parse_event_t;
        if (depth > kDeepest) Refuse("$$$/qohost/Preset/TooDeep=This is no preset: it is nested too deeply.");
        if (event == Event::object_start) fMembers.emplace_back();
        if (event == Event::object_end) fMembers.pop_back();
        if (event == Event::key && !fMembers.back().insert(parsed.get<std::string>()).second)
            Refuse("$$$/qohost/Preset/MemberTwice=This is no preset: it says twice what \"@0\" is.",
                   parsed.get<std::string>());
        return true;
    }

private:
    std::vector<std::set<std::string>> fMembers; // of the objects that are open
};

Json ParseObject(std::string_view text) {
    try {
        ParsingGuard guard;
        Json json = Json::parse(text.begin(), text.end(), std::ref(guard));
        if (json.is_object()) return json;
    } catch (const Json::exception& error) {
        Refuse("$$$/qohost/Preset/NoJSON=This is no preset: @0.", ReasonOf(error));
    }
    Refuse("$$$/qohost/Preset/NoObject=This is no preset: a JSON object is wanted.");
}

std::string ReadString(const Json& object, const char* member) {
    const auto found = object.find(member);
    if (found == object.end() || !found->is_string())
        Refuse("$$$/qohost/Preset/NoText=This is no preset: it has no text \"@0\".", member);
    return found->get<std::string>();
}

float ReadNumber(const std::string& id, const Json& json, bool isNatural) {
    if (isNatural && json.is_boolean()) return json.get<bool>() ? 1.0F : 0.0F;
    const float number = json.is_number() ? json.get<float>() : NAN;
    if (!std::isfinite(number))
        Refuse("$$$/qohost/Preset/NoNumber=The preset's value of \"@0\" is no finite number: @1.", id, json.dump());
    return number;
}

void ReadValues(const Json& object, bool isNatural, Preset& preset) {
    const char* const member = isNatural ? kNaturalMember : kNormalisedMember;
    const auto found = object.find(member);
    if (found == object.end()) return;
    if (!found->is_object()) Refuse("$$$/qohost/Preset/NoValues=This is no preset: \"@0\" is no object.", member);
    for (const auto& [id, value] : found->items()) {
        const bool isNew =
            preset.values.try_emplace(id, Preset::Value{ReadNumber(id, value, isNatural), isNatural}).second;
        if (!isNew) Refuse("$$$/qohost/Preset/Twice=The preset has two values of \"@0\".", id);
    }
}

kroaudiofilterhost::AudioFilterCurvePoints ReadCurve(const std::string& id, const Json& list) {
    const auto isPair = [](const Json& pair) { return pair.is_array() && pair.size() == 2; };
    if (!list.is_array() || !std::ranges::all_of(list, isPair))
        Refuse("$$$/qohost/Preset/NoCurve=This is no preset: its curve \"@0\" is no list of pairs of numbers.", id);
    kroaudiofilterhost::AudioFilterCurvePoints points;
    for (const Json& pair : list)
        points.push_back({ReadNumber(id, pair[0], false), ReadNumber(id, pair[1], false)});
    return points;
}

void ReadCurves(const Json& object, Preset& preset) {
    const auto found = object.find(kCurvesMember);
    if (found == object.end()) return;
    if (!found->is_object())
        Refuse("$$$/qohost/Preset/NoValues=This is no preset: \"@0\" is no object.", kCurvesMember);
    for (const auto& [id, list] : found->items())
        preset.curves[id] = ReadCurve(id, list);
}

void CheckVersion(const Json& object) {
    const auto found = object.find(kVersionMember);
    if (found == object.end() || (found->is_number() && found->get<float>() <= kVersion)) return;
    Refuse("$$$/qohost/Preset/Newer=The preset was made by a later program: its format is of version @0.",
           found->dump());
}

Preset ReadPreset(const Json& object, std::string effect) {
    if (!object.is_object()) Refuse("$$$/qohost/Preset/NoObject=This is no preset: a JSON object is wanted.");
    CheckVersion(object);
    Preset preset{.name = ReadString(object, "name"), .effect = std::move(effect), .values = {}};
    ReadValues(object, false, preset);
    ReadValues(object, true, preset);
    ReadCurves(object, preset);
    return preset;
}

bool CanHave(const AudioFilterParameterInfo& info, float natural) {
    if (info.GetKind() == Kind::kSwitch) return natural == 0 || natural == 1;
    if (info.GetKind() == Kind::kChoice)
        return natural >= 0 && natural < static_cast<float>(info.GetItemCount()) && std::trunc(natural) == natural;
    return true;
}

void Check(const AudioFilterParameterInfo& info, const Preset::Value& value) {
    if (std::isfinite(value.number) && (!value.isNatural || CanHave(info, value.number))) return;
    Refuse("$$$/qohost/Preset/Impossible=The preset's value of \"@0\" is not possible: @1.", info.GetID(),
           Json(value.number).dump());
}

float Normalised(const AudioFilterParameterInfo& info, const Preset::Value& value) {
    if (!value.isNatural || info.GetKind() == Kind::kSwitch) return value.number;
    if (info.GetKind() == Kind::kChoice) return info.FromItem(static_cast<int>(value.number));
    return info.ToNormalised(value.number);
}

struct Settings {
    std::vector<AudioFilterParameterValue> values;
    bool needsStoppedEngine = false;
    std::vector<std::string> notes;
};

void AddSetting(const AudioFilter& filter, int index, float value, Settings& settings) {
    const AudioFilterParameterInfo& info = *filter.GetParameterInfo(index);
    if (value == filter.GetParameterValue(index)) return;
    settings.needsStoppedEngine = settings.needsStoppedEngine || !info.IsAutomatable();
    if (info.IsAutomatable() || filter.CanChangeNonAutomatableParameters())
        settings.values.push_back({index, value});
    else
        settings.notes.push_back(
            Text("$$$/qohost/Preset/Running=\"@0\" stays as it is while the sound plays.", info.GetID()));
}

// A natural value that is too far goes to the end of the range: how far frequencies go depends on the sample rate.
void AddNamed(const AudioFilter& filter, int index, const Preset::Value& value, Settings& settings) {
    const AudioFilterParameterInfo& info = *filter.GetParameterInfo(index);
    Check(info, value);
    float normalised = Normalised(info, value);
    if (value.isNatural && info.GetKind() == Kind::kNumber) {
        constexpr float kTolerance = 1e-6F; // what the conversion of an end may miss it by
        const float bounded = std::clamp(normalised, 0.0F, 1.0F);
        if (std::abs(bounded - normalised) > kTolerance) {
            settings.notes.push_back(Text("$$$/qohost/Preset/Bounded=\"@0\" goes no further than @1.", info.GetID(),
                                          krocore::ToStdString(info.ToText(bounded))));
        }
        normalised = bounded;
    }
    AddSetting(filter, index, normalised, settings);
}

// With those of the curves' parameters. What it doesn't know of curves is added to the values too, under their names.
PresetValues WithCurves(const AudioFilter& filter, const Preset& preset) {
    PresetValues values = preset.values;
    auto curves = preset.curves;
    const auto set = [&](int index, float natural) {
        values.insert_or_assign(filter.GetParameterInfo(index)->GetID(), Preset::Value{natural, true});
    };
    for (const kroaudiofilterhost::AudioFilterCurve& curve : filter.GetCurves()) {
        const auto named = curves.extract(curve.id);
        if (named.empty()) continue;
        const auto count = static_cast<int>(std::min<std::size_t>(named.mapped().size(), kLargestFile));
        if (count > curve.mostPoints)
            Refuse("$$$/qohost/Preset/TooManyPoints=The preset's curve \"@0\" has more than @1 points.", curve.id,
                   std::to_string(curve.mostPoints));
        set(curve.countIndex, static_cast<float>(count));
        for (int point = 0; point < count; ++point) {
            set(curve.IndexOfX(point), named.mapped()[static_cast<std::size_t>(point)].x);
            set(curve.IndexOfY(point), named.mapped()[static_cast<std::size_t>(point)].y);
        }
    }
    for (const auto& [id, points] : curves)
        values.emplace(id, Preset::Value{});
    return values;
}

// The first of them by name, and how many there are besides.
void AddUnknown(const std::map<std::string, Preset::Value, std::less<>>& unknown, std::vector<std::string>& notes) {
    std::size_t told = 0;
    for (auto entry = unknown.begin(); entry != unknown.end() && told < kMostNotes; ++entry, ++told)
        notes.push_back(Text("$$$/qohost/Preset/Unknown=There is nothing to set that is called \"@0\".", entry->first));
    if (told < unknown.size())
        notes.push_back(Text("$$$/qohost/Preset/MoreUnknown=Nor is there for @0 more names.",
                             std::to_string(unknown.size() - told)));
}

bool IsOn(const AudioFilterParameterInfo& info, const PresetValues& values) {
    constexpr float kOnFrom = 0.5F;
    const auto found = values.find(info.GetID());
    return (found != values.end() ? Normalised(info, found->second) : info.GetDefault()) >= kOnFrom;
}

// What is one value for all linked parameters that a preset names holds for the others too: there may be more channels
// than it was made for.
PresetValues WithLinkedValues(const AudioFilter& filter, PresetValues values) {
    for (const LinkedParameters& group : FindLinkedParameters(filter)) {
        if (!IsOn(*filter.GetParameterInfo(group.linkSwitch), values)) continue;
        std::vector<Preset::Value> named;
        for (const int member : group.members)
            if (const auto found = values.find(filter.GetParameterInfo(member)->GetID()); found != values.end())
                named.push_back(found->second);
        const bool isOne = !named.empty() && std::ranges::all_of(named, [&](const Preset::Value& value) {
            return value.number == named.front().number && value.isNatural == named.front().isNatural;
        });
        for (const int member : group.members)
            if (isOne) values.emplace(filter.GetParameterInfo(member)->GetID(), named.front());
    }
    return values;
}

Settings Resolve(const AudioFilter& filter, const Preset& preset) {
    if (const std::string effect = krocore::ToStdString(filter.GetComponentID()); effect != preset.effect)
        Refuse("$$$/qohost/Preset/OtherEffect=The preset is for \"@0\", not for \"@1\".", preset.effect, effect);
    Settings settings;
    auto left = WithLinkedValues(filter, WithCurves(filter, preset));
    for (int index = 0; index < filter.GetParameterCount(); ++index) {
        const AudioFilterParameterInfo* const info = filter.GetParameterInfo(index);
        if (info == nullptr || info->IsReadOnly()) continue;
        const auto named = left.extract(info->GetID());
        if (named.empty())
            AddSetting(filter, index, info->GetDefault(), settings);
        else
            AddNamed(filter, index, named.mapped(), settings);
    }
    AddUnknown(left, settings.notes);
    return settings;
}

} // namespace

Preset ParsePreset(std::string_view json) {
    const Json object = ParseObject(json);
    return ReadPreset(object, ReadString(object, "effect"));
}

std::string WritePreset(const Preset& preset) {
    Json object{{kVersionMember, kVersion}, {"name", preset.name}, {"effect", preset.effect}};
    for (const auto& [id, value] : preset.values)
        object[value.isNatural ? kNaturalMember : kNormalisedMember][id] = value.number;
    for (const auto& [id, points] : preset.curves) {
        Json& list = object[kCurvesMember][id] = Json::array();
        for (const kroaudiofilterhost::AudioFilterCurvePoint& point : points)
            list.push_back(Json::array({point.x, point.y}));
    }
    return object.dump(kIndent, ' ', false, Json::error_handler_t::replace) + '\n';
}

Preset ReadPresetFile(const std::filesystem::path& file) {
    const std::string text = ReadBytes(file, kLargestFile);
    try {
        return ParsePreset(text);
    } catch (const Error& error) {
        throw Error(InputName(file) + ": " + error.what());
    }
}

void WritePresetFile(const std::filesystem::path& file, const Preset& preset) {
    WriteBytes(file, WritePreset(preset));
}

std::vector<Preset> ParsePresetCollection(std::string_view json) {
    const Json object = ParseObject(json);
    const std::string effect = ReadString(object, "effect");
    const auto found = object.find("presets");
    if (found == object.end() || !found->is_array())
        Refuse("$$$/qohost/Preset/NoList=These are no presets: there is no list \"presets\".");
    std::vector<Preset> presets;
    for (const Json& element : *found)
        presets.push_back(ReadPreset(element, effect));
    return presets;
}

Preset CapturePreset(const AudioFilter& filter, std::string name) {
    Preset preset{.name = std::move(name), .effect = krocore::ToStdString(filter.GetComponentID()), .values = {}};
    for (int index = 0; index < filter.GetParameterCount(); ++index) {
        const AudioFilterParameterInfo* const info = filter.GetParameterInfo(index);
        if (info == nullptr || info->IsReadOnly()) continue;
        preset.values[info->GetID()] = {.number = filter.GetParameterValue(index), .isNatural = false};
    }
    return preset;
}

Preset CapturePresetForAnyRate(const AudioFilter& filter, std::string name) {
    Preset preset = CapturePreset(filter, std::move(name));
    for (int index = 0; index < filter.GetParameterCount(); ++index) {
        const AudioFilterParameterInfo* const info = filter.GetParameterInfo(index);
        if (info != nullptr && !info->GetCurveID().empty()) preset.values.erase(info->GetID());
        const bool isFrequency = info != nullptr && info->GetKind() == Kind::kNumber && info->GetUnit() == kHertz;
        const auto found = isFrequency ? preset.values.find(info->GetID()) : preset.values.end();
        if (found == preset.values.end()) continue;
        const float natural = info->ToNatural(found->second.number);
        if (std::isfinite(natural)) found->second = {.number = natural, .isNatural = true};
    }
    for (std::size_t curve = 0; curve < filter.GetCurves().size(); ++curve)
        preset.curves[filter.GetCurves()[curve].id] = filter.GetCurve(curve);
    return preset;
}

std::vector<std::string> ApplyPreset(AudioFilter& filter, const Preset& preset) {
    Settings settings = Resolve(filter, preset);
    filter.SetParameterValues(settings.values);
    return std::move(settings.notes);
}

bool NeedsStoppedEngine(const AudioFilter& filter, const Preset& preset) {
    return Resolve(filter, preset).needsStoppedEngine;
}

bool HasSettingsOf(const AudioFilter& filter, const Preset& preset) {
    constexpr float kTolerance = 1e-6F;
    const PresetValues values = WithCurves(filter, preset);
    for (int index = 0; index < filter.GetParameterCount(); ++index) {
        const AudioFilterParameterInfo* const info = filter.GetParameterInfo(index);
        const auto found = info != nullptr ? values.find(info->GetID()) : values.end();
        if (found == values.end()) continue;
        const float wanted = Normalised(*info, found->second);
        const float bounded = found->second.isNatural ? std::clamp(wanted, 0.0F, 1.0F) : wanted;
        if (std::abs(bounded - filter.GetParameterValue(index)) > kTolerance) return false;
    }
    return true;
}

std::string SaveState(const AudioFilter& filter) {
    return WritePreset(CapturePresetForAnyRate(filter, {}));
}

std::vector<std::string> LoadState(AudioFilter& filter, std::string_view state) {
    return ApplyPreset(filter, ParsePreset(state));
}

} // namespace qohost
