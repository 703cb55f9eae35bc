#pragma once

#include "orrin/any_regular.h"

namespace orrin {

class expression_t;

// The functions that belong to the language: expressions can call them whatever the host installs, and no function of
// the host has their names. They look at their arguments alone.
//
//   round(x)        the nearest whole number; of two that are as near, the one farther from 0
//   min(a, b, ...)  the least of one or more numbers
//   max(a, b, ...)  the greatest
//
// An undefined number among the arguments (0 / 0) gives an undefined one.
bool is_core_function(name_t name);
// Throws standard exceptions for arguments that it cannot use.
any_regular_t call_core_function(name_t name, const any_regular_t& arguments);

// Whether it calls any function of the host.
bool calls_host(const expression_t& expression);

} // namespace orrin
