#pragma once

#include "kroui/ui/UI_Node.h"

#include <string>

namespace kroui::ui {

// Writes a node tree as a layout archive: declaration, CR LF, single quotes, keys in ascending byte order. Reading an
// archive written by this and writing it again gives the same bytes.
std::string WriteArchive(const UI_Node& root);

} // namespace kroui::ui
