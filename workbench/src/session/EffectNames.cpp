#include "workbench/session/EffectNames.h"

#include "host/LinkedParameters.h"
#include "krocore/config/Error.h"
#include "workbench/commands/Messages.h"
#include "workbench/commands/NearestName.h"

#include <fmt/format.h>

#include <vector>

namespace workbench {

using krocore::config::Error;
using qoc::components::EffectDescription;

namespace {

// The identifier constants of some effects say "Component" twice.
constexpr std::string_view kOptionalSuffix = "component";

const EffectDescription* Find(std::string_view name) {
    if (const EffectDescription* const effect = qoc::components::FindEffectByShortName(name)) return effect;
    if (name.size() <= kOptionalSuffix.size()) return nullptr;
    const std::size_t stem = name.size() - kOptionalSuffix.size();
    if (!krocore::EqualsIgnoringCase(name.substr(stem), kOptionalSuffix)) return nullptr;
    return qoc::components::FindEffectByShortName(name.substr(0, stem));
}

std::vector<std::string> AllNames() {
    std::vector<std::string> names;
    for (const EffectDescription& effect : qoc::components::AllEffects())
        names.emplace_back(effect.shortName);
    return names;
}

} // namespace

const EffectDescription& EffectFromName(std::string_view name) {
    if (const EffectDescription* const effect = Find(name)) return *effect;
    const std::string nearest = NearestName(name, AllNames());
    const std::string advice = nearest.empty() ? "" : fmt::format(R"(did you mean "{}"? )", nearest);
    throw Error(fmt::format(R"(there is no effect "{}"; {}"workbench list" names them all)", name, advice));
}

boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> NewFilter(const EffectDescription& effect) {
    if (effect.create == nullptr)
        throw Error(fmt::format(R"(the effect "{}" can't process sound in this version)", effect.shortName));
    return effect.create();
}

void ApplySettings(kroaudiofilterhost::AudioFilter& filter, std::span<const std::string> settings) {
    std::vector<qohost::ParameterSetting> values;
    for (const std::string& text : settings) {
        const auto parsed = qohost::ParseParameterText(filter, text);
        values.insert(values.end(), parsed.begin(), parsed.end());
    }
    for (const std::string& note : qohost::CompleteLinkedSettings(filter, values))
        TellNote(note);
    for (const qohost::ParameterSetting& setting : values)
        filter.SetParameterValue(setting.index, setting.value);
}

} // namespace workbench
