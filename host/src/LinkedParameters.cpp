#include "host/LinkedParameters.h"

#include "krocore/Localizer.h"
#include "krocore/config/Error.h"

#include <algorithm>
#include <map>
#include <optional>

namespace qohost {

namespace {

using kroaudiofilterhost::AudioFilter;

constexpr float kOnFrom = 0.5F; // of a stored switch

std::optional<int> FindID(const AudioFilter& filter, const std::string& id) {
    for (int index = 0; index < filter.GetParameterCount(); ++index) {
        const auto* const info = filter.GetParameterInfo(index);
        if (info != nullptr && info->GetID() == id) return index;
    }
    return std::nullopt;
}

// What the settings give a parameter in the end.
std::optional<float> SettingOf(const std::vector<ParameterSetting>& settings, int index) {
    const auto last = std::find_if(settings.rbegin(), settings.rend(),
                                   [index](const ParameterSetting& setting) { return setting.index == index; });
    return last != settings.rend() ? std::optional(last->value) : std::nullopt;
}

std::string Sentence(const char* key, const AudioFilter& filter, int first, int second, int linkSwitch) {
    const auto id = [&filter](int index) { return krocore::ToUTF16(filter.GetParameterInfo(index)->GetID()); };
    return krocore::ToStdString(
        krocore::ReplacePlaceholders(krocore::Localize(key), {id(first), id(second), id(linkSwitch)}));
}

} // namespace

std::vector<LinkedParameters> FindLinkedParameters(const AudioFilter& filter) {
    std::map<std::string, std::vector<int>> members;
    for (int index = 0; index < filter.GetParameterCount(); ++index) {
        const auto* const info = filter.GetParameterInfo(index);
        if (info != nullptr && !info->IsReadOnly() && !info->GetLinkID().empty())
            members[info->GetLinkID()].push_back(index);
    }
    std::vector<LinkedParameters> groups;
    for (auto& [id, indices] : members) {
        const auto linkSwitch = FindID(filter, id);
        if (linkSwitch && indices.size() > 1) groups.push_back({*linkSwitch, std::move(indices)});
    }
    return groups;
}

std::vector<std::string> CompleteLinkedSettings(const AudioFilter& filter, std::vector<ParameterSetting>& settings) {
    std::vector<ParameterSetting> added;
    std::vector<std::string> notes;
    for (const LinkedParameters& group : FindLinkedParameters(filter)) {
        const std::optional<float> asked = SettingOf(settings, group.linkSwitch);
        if (asked.value_or(filter.GetParameterValue(group.linkSwitch)) < kOnFrom) continue;
        std::vector<int> set;
        std::ranges::copy_if(group.members, std::back_inserter(set),
                             [&](int index) { return SettingOf(settings, index).has_value(); });
        if (set.empty()) continue;
        const float value = *SettingOf(settings, set.front());
        const auto other = std::ranges::find_if(set, [&](int index) { return *SettingOf(settings, index) != value; });
        if (other == set.end()) {
            for (const int index : group.members)
                added.push_back({index, value});
        } else if (!asked) {
            added.push_back({group.linkSwitch, 0});
            notes.push_back(Sentence("$$$/qohost/LinkedParameters/Unlinked=\"@0\" and \"@1\" are to differ, so \"@2\" "
                                     "was switched off.",
                                     filter, set.front(), *other, group.linkSwitch));
        } else {
            throw krocore::config::Error(Sentence("$$$/qohost/LinkedParameters/Contradiction=\"@0\" and \"@1\" can't "
                                                  "differ while \"@2\" is on; set \"@2\" to off, or one value for all.",
                                                  filter, set.front(), *other, group.linkSwitch));
        }
    }
    settings.insert(settings.end(), added.begin(), added.end());
    return notes;
}

} // namespace qohost
