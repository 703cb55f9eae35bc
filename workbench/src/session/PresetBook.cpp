#include "workbench/session/PresetBook.h"

#include "host/FactoryPresets.h"
#include "krocore/Localizer.h"
#include "krocore/config/Error.h"

#include <algorithm>

namespace workbench {

namespace {

constexpr const char* kDefault = "Default";

} // namespace

PresetBook::PresetBook(const qoc::components::EffectDescription& effect, FilterPtr filter, qohost::UserPresets presets)
    : fEffect(effect), fFilter(std::move(filter)), fUserPresets(std::move(presets)),
      fFactoryPresets(qohost::FactoryPresets(effect)) {
    if (fFactoryPresets.empty())
        fFactoryPresets.push_back({kDefault, krocore::ToStdString(fFilter->GetComponentID()), {}});
    Refresh();
    Take(fEntries.front());
}

void PresetBook::Refresh() {
    fEntries.clear();
    for (const qohost::Preset& preset : fFactoryPresets)
        fEntries.push_back({preset.name, false});
    for (std::string& name : fUserPresets.Names(fEffect.shortName))
        fEntries.push_back({std::move(name), true});
}

const PresetBook::Taken& PresetBook::Find() const {
    const auto isSame = [this](const Taken& taken) { return qohost::HasSettingsOf(*fFilter, taken.settings); };
    const auto same = std::find_if(fTaken.rbegin(), fTaken.rend(), isSame);
    return same != fTaken.rend() ? *same : fTaken.back();
}

bool PresetBook::IsChanged() const {
    return !qohost::HasSettingsOf(*fFilter, Find().settings);
}

qohost::Preset PresetBook::Read(const Entry& entry) const {
    if (entry.isUsers) return fUserPresets.Read(fEffect.shortName, entry.name);
    return *std::ranges::find(fFactoryPresets, entry.name, &qohost::Preset::name);
}

void PresetBook::Take(const Entry& entry) {
    std::erase_if(fTaken, [&entry](const Taken& taken) { return taken.entry == entry; });
    fTaken.push_back({entry, qohost::CapturePresetForAnyRate(*fFilter, entry.name)});
}

void PresetBook::Save(const Entry& entry) {
    Write(entry.name);
}

void PresetBook::SaveAs(const std::string& name) {
    const auto isTaken = [&name](const Entry& entry) { return krocore::EqualsIgnoringCase(entry.name, name); };
    if (std::ranges::any_of(fEntries, isTaken) || fUserPresets.Has(fEffect.shortName, name)) {
        throw krocore::config::Error(krocore::ToStdString(krocore::ReplacePlaceholders(
            krocore::Localize("$$$/Workbench/PresetIsThere=There is a preset \"@0\" already."),
            {krocore::ToUTF16(name)})));
    }
    Write(name);
}

void PresetBook::Write(const std::string& name) {
    fUserPresets.Write(fEffect.shortName, qohost::CapturePresetForAnyRate(*fFilter, name));
    Refresh();
    Take({name, true});
}

void PresetBook::Delete(const Entry& entry) {
    fUserPresets.Remove(fEffect.shortName, entry.name);
    std::erase_if(fTaken, [&entry](const Taken& taken) { return taken.entry == entry; });
    Refresh();
}

} // namespace workbench
