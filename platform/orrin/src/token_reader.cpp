#include "orrin/token_reader.h"

#include "orrin/error.h"

namespace orrin {

token_t token_reader_t::next() {
    const token_t token = peek();
    fFirstAhead = (fFirstAhead + 1) % kLookahead;
    --fAheadCount;
    return token;
}

void token_reader_t::read_ahead() {
    fAhead[(fFirstAhead + fAheadCount) % kLookahead] = fLexer.next();
    ++fAheadCount;
}

bool token_reader_t::accept(token_kind_t kind) {
    if (!at(kind)) return false;
    next();
    return true;
}

bool token_reader_t::accept_word(std::string_view word) {
    if (!at_word(word)) return false;
    next();
    return true;
}

token_t token_reader_t::expect(token_kind_t kind, std::string_view context) {
    if (at(kind)) return next();
    std::string what(token_kind_phrase(kind));
    if (!context.empty()) what.append(" ").append(context);
    fail_expected(what);
}

void token_reader_t::expect_word(std::string_view word) {
    if (!accept_word(word)) fail_expected(in_quotes(word));
}

name_t token_reader_t::expect_name(std::string_view what) {
    if (!at(token_kind_t::identifier)) fail_expected(what);
    return name_t(next().text);
}

void token_reader_t::fail(std::string message) {
    fail(peek().offset, std::move(message));
}

void token_reader_t::fail(std::uint32_t offset, std::string message) const {
    throw source()->error(offset, std::move(message));
}

void token_reader_t::fail_expected(std::string_view what) {
    fail("expected " + std::string(what) + ", found " + token_phrase(peek()));
}

token_reader_t::nesting_t::nesting_t(token_reader_t& reader) : fReader(reader) {
    if (fReader.fNesting >= kDeepestNesting) fReader.fail("nested too deeply");
    ++fReader.fNesting;
}

} // namespace orrin
