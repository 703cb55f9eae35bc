#include "orrin/error.h"

namespace orrin {

error_t::error_t(std::string script, position_t position, std::string message)
    : fScript(std::move(script)), fPosition(position), fMessage(std::move(message)),
      fText(fScript + ':' + std::to_string(position.line) + ':' + std::to_string(position.column) + ": " + fMessage) {
}

type_error_t::type_error_t(type_t needed, type_t found)
    : std::runtime_error("needs " + type_phrase(needed) + ", not " + type_phrase(found)) {
}

std::string type_phrase(type_t type) {
    if (type == type_t::empty) return "an empty value";
    if (type == type_t::array) return "an array";
    return "a " + std::string(type_name(type));
}

std::string in_quotes(std::string_view word) {
    return "'" + std::string(word) + "'";
}

} // namespace orrin
