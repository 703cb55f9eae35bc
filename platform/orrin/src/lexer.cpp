#include "orrin/lexer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <stdexcept>

namespace orrin {
namespace {

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool is_word_start(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool is_word(char c) {
    return is_word_start(c) || is_digit(c);
}

// The whole character that begins here for a message; a byte that begins none in hexadecimal.
std::string shown_character(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = first < 0x80   ? 1
                               : first < 0xC2 ? 0
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                               : first < 0xF5 ? 4
                                              : 0;
    const bool whole = length > 0 && text.size() >= length &&
                       std::all_of(text.begin() + 1, text.begin() + length, [](char c) { return (c & 0xC0) == 0x80; });
    if (whole && first >= 0x20 && first != 0x7F) return "'" + std::string(text.substr(0, length)) + "'";
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    return std::string("byte 0x") + kDigits[first >> 4] + kDigits[first & 15];
}

// What from_chars refuses: a literal smaller than the smallest double is 0, a larger one infinite. Which one it is
// shows the decimal exponent of its first digit that is not 0.
double out_of_range_number(std::string_view text) {
    const std::size_t exponentAt = std::min(text.find_first_of("eE"), text.size());
    const std::string_view digits = text.substr(0, exponentAt);
    const auto point = static_cast<std::int64_t>(std::min(digits.find('.'), digits.size()));
    const auto first = static_cast<std::int64_t>(digits.find_first_of("123456789"));

    std::int64_t exponent = 0;
    if (exponentAt < text.size()) {
        const std::string_view written = text.substr(exponentAt + 1);
        const bool negative = written.starts_with('-');
        const auto skipped = negative || written.starts_with('+') ? 1u : 0u;
        const auto read = std::from_chars(written.data() + skipped, written.data() + written.size(), exponent);
        if (read.ec != std::errc()) exponent = std::numeric_limits<std::int32_t>::max() * std::int64_t{4};
        if (negative) exponent = -exponent;
    }
    return point - first + exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
}

struct punctuation_t {
    std::string_view text;
    token_kind_t kind;
};

// By first character; of several with the same one the longest stands first.
constexpr punctuation_t kPunctuation[] = {
    {"<==", token_kind_t::defined_by},
    {"<=", token_kind_t::less_equal},
    {"<", token_kind_t::less},
    {">=", token_kind_t::greater_equal},
    {">", token_kind_t::greater},
    {"==", token_kind_t::equal},
    {"!=", token_kind_t::not_equal},
    {"!", token_kind_t::exclamation},
    {"&&", token_kind_t::logical_and},
    {"||", token_kind_t::logical_or},
    {"(", token_kind_t::parenthesis_open},
    {")", token_kind_t::parenthesis_close},
    {"[", token_kind_t::bracket_open},
    {"]", token_kind_t::bracket_close},
    {"{", token_kind_t::brace_open},
    {"}", token_kind_t::brace_close},
    {",", token_kind_t::comma},
    {";", token_kind_t::semicolon},
    {":", token_kind_t::colon},
    {".", token_kind_t::dot},
    {"?", token_kind_t::question},
    {"+", token_kind_t::plus},
    {"-", token_kind_t::minus},
    {"*", token_kind_t::star},
    {"/", token_kind_t::slash},
    {"%", token_kind_t::percent},
};

// Where the entries of a first character begin, for every character.
constexpr auto kPunctuationStarts = [] {
    std::array<std::uint8_t, 256> starts{};
    starts.fill(std::size(kPunctuation));
    for (std::size_t i = std::size(kPunctuation); i-- > 0;) {
        starts[static_cast<unsigned char>(kPunctuation[i].text.front())] = static_cast<std::uint8_t>(i);
    }
    return starts;
}();

const punctuation_t* find_punctuation(std::string_view text) {
    const char first = text.front();
    const punctuation_t* at = kPunctuation + kPunctuationStarts[static_cast<unsigned char>(first)];
    for (; at != std::end(kPunctuation) && at->text.front() == first; ++at) {
        if (text.starts_with(at->text)) return at;
    }
    return nullptr;
}

} // namespace

lexer_t::lexer_t(std::string_view text, std::string scriptName)
    : fBegin(text.data()), fAt(text.data()), fEnd(text.data() + text.size()),
      fSource(std::make_shared<source_t>(std::move(scriptName))) {
    if (text.size() >= std::numeric_limits<std::uint32_t>::max()) throw std::length_error("the script is too large");
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(kByteOrderMark)) fAt += kByteOrderMark.size();
}

token_t lexer_t::next() {
    skip_space();
    if (fAt == fEnd) return token(token_kind_t::end, fEnd);
    const char first = *fAt;
    const char second = fEnd - fAt > 1 ? fAt[1] : '\0';
    if (is_word_start(first)) return identifier();
    if (is_digit(first) || (first == '.' && is_digit(second))) return number();
    if (first == '"' || first == '\'') return string();
    if (first == '@') return name();
    return punctuation();
}

void lexer_t::skip_space() {
    for (; fAt != fEnd; ++fAt) {
        if (*fAt == '\n' || *fAt == '\r') {
            end_line();
        } else if (*fAt == '/' && fEnd - fAt > 1 && fAt[1] == '/') {
            skip_line_comment();
        } else if (*fAt == '/' && fEnd - fAt > 1 && fAt[1] == '*') {
            skip_block_comment();
        } else if (*fAt != ' ' && *fAt != '\t' && *fAt != '\f' && *fAt != '\v') {
            return;
        }
    }
}

// Leaves the last character of the comment to be stepped over, as its caller does.
void lexer_t::skip_line_comment() {
    const char* const end = std::find_if(fAt, fEnd, [](char c) { return c == '\n' || c == '\r'; });
    fAt = end - 1;
}

void lexer_t::skip_block_comment() {
    const char* const begin = fAt;
    for (fAt += 2; fEnd - fAt > 1; ++fAt) {
        if (fAt[0] == '*' && fAt[1] == '/') {
            ++fAt;
            return;
        }
        end_line();
    }
    fail(begin, "the comment is never closed with '*/'");
}

// Notes that a line begins behind the character here, if it ends one. CR LF is one end.
void lexer_t::end_line() {
    const bool ends = *fAt == '\n' || (*fAt == '\r' && (fEnd - fAt == 1 || fAt[1] != '\n'));
    if (ends) fSource->add_line(offset(fAt + 1));
}

token_t lexer_t::identifier() {
    const char* const begin = fAt;
    fAt = std::find_if_not(fAt, fEnd, is_word);
    token_t result = token(token_kind_t::identifier, begin);
    result.text = {begin, fAt};
    return result;
}

token_t lexer_t::number() {
    const char* const begin = fAt;
    token_t result = token(token_kind_t::number, begin);
    const auto [end, error] = std::from_chars(fAt, fEnd, result.number);
    fAt = end;
    if (error != std::errc()) result.number = out_of_range_number({begin, end});
    if (std::isinf(result.number)) fail(begin, "the number is too large");
    if (fAt != fEnd && (is_word(*fAt) || *fAt == '.')) fail(begin, "malformed number");
    return result;
}

token_t lexer_t::string() {
    token_t result = token(token_kind_t::string, fAt);
    result.text = quoted();
    return result;
}

token_t lexer_t::name() {
    const char* const begin = fAt++;
    token_t result = token(token_kind_t::name, begin);
    if (fAt != fEnd && (*fAt == '"' || *fAt == '\'')) {
        result.text = quoted();
        result.isQuoted = true;
        return result;
    }
    const char* const end = std::find_if_not(fAt, fEnd, is_word);
    if (end == fAt || is_digit(*fAt)) fail(begin, "expected a name behind '@'");
    result.text = {fAt, end};
    fAt = end;
    return result;
}

token_t lexer_t::punctuation() {
    const std::string_view rest(fAt, fEnd);
    const punctuation_t* const found = find_punctuation(rest);
    if (!found) fail(fAt, "unexpected " + shown_character(rest));
    const char* const begin = fAt;
    fAt += found->text.size();
    return token(found->kind, begin);
}

std::string_view lexer_t::quoted() {
    const char* const quote = fAt++;
    const char* const begin = fAt;
    for (; fAt != fEnd; ++fAt) {
        if (*fAt == *quote) return {begin, fAt++};
        end_line();
    }
    fail(quote, "the string is never closed");
}

token_t lexer_t::token(token_kind_t kind, const char* begin) const {
    token_t result;
    result.kind = kind;
    result.offset = offset(begin);
    return result;
}

void lexer_t::fail(const char* at, std::string message) const {
    throw fSource->error(offset(at), std::move(message));
}

} // namespace orrin
