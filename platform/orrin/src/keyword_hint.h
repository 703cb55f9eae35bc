#pragma once

#include "orrin/error.h"

#include <optional>
#include <string>
#include <string_view>

namespace orrin {

// Of a sheet that can't be read: the keyword in front of `failure`, the place where reading ended, that looks
// misspelt ("interfce:", "unlnk a: 1;"), as the error to tell instead. Nothing if there is none.
std::optional<error_t> misspelt_keyword(std::string_view script, const std::string& scriptName, position_t failure);

} // namespace orrin
