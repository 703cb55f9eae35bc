#include "workbench/ScriptEffect.h"

#include "workbench/PanelSource.h"

namespace workbench {

ScriptEffect::ScriptEffect(const std::string& scripts)
    : fFilter(NewScriptFilter(scripts)), fName(scripts),
      fComponentID(fFilter->GetComponentID()), fDescription{fComponentID, fName, fName.c_str(),
                                                            qoc::components::EffectCategory::kAmplitude, nullptr} {
}

} // namespace workbench
