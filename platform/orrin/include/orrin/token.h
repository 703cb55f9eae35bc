#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orrin {

enum class token_kind_t : std::uint8_t {
    end,
    identifier, // letters, digits, "_", not first a digit; keywords are identifiers, too
    number,
    string, // text is what stands between the quotes, as it stands
    name,   // @name or @"any text"; text is what follows the "@"

    // punctuation
    parenthesis_open,
    parenthesis_close,
    bracket_open,
    bracket_close,
    brace_open,
    brace_close,
    comma,
    semicolon,
    colon,
    dot,
    question,
    defined_by, // <==
    logical_or,
    logical_and,
    equal,
    not_equal,
    less,
    greater,
    less_equal,
    greater_equal,
    plus,
    minus,
    star,
    slash,
    percent,
    exclamation,
};

// One word of a script. The text is a view into the script.
struct token_t {
    token_kind_t kind = token_kind_t::end;
    std::uint32_t offset = 0; // of its first byte in the script; see source_t
    double number = 0;        // of a number
    bool isQuoted = false;    // of a name: written @"...", so that strings behind it continue it
    std::string_view text;    // of an identifier, string or name
};

// For messages: "';'", "a number", "the end of the script".
std::string_view token_kind_phrase(token_kind_t kind);
// The same for one that was found: "'gain'", "\"text\"", "'<=='".
std::string token_phrase(const token_t& token);

} // namespace orrin
