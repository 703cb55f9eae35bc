#pragma once

#include "workbench/commands/CommandSet.h"

namespace workbench {

// The program's commands, in the order of its help.
void AddPanelCommands(CommandSet& commands);   // open, snapshot, gallery, check
void AddSoundCommands(CommandSet& commands);   // render, preset
void AddListingCommands(CommandSet& commands); // list, params, presets

} // namespace workbench
