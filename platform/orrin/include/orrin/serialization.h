#pragma once

#include "orrin/any_regular.h"
#include "orrin/dictionary.h"

#include <string>
#include <string_view>

namespace orrin {

// Values as text, and as arrays of tokens. All four forms hold every value exactly.
//
// The text is an expression of the language without variables and calls: 0.1, "it's" '"', @name, [1, true],
// {key: empty}. Numbers are the shortest text that reads back the same; infinity is 1/0, NaN is 0/0.
//
// A token stream is a value in postfix order. Empty values, numbers, bools, strings and names stand for themselves;
// the names ".array" and ".dictionary" gather what stands before them, as many elements, or pairs of name and value, as
// the number right before them says; ".name" makes a name of the string before it, which is how a name that begins with
// a dot is written. [1, {a: 2}] is [1, @a, 2, 1, @".dictionary", 2, @".array"].

std::string serialize_regular(const any_regular_t& value);
// Throws error_t, in which the script's name is "serialization".
any_regular_t evaluate_serialization(std::string_view text);

array_t tokenize_regular(const any_regular_t& value);
// Throws std::invalid_argument for an array that is no token stream.
any_regular_t evaluate_token_stream(const array_t& tokens);

// Between text and tokens. Throw what the ways above throw.
std::string serialize_token_stream(const array_t& tokens);
array_t tokenize_serialization(std::string_view text);

} // namespace orrin
