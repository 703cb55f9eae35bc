#pragma once

#include "orrin/lexer.h"
#include "orrin/name.h"

#include <array>
#include <cstddef>

namespace orrin {

// What every parser of the two languages stands on: tokens with two of lookahead, the errors of a parser, and a bound
// on its recursion. Every operation may throw error_t for a token that cannot be read.
class token_reader_t {
public:
    static constexpr int kDeepestNesting = 1000;

    // The text must outlive the reader and its tokens. `scriptName` stands in front of messages.
    token_reader_t(std::string_view text, std::string scriptName) : fLexer(text, std::move(scriptName)) {}

    // `ahead` is 0 or 1. The reference holds until the next operation.
    const token_t& peek(std::size_t ahead = 0) {
        while (fAheadCount <= ahead)
            read_ahead();
        return fAhead[(fFirstAhead + ahead) % kLookahead];
    }
    token_t next();

    bool at(token_kind_t kind) { return peek().kind == kind; }
    bool at_end() { return at(token_kind_t::end); }
    bool at_word(std::string_view word) { return at(token_kind_t::identifier) && peek().text == word; }

    // Takes the next token if it is this one.
    bool accept(token_kind_t kind);
    bool accept_word(std::string_view word);

    // Takes the next token, which must be of this kind; otherwise fails with "expected ';' behind the cell, found 'x'",
    // where `context` is the part behind the kind, or nothing.
    token_t expect(token_kind_t kind, std::string_view context = {});
    void expect_word(std::string_view word);
    // An identifier as a name; `what` says which one in the message: "expected a cell name, found ';'".
    name_t expect_name(std::string_view what);

    // An error at the next token, or at a place.
    [[noreturn]] void fail(std::string message);
    [[noreturn]] void fail(std::uint32_t offset, std::string message) const;
    // "expected <what>, found <next token>".
    [[noreturn]] void fail_expected(std::string_view what);

    const std::shared_ptr<source_t>& source() const noexcept { return fLexer.source(); }

    // Stands in every function of a parser that may call itself, so that no script can exhaust the stack: fails with a
    // message beyond kDeepestNesting of them at a time.
    class nesting_t {
    public:
        explicit nesting_t(token_reader_t& reader);
        ~nesting_t() { --fReader.fNesting; }
        nesting_t(const nesting_t&) = delete;
        nesting_t& operator=(const nesting_t&) = delete;

    private:
        token_reader_t& fReader;
    };

private:
    static constexpr std::size_t kLookahead = 2;

    void read_ahead();

    lexer_t fLexer;
    std::array<token_t, kLookahead> fAhead; // a ring
    std::size_t fFirstAhead = 0;
    std::size_t fAheadCount = 0;
    int fNesting = 0;
};

} // namespace orrin
