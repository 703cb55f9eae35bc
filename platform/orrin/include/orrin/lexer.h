#pragma once

#include "orrin/source.h"
#include "orrin/token.h"

#include <memory>
#include <string>
#include <string_view>

namespace orrin {

// Cuts a script into tokens, one at a time. Space and comments (// and /* */) between tokens are skipped; lines end
// with LF, CR LF or CR. Strings have no escapes: a string runs up to the quote that it began with, over lines if need
// be; a string with both quotes is written as two neighbours. Linear in the length of the text.
class lexer_t {
public:
    // The text must outlive the lexer and its tokens; at most 4 GB, else std::length_error.
    lexer_t(std::string_view text, std::string scriptName);

    // `end` again and again behind the last one. Throws error_t at what is no token.
    token_t next();

    const std::shared_ptr<source_t>& source() const noexcept { return fSource; }

private:
    void skip_space();
    void skip_line_comment();
    void skip_block_comment();
    void end_line();

    token_t identifier();
    token_t number();
    token_t string();
    token_t name();
    token_t punctuation();

    std::string_view quoted();
    token_t token(token_kind_t kind, const char* begin) const;
    std::uint32_t offset(const char* at) const noexcept { return static_cast<std::uint32_t>(at - fBegin); }
    [[noreturn]] void fail(const char* at, std::string message) const;

    const char* fBegin;
    const char* fAt;
    const char* fEnd;
    std::shared_ptr<source_t> fSource;
};

} // namespace orrin
