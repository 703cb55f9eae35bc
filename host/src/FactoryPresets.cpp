#include "host/FactoryPresets.h"

#include "krocore/ModuleResources.h"

extern "C" const krocore::ModuleResourceTable kQoHostPresets;

namespace qohost {

std::vector<Preset> FactoryPresets(const qoc::components::EffectDescription& effect) {
    const std::span<const std::byte> bytes = krocore::FindResource(&kQoHostPresets, effect.shortName, "JSON");
    if (bytes.empty()) return {};
    return ParsePresetCollection({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

} // namespace qohost
