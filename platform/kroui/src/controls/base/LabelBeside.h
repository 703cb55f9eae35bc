#pragma once

#include "kroui/ui/UI_Node.h"

namespace kroui::controls {

// The text of the label that stands before a control in its row, wherever in the tree it hangs; empty if there is none.
krocore::string16 LabelBeside(const ui::UI_Node& control);

} // namespace kroui::controls
