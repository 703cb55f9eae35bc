#pragma once

#include "kroui/limner/CairoSupplier.h"
#include "qoc/components/EffectCatalogue.h"
#include "qocui/controls/AudioComponentEditorViewBase.h"

#include <vector>

namespace workbench {

// The panels library, ready for use while this lives. One for the process; outlives all panels.
class PanelsLibrary {
public:
    PanelsLibrary();
    PanelsLibrary(const PanelsLibrary&) = delete;
    PanelsLibrary& operator=(const PanelsLibrary&) = delete;
    ~PanelsLibrary();

    const kroui::limner::CairoSupplier& Supplier() const noexcept { return fSupplier; }

private:
    kroui::limner::CairoSupplier fSupplier;
};

using PanelPtr = boost::intrusive_ptr<qocui::controls::AudioComponentEditorViewBase>;

// A panel for the filter; null when the effect has none.
PanelPtr NewPanel(const boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>& filter);

// The effects that can process sound, by short name.
std::vector<const qoc::components::EffectDescription*> AvailableEffects();

} // namespace workbench
