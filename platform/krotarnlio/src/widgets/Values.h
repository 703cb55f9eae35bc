#pragma once

#include "krocore/String.h"
#include "orrin/any_regular.h"

#include <string_view>

// What the values of attributes mean. Each throws a standard exception that continues the attribute's name ("needs a
// string, not a number") for a value that it cannot use.
namespace krotarnlio {

// The text behind a localisation key, or the text as it stands.
krocore::string16 TextOf(const orrin::any_regular_t& value);
// From 0 to `most`.
unsigned WholeNumberOf(const orrin::any_regular_t& value, unsigned most);

// Whether the text is a label whose colon is to be aligned with those of its neighbours.
bool EndsWithColon(std::u16string_view text);

} // namespace krotarnlio
