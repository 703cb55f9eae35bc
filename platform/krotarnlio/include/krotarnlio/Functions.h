#pragma once

#include "orrin/functions.h"

// The engine's own functions under the engine's name, in the form in which scripts call functions: with an array of
// positional arguments or a dictionary of named ones. Each throws a standard exception for arguments that it cannot
// use.
namespace krotarnlio {

using orrin::functions::default_maximum;
using orrin::functions::default_minimum;
using orrin::functions::evaluate_serialization; // string -> value
using orrin::functions::evaluate_token_stream;  // array -> value
using orrin::functions::has_key;                // dictionary, name -> bool
using orrin::functions::merge_dictionary_set;   // dictionaries -> dictionary
using orrin::functions::name_to_string;
using orrin::functions::serialize_regular;      // value -> string
using orrin::functions::serialize_token_stream; // array of tokens -> string
using orrin::functions::string_to_name;
using orrin::functions::tokenize_regular;       // value -> array of tokens
using orrin::functions::tokenize_serialization; // array of tokens -> value

} // namespace krotarnlio
