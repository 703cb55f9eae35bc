#pragma once

#include "qoc/components/EffectCatalogue.h"
#include "workbench/session/WatchedFolder.h"

namespace workbench {

// Writes down which resources are looked for while it lives; one at a time.
class ResourceListener {
public:
    explicit ResourceListener(WatchedFolder::Names& names);
    ~ResourceListener();
    ResourceListener(const ResourceListener&) = delete;
    ResourceListener& operator=(const ResourceListener&) = delete;
};

// The files that the panel of an effect is made of, pictures left out: a sheet and a layout, or an archive. Makes the
// panel of every effect the first time, to find out; the panels library must be ready.
WatchedFolder::Names PanelFilesOf(const qoc::components::EffectDescription& effect);
// As a listing shows them, "HARDLIMITERUI.trn, .lio"; "-" without any.
std::string PanelFilesText(const qoc::components::EffectDescription& effect);
// Null for a file that no effect's panel is made of.
const qoc::components::EffectDescription* EffectWithFile(const ResourceName& file);

} // namespace workbench
