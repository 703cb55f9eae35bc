#pragma once

#include "orrin/any_regular.h"
#include "orrin/dictionary.h"

#include <string>
#include <string_view>

namespace orrin {

// The helper functions of the scripts, as C++ calls them.

bool has_key(const dictionary_t& dictionary, name_t key);
std::string name_to_string(name_t name);
name_t string_to_name(std::string_view text);
// All entries of an array of dictionaries; of entries with the same name the last one holds. Throws type_error_t.
dictionary_t merge_dictionary_set(const array_t& dictionaries);
// The bounds of a number that has none.
double default_maximum(); // the largest finite double
double default_minimum(); // the same, negative

// The same, as scripts call them: with an array or a dictionary of arguments. Throw standard exceptions for arguments
// that they cannot use.
namespace functions {

any_regular_t default_maximum(const any_regular_t& arguments);
any_regular_t default_minimum(const any_regular_t& arguments);
any_regular_t evaluate_serialization(const any_regular_t& arguments);
any_regular_t evaluate_token_stream(const any_regular_t& arguments);
any_regular_t has_key(const any_regular_t& arguments);
any_regular_t merge_dictionary_set(const any_regular_t& arguments); // dictionaries, or one array of them
any_regular_t name_to_string(const any_regular_t& arguments);
any_regular_t serialize_regular(const any_regular_t& arguments);
any_regular_t serialize_token_stream(const any_regular_t& arguments);
any_regular_t string_to_name(const any_regular_t& arguments);
any_regular_t tokenize_regular(const any_regular_t& arguments);
// Of a string: its tokens. Of an array of tokens: the value that they stand for.
any_regular_t tokenize_serialization(const any_regular_t& arguments);

} // namespace functions

// The arguments of a function with positional ones; throws std::invalid_argument unless there are `count`.
const array_t& positional_arguments(const any_regular_t& arguments, std::size_t count);
// The arguments of a function with named ones, which may also be called with one dictionary: f(a: 1), f({ a: 1 }).
const dictionary_t& named_arguments(const any_regular_t& arguments);

} // namespace orrin
