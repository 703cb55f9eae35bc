#include "workbench/session/PanelsLibrary.h"

#include "qocui/module/ComponentUIFactory.h"
#include "qocui/module/Module.h"

namespace workbench {

PanelsLibrary::PanelsLibrary() {
    qocui::module::Initialize(&fSupplier);
}

PanelsLibrary::~PanelsLibrary() {
    qocui::module::Terminate();
}

PanelPtr NewPanel(const boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>& filter) {
    return qocui::module::ComponentUIFactory::GetInstance().CreateViewForComponent(filter);
}

std::vector<const qoc::components::EffectDescription*> AvailableEffects() {
    std::vector<const qoc::components::EffectDescription*> effects;
    for (const auto& effect : qoc::components::AllEffects())
        if (effect.create != nullptr) effects.push_back(&effect);
    return effects;
}

} // namespace workbench
