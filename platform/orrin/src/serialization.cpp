#include "orrin/serialization.h"

#include "orrin/expression_parser.h"
#include "orrin/virtual_machine.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace orrin {
namespace {

void write_number(double number, std::string& text) {
    if (std::isnan(number)) {
        text += "0/0";
    } else if (std::isinf(number)) {
        text += number < 0 ? "-1/0" : "1/0";
    } else {
        constexpr std::size_t kLongest = 32; // -1.7976931348623157e+308 has 24
        std::array<char, kLongest> digits{};
        text.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
    }
}

// A string without escapes: in pieces that each lack one of the two quotes.
void write_string(std::string_view string, std::string& text) {
    for (bool isFirst = true; isFirst || !string.empty(); isFirst = false) {
        const char quote = string.find('"') < string.find('\'') ? '\'' : '"';
        const std::size_t end = std::min(string.find(quote), string.size());
        if (!isFirst) text += ' ';
        text.append(1, quote).append(string.substr(0, end)).append(1, quote);
        string.remove_prefix(end);
    }
}

bool is_identifier(std::string_view text) {
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    const auto isWord = [&](char c) { return isLetter(c) || (c >= '0' && c <= '9'); };
    return !text.empty() && isLetter(text.front()) && std::ranges::all_of(text, isWord);
}

void write_word(name_t name, std::string& text) {
    if (is_identifier(name.text())) {
        text += name.text();
    } else {
        write_string(name.text(), text);
    }
}

void write_value(const any_regular_t& value, std::string& text);

void write_array(const array_t& array, std::string& text) {
    text += '[';
    for (const any_regular_t& element : array) {
        if (&element != &array.front()) text += ", ";
        write_value(element, text);
    }
    text += ']';
}

void write_dictionary(const dictionary_t& dictionary, std::string& text) {
    text += '{';
    for (bool isFirst = true; const auto& [key, value] : dictionary) {
        if (!std::exchange(isFirst, false)) text += ", ";
        write_word(key, text);
        text += ": ";
        write_value(value, text);
    }
    text += '}';
}

void write_value(const any_regular_t& value, std::string& text) {
    switch (value.type()) {
    case type_t::empty: text += "empty"; return;
    case type_t::number: return write_number(value.get<double>(), text);
    case type_t::boolean: text += value.get<bool>() ? "true" : "false"; return;
    case type_t::string: return write_string(value.get<std::string>(), text);
    case type_t::name: return write_word(value.get<name_t>(), text += '@');
    case type_t::array: return write_array(value.get<array_t>(), text);
    case type_t::dictionary: return write_dictionary(value.get<dictionary_t>(), text);
    }
}

constexpr char kOperatorMark = '.';
constexpr std::string_view kArrayOperator = ".array";
constexpr std::string_view kDictionaryOperator = ".dictionary";
constexpr std::string_view kNameOperator = ".name";

void write_tokens(const any_regular_t& value, array_t& tokens);

void write_operator(std::size_t count, std::string_view sign, array_t& tokens) {
    tokens.emplace_back(count);
    tokens.emplace_back(name_t(sign));
}

void write_name_tokens(name_t name, array_t& tokens) {
    if (name.text().starts_with(kOperatorMark)) {
        tokens.emplace_back(name.text());
        tokens.emplace_back(name_t(kNameOperator));
    } else {
        tokens.emplace_back(name);
    }
}

void write_tokens(const any_regular_t& value, array_t& tokens) {
    if (const auto* const array = value.get_if<array_t>()) {
        for (const any_regular_t& element : *array)
            write_tokens(element, tokens);
        write_operator(array->size(), kArrayOperator, tokens);
    } else if (const auto* const dictionary = value.get_if<dictionary_t>()) {
        for (const auto& [key, entry] : *dictionary) {
            write_name_tokens(key, tokens);
            write_tokens(entry, tokens);
        }
        write_operator(dictionary->size(), kDictionaryOperator, tokens);
    } else if (const auto* const name = value.get_if<name_t>()) {
        write_name_tokens(*name, tokens);
    } else {
        tokens.push_back(value);
    }
}

[[noreturn]] void fail_stream(const std::string& what) {
    throw std::invalid_argument("malformed token stream: " + what);
}

// The values that the tokens so far have left.
class token_stack_t {
public:
    void take(const any_regular_t& token) {
        if (token.get_if<array_t>() || token.get_if<dictionary_t>()) {
            fail_stream(type_phrase(token.type()) + " is no token");
        }
        const name_t* const name = token.get_if<name_t>();
        if (name && name->text().starts_with(kOperatorMark)) return run(name->text());
        fValues.push_back(token);
    }

    any_regular_t result() && {
        if (fValues.size() != 1) fail_stream(std::to_string(fValues.size()) + " values are left instead of one");
        return std::move(fValues.front());
    }

private:
    void run(std::string_view sign) {
        if (sign == kArrayOperator) return make_array();
        if (sign == kDictionaryOperator) return make_dictionary();
        if (sign == kNameOperator) return make_name();
        fail_stream("unknown operator '" + std::string(sign) + "'");
    }

    void make_array() {
        array_t elements = pop(pop_count());
        fValues.emplace_back(std::move(elements));
    }

    void make_dictionary() {
        const std::size_t count = pop_count();
        array_t values = pop(2 * count);
        vector<dictionary_t::value_type> entries;
        entries.reserve(count);
        for (std::size_t i = 0; i < values.size(); i += 2) {
            const name_t* const key = values[i].get_if<name_t>();
            if (!key) fail_stream("a key is " + type_phrase(values[i].type()));
            entries.emplace_back(*key, std::move(values[i + 1]));
        }
        fValues.emplace_back(dictionary_t(std::move(entries)));
    }

    void make_name() {
        const array_t text = pop(1);
        const std::string* const string = text.front().get_if<std::string>();
        if (!string) fail_stream("a name is made of " + type_phrase(text.front().type()));
        fValues.emplace_back(name_t(*string));
    }

    std::size_t pop_count() {
        const any_regular_t count = pop(1).front();
        const double* const number = count.get_if<double>();
        const bool isCount =
            number && *number >= 0 && *number <= static_cast<double>(fValues.size()) && *number == std::floor(*number);
        if (!isCount) fail_stream(serialize_regular(count) + " is no count of values");
        return static_cast<std::size_t>(*number);
    }

    array_t pop(std::size_t count) {
        if (count > fValues.size()) fail_stream("too few values");
        const auto first = fValues.end() - static_cast<std::ptrdiff_t>(count);
        array_t values(std::make_move_iterator(first), std::make_move_iterator(fValues.end()));
        fValues.erase(first, fValues.end());
        return values;
    }

    array_t fValues;
};

} // namespace

std::string serialize_regular(const any_regular_t& value) {
    std::string text;
    write_value(value, text);
    return text;
}

any_regular_t evaluate_serialization(std::string_view text) {
    return virtual_machine_t().evaluate(parse_expression(text, "serialization"));
}

array_t tokenize_regular(const any_regular_t& value) {
    array_t tokens;
    write_tokens(value, tokens);
    return tokens;
}

any_regular_t evaluate_token_stream(const array_t& tokens) {
    token_stack_t stack;
    for (const any_regular_t& token : tokens)
        stack.take(token);
    return std::move(stack).result();
}

std::string serialize_token_stream(const array_t& tokens) {
    return serialize_regular(evaluate_token_stream(tokens));
}

array_t tokenize_serialization(std::string_view text) {
    return tokenize_regular(evaluate_serialization(text));
}

} // namespace orrin
