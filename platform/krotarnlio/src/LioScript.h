#pragma once

#include "orrin/expression_parser.h"

#include <string>
#include <string_view>
#include <vector>

namespace krotarnlio {

// A widget as a layout script has it.
struct LioElement {
    std::string widget;
    std::uint32_t offset = 0; // of its name in the script
    orrin::vector<orrin::named_expression_t> attributes;
    std::vector<LioElement> children;
};

// A layout script, read but not yet made:
//
//   layout name { view subview() { widget(key: expression, ...) { children } other(); ... } }
struct LioScript {
    orrin::name_t name; // empty for a script without anything in it
    std::uint32_t nameOffset = 0;
    LioElement view;
    orrin::source_ptr_t source;
};

// Throws orrin::error_t.
LioScript ParseLioText(std::string_view text, std::string scriptName);

} // namespace krotarnlio
