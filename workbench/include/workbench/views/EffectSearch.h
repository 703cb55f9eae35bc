#pragma once

#include "host/UserPresets.h"
#include "qoc/components/EffectCatalogue.h"

#include <map>
#include <optional>
#include <string_view>
#include <vector>

namespace workbench {

// Finds effects by what a user may look for: their name or category, a plain word ("hum"), or a preset, one of the
// user's too. User-interface thread.
class EffectSearch {
public:
    struct Hit {
        krocore::string16 by; // the preset or word that is not in the name or category, as it is written; often empty
    };

    explicit EffectSearch(qohost::UserPresets presets);

    // Nothing unless every word of the text is found: anywhere in the name or category, or where a word of a preset or
    // keyword begins. Case doesn't count. An empty text finds everything.
    std::optional<Hit> Find(const qoc::components::EffectDescription& effect, std::u16string_view text) const;
    // The user's presets may be others now.
    void Refresh() { fKnown.clear(); }

private:
    using Texts = std::vector<krocore::string16>;

    // Presets before keywords, since they say more.
    const Texts& TextsOf(const qoc::components::EffectDescription& effect) const;

    qohost::UserPresets fPresets;
    mutable std::map<const qoc::components::EffectDescription*, Texts> fKnown;
};

} // namespace workbench
