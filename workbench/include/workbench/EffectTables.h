#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace workbench {

enum class TableFormat : std::uint8_t {
    kAligned, // columns that line up in a terminal
    kTabbed,  // a tab between cells, for programs
};

// The effects as a text table: name for command lines, title, category, and whether it can process and has a panel.
// The panels library must be initialised.
std::string EffectTable();

// The parameters of an effect as it is for stereo: index, id, name, range with unit, default. Throws
// krocore::config::Error for a name that is none.
std::string ParameterTableOf(std::string_view effectName, TableFormat format = TableFormat::kAligned);

} // namespace workbench
