#include "workbench/session/ScriptEffect.h"

#include "workbench/session/PanelSource.h"

namespace workbench {

ScriptEffect::ScriptEffect(const std::string& scripts)
    : fFilter(NewScriptFilter(scripts)), fName(scripts),
      fComponentID(fFilter->GetComponentID()), fDescription{fComponentID, fName, fName.c_str(),
                                                            qoc::components::EffectCategory::kAmplitude, nullptr} {
}

} // namespace workbench
