#include "operators.h"

#include "orrin/dictionary.h"
#include "orrin/error.h"
#include "orrin/serialization.h"

#include <cmath>
#include <stdexcept>

namespace orrin {
namespace {

[[noreturn]] void fail_types(std::string_view operation, std::string_view needed, const any_regular_t& found) {
    throw type_error_t(in_quotes(operation) + " needs " + std::string(needed) + ", not " + type_phrase(found.type()));
}

[[noreturn]] void fail_types(std::string_view operation, std::string_view needed, const any_regular_t& left,
                             const any_regular_t& right) {
    throw type_error_t(in_quotes(operation) + " needs " + std::string(needed) + ", not " + type_phrase(left.type()) +
                       " and " + type_phrase(right.type()));
}

double arithmetic(operation_t operation, double left, double right) {
    switch (operation) {
    case operation_t::add: return left + right;
    case operation_t::subtract: return left - right;
    case operation_t::multiply: return left * right;
    case operation_t::divide: return left / right;
    default: return std::fmod(left, right);
    }
}

std::string_view arithmetic_sign(operation_t operation) {
    switch (operation) {
    case operation_t::subtract: return "-";
    case operation_t::multiply: return "*";
    case operation_t::divide: return "/";
    default: return "%";
    }
}

template <class T>
bool compare(operation_t operation, const T& left, const T& right) {
    switch (operation) {
    case operation_t::less: return left < right;
    case operation_t::greater: return left > right;
    case operation_t::less_equal: return left <= right;
    default: return left >= right;
    }
}

std::string_view comparison_sign(operation_t operation) {
    switch (operation) {
    case operation_t::less: return "<";
    case operation_t::greater: return ">";
    case operation_t::less_equal: return "<=";
    default: return ">=";
    }
}

any_regular_t element(const array_t& array, double index) {
    if (index != std::floor(index)) {
        throw std::out_of_range("the index " + serialize_regular(index) + " is no whole number");
    }
    if (!(index >= 0 && index < static_cast<double>(array.size()))) {
        throw std::out_of_range("the index " + serialize_regular(index) + " is outside the array, which has " +
                                std::to_string(array.size()) + (array.size() == 1 ? " element" : " elements"));
    }
    return array[static_cast<std::size_t>(index)];
}

any_regular_t entry(const dictionary_t& dictionary, name_t key) {
    const any_regular_t* const value = dictionary.find(key);
    if (!value) throw std::out_of_range("the dictionary has no key " + in_quotes(key.text()));
    return *value;
}

} // namespace

any_regular_t combine(operation_t operation, const any_regular_t& left, const any_regular_t& right) {
    const double* const leftNumber = left.get_if<double>();
    const double* const rightNumber = right.get_if<double>();
    if (leftNumber && rightNumber) return arithmetic(operation, *leftNumber, *rightNumber);
    if (operation != operation_t::add) fail_types(arithmetic_sign(operation), "two numbers", left, right);

    const std::string* const leftText = left.get_if<std::string>();
    const std::string* const rightText = right.get_if<std::string>();
    if (!leftText || !rightText) fail_types("+", "two numbers or two strings", left, right);
    return *leftText + *rightText;
}

bool compare_values(operation_t operation, const any_regular_t& left, const any_regular_t& right) {
    if (left.type() == right.type()) {
        if (const auto* const number = left.get_if<double>()) return compare(operation, *number, right.get<double>());
        if (const auto* const text = left.get_if<std::string>()) {
            return compare(operation, *text, right.get<std::string>());
        }
        if (const auto* const name = left.get_if<name_t>()) return compare(operation, *name, right.get<name_t>());
    }
    fail_types(comparison_sign(operation), "two numbers, two strings or two names", left, right);
}

any_regular_t element_or_entry(const any_regular_t& container, const any_regular_t& index) {
    const array_t* const array = container.get_if<array_t>();
    const double* const number = index.get_if<double>();
    if (array && number) return element(*array, *number);

    const dictionary_t* const dictionary = container.get_if<dictionary_t>();
    const name_t* const key = index.get_if<name_t>();
    if (dictionary && key) return entry(*dictionary, *key);
    fail_types("[]", "an array and a number or a dictionary and a name", container, index);
}

any_regular_t member_of(const any_regular_t& container, name_t key) {
    const dictionary_t* const dictionary = container.get_if<dictionary_t>();
    if (!dictionary) fail_types("." + std::string(key.text()), "a dictionary", container);
    return entry(*dictionary, key);
}

bool condition(const any_regular_t& value, std::string_view operation) {
    const bool* const held = value.get_if<bool>();
    if (!held) fail_types(operation, "a bool", value);
    return *held;
}

double operand(const any_regular_t& value, std::string_view operation) {
    const double* const held = value.get_if<double>();
    if (!held) fail_types(operation, "a number", value);
    return *held;
}

} // namespace orrin
