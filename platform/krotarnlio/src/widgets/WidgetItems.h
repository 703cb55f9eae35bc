#pragma once

#include "krocore/String.h"
#include "orrin/any_regular.h"

#include <string>
#include <vector>

namespace krotarnlio {

// One of the choices that a pop-up or a row of tabs offers.
struct WidgetItem {
    krocore::string16 name;
    orrin::any_regular_t value; // of the cell when it is chosen
    std::string image;          // a picture's resource name, empty for none
    bool isEnabled = true;
    bool isSeparator = false;
};

// Of an array of dictionaries { name, value, image, enabled }, of which only the name is needed, or of names alone. An
// item without a value has its position, from 0. The name "-" is a line between items. Throws a standard exception for
// anything else.
std::vector<WidgetItem> ItemsOf(const orrin::any_regular_t& value);

// The position of the first item with the value, -1 if there is none.
int FindItem(const std::vector<WidgetItem>& items, const orrin::any_regular_t& value);

} // namespace krotarnlio
