#include "host/ParameterText.h"

#include "krocore/Localizer.h"
#include "krocore/NumberFormat.h"
#include "krocore/config/Error.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace qohost {

namespace {

using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterParameterInfo;

constexpr std::string_view kNormalisedPrefix = "n:";

[[noreturn]] void Refuse(const char* key, std::string_view about, std::u16string_view instead = {}) {
    const krocore::string16 text =
        krocore::ReplacePlaceholders(krocore::Localize(key), {krocore::ToUTF16(about), instead});
    throw krocore::config::Error(krocore::ToStdString(text));
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// What is left of a name when case, spaces and punctuation don't count. Bytes of letters beyond ASCII stay.
std::string Reduced(std::string_view name) {
    std::string reduced;
    for (const char c : name) {
        const bool isUpper = c >= 'A' && c <= 'Z';
        const bool counts = isUpper || (c >= 'a' && c <= 'z') || IsDigit(c) || static_cast<unsigned char>(c) >= 0x80;
        if (counts) reduced += isUpper ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return reduced;
}

std::optional<int> AsIndex(std::string_view text) {
    int index = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), index);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return index;
}

// Whether `id` is `family` and a number.
bool IsOfFamily(const std::string& id, const std::string& family) {
    return id.size() > family.size() && id.starts_with(family) &&
           std::all_of(id.begin() + static_cast<std::ptrdiff_t>(family.size()), id.end(), IsDigit);
}

template <typename Predicate>
std::vector<int> IndicesWhere(const AudioFilter& filter, const Predicate& predicate) {
    std::vector<int> indices;
    for (int index = 0; index < filter.GetParameterCount(); ++index) {
        const AudioFilterParameterInfo* info = filter.GetParameterInfo(index);
        if (info != nullptr && predicate(*info)) indices.push_back(index);
    }
    return indices;
}

krocore::string16 AllIDs(const AudioFilter& filter) {
    std::string ids;
    for (const int index : IndicesWhere(filter, [](const auto& info) { return !info.IsReadOnly(); })) {
        ids += ids.empty() ? "" : ", ";
        ids += filter.GetParameterInfo(index)->GetID();
    }
    return krocore::ToUTF16(ids);
}

std::vector<int> FindParameters(const AudioFilter& filter, std::string_view name) {
    if (const std::optional<int> index = AsIndex(name)) {
        if (filter.GetParameterInfo(*index) != nullptr) return {*index};
    } else if (const std::string reduced = Reduced(name); !reduced.empty()) {
        const auto isID = [&](const auto& info) { return Reduced(info.GetID()) == reduced; };
        const auto isName = [&](const auto& info) { return Reduced(krocore::ToStdString(info.GetName())) == reduced; };
        const auto isMember = [&](const auto& info) { return IsOfFamily(Reduced(info.GetID()), reduced); };
        if (std::vector<int> found = IndicesWhere(filter, isID); !found.empty()) return found;
        if (std::vector<int> found = IndicesWhere(filter, isName); !found.empty()) return found;
        if (std::vector<int> found = IndicesWhere(filter, isMember); !found.empty()) return found;
    }
    Refuse("$$$/qohost/ParameterText/Unknown=There is no parameter \"@0\". There are: @1.", name, AllIDs(filter));
}

krocore::string16 RangeOf(const AudioFilterParameterInfo& info) {
    if (info.GetKind() == AudioFilterParameterInfo::Kind::kNumber) return info.ToText(0) + u" ... " + info.ToText(1);
    if (info.GetKind() == AudioFilterParameterInfo::Kind::kSwitch) return info.ToText(1) + u", " + info.ToText(0);
    krocore::string16 items;
    for (int item = 0; item < info.GetItemCount(); ++item)
        items += (item == 0 ? u"" : u", ") + info.GetItemName(item);
    return items;
}

bool IsInRange(const AudioFilterParameterInfo& info, float normalised) {
    // What is shown as the end of the range counts as the end.
    constexpr float kTolerance = 1e-6F;
    return info.GetKind() != AudioFilterParameterInfo::Kind::kNumber ||
           (normalised >= -kTolerance && normalised <= 1 + kTolerance);
}

float ParseNormalised(std::string_view text) {
    const std::optional<double> number = krocore::ParsePlainNumber(text.substr(kNormalisedPrefix.size()));
    if (!number || !std::isfinite(static_cast<float>(*number))) {
        Refuse("$$$/qohost/ParameterText/Normalised=\"@0\" is no normalised value. Write, for example, n:0.5.", text);
    }
    return static_cast<float>(*number);
}

float ParseValue(const AudioFilterParameterInfo& info, std::string_view text) {
    if (info.IsReadOnly()) {
        Refuse("$$$/qohost/ParameterText/ReadOnly=The parameter \"@0\" can't be set.", info.GetID());
    }
    if (text.starts_with(kNormalisedPrefix)) return ParseNormalised(text);
    const std::optional<float> value = info.FromText(krocore::ToUTF16(text));
    if (!value || !IsInRange(info, *value)) {
        Refuse("$$$/qohost/ParameterText/Value=\"@0\" is not possible here. Possible: @1.",
               info.GetID() + "=" + std::string(text), RangeOf(info));
    }
    return info.GetKind() == AudioFilterParameterInfo::Kind::kNumber ? std::clamp(*value, 0.0F, 1.0F) : *value;
}

} // namespace

std::vector<ParameterSetting> ParseParameterText(const AudioFilter& filter, std::string_view text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos) {
        Refuse("$$$/qohost/ParameterText/Form=\"@0\" is no setting. Write PARAM=VALUE, for example @1.", text,
               krocore::ToUTF16(WriteParameterText(filter, filter.GetParameterCount() - 1)));
    }
    std::vector<ParameterSetting> settings;
    for (const int index : FindParameters(filter, text.substr(0, equals)))
        settings.push_back({index, ParseValue(*filter.GetParameterInfo(index), text.substr(equals + 1))});
    return settings;
}

std::string WriteParameterText(const AudioFilter& filter, int index) {
    const AudioFilterParameterInfo* info = filter.GetParameterInfo(index);
    if (info == nullptr) return {};
    return info->GetID() + "=" + krocore::ToStdString(info->ToText(filter.GetParameterValue(index)));
}

} // namespace qohost
