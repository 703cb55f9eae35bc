#pragma once

#include "orrin/any_regular.h"

#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orrin {

// A place in a script.
struct position_t {
    std::uint32_t line = 0;   // from 1
    std::uint32_t column = 0; // from 1, in bytes; a tab is one

    friend bool operator==(position_t, position_t) noexcept = default;
};

// What is wrong in a script, when reading or when running it. what() is "script:line:column: message".
class error_t : public std::exception {
public:
    error_t(std::string script, position_t position, std::string message);

    const char* what() const noexcept override { return fText.c_str(); }
    const std::string& script() const noexcept { return fScript; }
    position_t position() const noexcept { return fPosition; }
    const std::string& message() const noexcept { return fMessage; } // without the place

private:
    std::string fScript;
    position_t fPosition;
    std::string fMessage;
    std::string fText;
};

// A value of another type than is needed, without a place.
class type_error_t : public std::runtime_error {
public:
    type_error_t(type_t needed, type_t found); // "needs a number, not a string"
    using std::runtime_error::runtime_error;
};

// A type with its article, for messages: "a number", "an array", "an empty value".
std::string type_phrase(type_t type);
// A word of a script as messages show it: 'gain'.
std::string in_quotes(std::string_view word);

} // namespace orrin
