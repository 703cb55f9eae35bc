#include "workbench/session/PresetLibrary.h"

#include "host/FactoryPresets.h"
#include "krocore/Localizer.h"
#include "krocore/config/Error.h"

#include <algorithm>

namespace workbench {

namespace {

constexpr const char* kDefault = "Default";

} // namespace

PresetLibrary::PresetLibrary(const qoc::components::EffectDescription& effect, FilterPtr filter,
                             qohost::UserPresets presets)
    : fEffect(effect), fFilter(std::move(filter)), fUserPresets(std::move(presets)),
      fFactoryPresets(qohost::FactoryPresets(effect)) {
    if (fFactoryPresets.empty())
        fFactoryPresets.push_back({kDefault, krocore::ToStdString(fFilter->GetComponentID()), {}});
    Refresh();
    MarkLoaded(fEntries.front());
}

void PresetLibrary::Refresh() {
    fEntries.clear();
    for (const qohost::Preset& preset : fFactoryPresets)
        fEntries.push_back({preset.name, false});
    for (std::string& name : fUserPresets.Names(fEffect.shortName))
        fEntries.push_back({std::move(name), true});
}

const PresetLibrary::Loaded& PresetLibrary::Find() const {
    const auto isSame = [this](const Loaded& loaded) { return qohost::HasSettingsOf(*fFilter, loaded.settings); };
    const auto same = std::find_if(fLoaded.rbegin(), fLoaded.rend(), isSame);
    return same != fLoaded.rend() ? *same : fLoaded.back();
}

bool PresetLibrary::IsChanged() const {
    return !qohost::HasSettingsOf(*fFilter, Find().settings);
}

qohost::Preset PresetLibrary::Read(const Entry& entry) const {
    if (entry.isUsers) return fUserPresets.Read(fEffect.shortName, entry.name);
    return *std::ranges::find(fFactoryPresets, entry.name, &qohost::Preset::name);
}

void PresetLibrary::MarkLoaded(const Entry& entry) {
    std::erase_if(fLoaded, [&entry](const Loaded& loaded) { return loaded.entry == entry; });
    fLoaded.push_back({entry, qohost::CapturePresetForAnyRate(*fFilter, entry.name)});
}

void PresetLibrary::Save(const Entry& entry) {
    Write(entry.name);
}

void PresetLibrary::SaveAs(const std::string& name) {
    const auto isTaken = [&name](const Entry& entry) { return krocore::EqualsIgnoringCase(entry.name, name); };
    if (std::ranges::any_of(fEntries, isTaken) || fUserPresets.Has(fEffect.shortName, name)) {
        throw krocore::config::Error(krocore::ToStdString(krocore::ReplacePlaceholders(
            krocore::Localize("$$$/Workbench/PresetIsThere=There is a preset \"@0\" already."),
            {krocore::ToUTF16(name)})));
    }
    Write(name);
}

void PresetLibrary::Write(const std::string& name) {
    fUserPresets.Write(fEffect.shortName, qohost::CapturePresetForAnyRate(*fFilter, name));
    Refresh();
    MarkLoaded({name, true});
}

void PresetLibrary::Delete(const Entry& entry) {
    fUserPresets.Remove(fEffect.shortName, entry.name);
    std::erase_if(fLoaded, [&entry](const Loaded& loaded) { return loaded.entry == entry; });
    Refresh();
}

} // namespace workbench
