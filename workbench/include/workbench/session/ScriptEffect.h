#pragma once

#include "qoc/components/EffectCatalogue.h"

#include <string>

namespace workbench {

// A pair of scripts in the place of an effect, for an author who has no effect yet. Lives as long as anything that
// shows it.
class ScriptEffect {
public:
    // Throws krocore::config::Error if there are no scripts of the name.
    explicit ScriptEffect(const std::string& scripts);
    ScriptEffect(const ScriptEffect&) = delete;
    ScriptEffect& operator=(const ScriptEffect&) = delete;

    const qoc::components::EffectDescription& Description() const noexcept { return fDescription; }
    const boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>& Filter() const noexcept { return fFilter; }

private:
    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
    std::string fName;
    krocore::string16 fComponentID;
    qoc::components::EffectDescription fDescription;
};

} // namespace workbench
