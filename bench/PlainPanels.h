#pragma once

#include "kroui/ui/UI_Node.h"

#include <boost/intrusive_ptr.hpp>

#include <string>

// Panels of plain nodes, as any toolkit has them, for measuring what a node costs.
namespace bench {

enum class PlainPanel {
    kForm,   // 26 nodes: frames, labels, sliders, fields, buttons and menus, 520 x 360
    kFaders, // 93 nodes: thirty faders with labels and fields, 1000 x 360
};

kroui::Size SizeOf(PlainPanel panel);
// Its layout archive, made anew.
std::string ArchiveOf(PlainPanel panel);
// The panel read from its archive. What archives don't keep, which buttons are on and which items are chosen, is set
// as a host's binding does.
boost::intrusive_ptr<kroui::ui::UI_Node> OpenPlainPanel(const std::string& archive);

} // namespace bench
