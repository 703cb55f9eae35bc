#include "orrin/token.h"

#include <array>

namespace orrin {

std::string_view token_kind_phrase(token_kind_t kind) {
    static constexpr std::array<std::string_view, 31> kPhrases = {
        "the end of the script",
        "an identifier",
        "a number",
        "a string",
        "a name",
        "'('",
        "')'",
        "'['",
        "']'",
        "'{'",
        "'}'",
        "','",
        "';'",
        "':'",
        "'.'",
        "'?'",
        "'<=='",
        "'||'",
        "'&&'",
        "'=='",
        "'!='",
        "'<'",
        "'>'",
        "'<='",
        "'>='",
        "'+'",
        "'-'",
        "'*'",
        "'/'",
        "'%'",
        "'!'",
    };
    static_assert(kPhrases.size() == static_cast<std::size_t>(token_kind_t::exclamation) + 1);
    return kPhrases[static_cast<std::size_t>(kind)];
}

std::string token_phrase(const token_t& token) {
    constexpr std::size_t kLongestShown = 40;
    const auto shown = [&token] {
        std::string text(token.text.substr(0, kLongestShown));
        if (token.text.size() > kLongestShown) text += "...";
        return text;
    };
    switch (token.kind) {
    case token_kind_t::identifier: return "'" + shown() + "'";
    case token_kind_t::string: return "the string \"" + shown() + "\"";
    case token_kind_t::name: return "the name '@" + shown() + "'";
    default: return std::string(token_kind_phrase(token.kind));
    }
}

} // namespace orrin
