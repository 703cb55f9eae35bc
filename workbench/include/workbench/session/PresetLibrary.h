#pragma once

#include "host/UserPresets.h"
#include "qoc/components/EffectCatalogue.h"

#include <string>
#include <vector>

namespace workbench {

// The presets of one effect in use: those that come with it, the user's own, and which of them the settings are. Knows
// no screen. User-interface thread.
class PresetLibrary {
public:
    using FilterPtr = boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>;
    struct Entry {
        std::string name;
        bool isUsers = false;

        bool operator==(const Entry&) const = default;
    };

    // The settings are those of "Default". The description lives longer.
    PresetLibrary(const qoc::components::EffectDescription& effect, FilterPtr filter, qohost::UserPresets presets);

    // "Default" first, then what else comes with the effect, then the user's.
    const std::vector<Entry>& Entries() const { return fEntries; }
    // Looks at the user's folder again.
    void Refresh();

    // The entry that was loaded or saved last or, if the settings are again just those of one before, that one.
    const Entry& Current() const { return Find().entry; }
    // Whether the settings are others than when it was loaded or saved.
    bool IsChanged() const;

    // The rest throws krocore::config::Error, with everything as before.

    qohost::Preset Read(const Entry& entry) const;
    // The filter has the entry's settings now.
    void MarkLoaded(const Entry& entry);
    // Writes the settings into the user's entry.
    void Save(const Entry& entry);
    // Writes them into a new entry; refuses a name that is there.
    void SaveAs(const std::string& name);
    void Delete(const Entry& entry);

private:
    // The settings as an entry had them.
    struct Loaded {
        Entry entry;
        qohost::Preset settings;
    };

    const Loaded& Find() const;
    void Write(const std::string& name);

    const qoc::components::EffectDescription& fEffect;
    FilterPtr fFilter;
    qohost::UserPresets fUserPresets;
    std::vector<qohost::Preset> fFactoryPresets;
    std::vector<Entry> fEntries;
    std::vector<Loaded> fLoaded; // the latest last; never empty, since what comes with the effect stays
};

} // namespace workbench
