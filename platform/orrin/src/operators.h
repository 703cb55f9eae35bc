#pragma once

#include "orrin/expression.h"

#include <string_view>

namespace orrin {

// What the operators do with values. Throw type_error_t, which names the operator and the types, and std::out_of_range.

// Of add, subtract, multiply, divide, remainder. Strings can be added.
any_regular_t combine(operation_t operation, const any_regular_t& left, const any_regular_t& right);
// Of less, greater, less_equal, greater_equal: two numbers, two strings (by bytes) or two names (by text).
bool compare_values(operation_t operation, const any_regular_t& left, const any_regular_t& right);

any_regular_t element_or_entry(const any_regular_t& container, const any_regular_t& index);
any_regular_t member_of(const any_regular_t& container, name_t key);

// The operand of `operation`, which is its sign in messages.
bool condition(const any_regular_t& value, std::string_view operation);
double operand(const any_regular_t& value, std::string_view operation);

} // namespace orrin
