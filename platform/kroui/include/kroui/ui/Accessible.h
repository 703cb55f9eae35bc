#pragma once

#include "krocore/String.h"

#include <cstdint>

namespace kroui::ui {

enum class Role : std::uint8_t {
    kNone,
    kGroup,
    kText,
    kImage,
    kButton,
    kCheckBox,
    kRadioButton,
    kPopup,
    kSlider,
    kNumber,
    kTextField,
    kGraph,
    kMeter,
    kMenu,
    kMenuItem,
    kList,
    kListItem,
    kTabGroup,
};

// What a node is for somebody who cannot see it, and for a test driver: its role, the name beside it, its value as the
// user reads it.
struct AccessibleInfo {
    Role role = Role::kNone;
    krocore::string16 name;
    krocore::string16 value;
    bool enabled = true;
    bool focusable = false;
};

} // namespace kroui::ui
