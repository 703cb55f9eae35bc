#pragma once

#include "orrin/expression.h"
#include "orrin/token_reader.h"

#include <string>
#include <string_view>

namespace orrin {

// Reads one expression and leaves the reader behind it, at the first token that does not belong to it. Throws error_t.
//
// From the loosest to the tightest: ?:  ||  &&  == !=  < > <= >=  + -  * / %  unary ! + -  postfix [index] .key
// A primary is a number, a string (neighbours join), @name, true, false, empty, [a, b], { key: value }, a variable, a
// call f(a, b) or f(key: value), or an expression in parentheses. A list may end with a comma.
expression_t parse_expression(token_reader_t& reader);

// Reads a text that is nothing but one expression.
expression_t parse_expression(std::string_view text, std::string scriptName);

struct named_expression_t {
    name_t name;
    std::uint32_t offset = 0; // of the name
    expression_t expression;
};

// Reads "key: expression, key: expression, ..." up to and with the token `close`, the opening one having been read. A
// key that occurs twice is an error. For the attributes of a widget.
vector<named_expression_t> parse_named_expressions(token_reader_t& reader, token_kind_t close);

// Reads a string with its joining neighbours.
std::string parse_string(token_reader_t& reader);

} // namespace orrin
