#include "keyword_hint.h"

#include "orrin/sheet.h"
#include "orrin/token_reader.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <vector>

namespace orrin {

namespace {

// How many letters have to be changed, left out, added or exchanged with their neighbour (optimal string alignment,
// Boytsov, "Indexing methods for approximate dictionary searching", JEA 16, 2011).
std::size_t distance(std::string_view from, std::string_view to) {
    std::vector<std::vector<std::size_t>> rows(from.size() + 1, std::vector<std::size_t>(to.size() + 1));
    for (std::size_t i = 0; i <= from.size(); ++i)
        for (std::size_t j = 0; j <= to.size(); ++j) {
            if (i == 0 || j == 0) {
                rows[i][j] = i + j;
                continue;
            }
            const std::size_t change = rows[i - 1][j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
            rows[i][j] = std::min({rows[i - 1][j] + 1, rows[i][j - 1] + 1, change});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1])
                rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
        }
    return rows[from.size()][to.size()];
}

bool is_slip_of(std::string_view written, std::string_view keyword) {
    constexpr std::size_t kShort = 4;
    const std::size_t most = keyword.size() <= kShort ? 1 : 2;
    const std::size_t longer = std::max(written.size(), keyword.size());
    const std::size_t shorter = std::min(written.size(), keyword.size());
    if (written == keyword || longer - shorter > most) return false;
    return distance(written, keyword) <= most;
}

struct keyword_t {
    std::string_view word;
    token_kind_t following;
};
constexpr std::array kKeywords{
    keyword_t{"constant", token_kind_t::colon},        keyword_t{"input", token_kind_t::colon},
    keyword_t{"interface", token_kind_t::colon},       keyword_t{"logic", token_kind_t::colon},
    keyword_t{"invariant", token_kind_t::colon},       keyword_t{"output", token_kind_t::colon},
    keyword_t{"unlink", token_kind_t::identifier},     keyword_t{"relate", token_kind_t::brace_open},
    keyword_t{"when", token_kind_t::parenthesis_open},
};

// Reads over the tokens and knows where declarations begin: in the sheet's braces, behind what ends the one before.
class scan_t {
public:
    scan_t(std::string_view script, const std::string& scriptName) : fReader(script, scriptName) {}

    std::optional<error_t> find(position_t failure) {
        while (!fReader.at_end()) {
            const token_t token = fReader.next();
            const position_t position = fReader.source()->position(token.offset);
            if (std::tie(position.line, position.column) > std::tie(failure.line, failure.column)) break;
            if (fBegins && fDepth == 1 && token.kind == token_kind_t::identifier)
                if (const keyword_t* const meant = keyword_for(token)) return hint(token, *meant);
            follow(token.kind);
        }
        return {};
    }

private:
    const keyword_t* keyword_for(const token_t& token) {
        const token_kind_t following = fReader.peek().kind;
        const auto found = std::ranges::find_if(kKeywords, [&](const keyword_t& keyword) {
            return keyword.following == following && is_slip_of(token.text, keyword.word);
        });
        return found != kKeywords.end() ? &*found : nullptr;
    }

    void follow(token_kind_t kind) {
        if (kind == token_kind_t::brace_open) ++fDepth;
        if (kind == token_kind_t::brace_close) --fDepth;
        const bool ends = kind == token_kind_t::semicolon || kind == token_kind_t::brace_open ||
                          kind == token_kind_t::brace_close || kind == token_kind_t::colon;
        fBegins = ends;
    }

    error_t hint(const token_t& token, const keyword_t& meant) const {
        const bool isSection = meant.following == token_kind_t::colon;
        return fReader.source()->error(
            token.offset, in_quotes(token.text) + (isSection ? " is no section" : " is no keyword") + ", perhaps \"" +
                              std::string(meant.word) + (isSection ? ":\" is meant" : "\" is meant"));
    }

    token_reader_t fReader;
    int fDepth = 0;
    bool fBegins = false;
};

} // namespace

std::optional<error_t> misspelt_keyword(std::string_view script, const std::string& scriptName, position_t failure) {
    try {
        return scan_t(script, scriptName).find(failure);
    } catch (const error_t&) {
        return {}; // what is no token has been told
    }
}

} // namespace orrin
