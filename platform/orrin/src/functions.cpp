#include "orrin/functions.h"

#include "orrin/error.h"
#include "orrin/serialization.h"

#include <limits>
#include <stdexcept>

namespace orrin {
namespace {

const any_regular_t& only_argument(const any_regular_t& arguments) {
    return positional_arguments(arguments, 1).front();
}

} // namespace

bool has_key(const dictionary_t& dictionary, name_t key) {
    return dictionary.contains(key);
}

std::string name_to_string(name_t name) {
    return std::string(name.text());
}

name_t string_to_name(std::string_view text) {
    return name_t(text);
}

dictionary_t merge_dictionary_set(const array_t& dictionaries) {
    vector<dictionary_t::value_type> entries;
    for (const any_regular_t& value : dictionaries) {
        const auto& dictionary = value.get<dictionary_t>();
        entries.insert(entries.end(), dictionary.begin(), dictionary.end());
    }
    return dictionary_t(std::move(entries));
}

double default_maximum() {
    return std::numeric_limits<double>::max();
}

double default_minimum() {
    return std::numeric_limits<double>::lowest();
}

namespace functions {

any_regular_t default_maximum(const any_regular_t& arguments) {
    positional_arguments(arguments, 0);
    return orrin::default_maximum();
}

any_regular_t default_minimum(const any_regular_t& arguments) {
    positional_arguments(arguments, 0);
    return orrin::default_minimum();
}

any_regular_t evaluate_serialization(const any_regular_t& arguments) {
    return orrin::evaluate_serialization(only_argument(arguments).get<std::string>());
}

any_regular_t evaluate_token_stream(const any_regular_t& arguments) {
    return orrin::evaluate_token_stream(only_argument(arguments).get<array_t>());
}

any_regular_t has_key(const any_regular_t& arguments) {
    const array_t& both = positional_arguments(arguments, 2);
    return orrin::has_key(both[0].get<dictionary_t>(), both[1].get<name_t>());
}

any_regular_t merge_dictionary_set(const any_regular_t& arguments) {
    const auto& dictionaries = arguments.get<array_t>();
    const array_t* const inner = dictionaries.size() == 1 ? dictionaries.front().get_if<array_t>() : nullptr;
    return orrin::merge_dictionary_set(inner ? *inner : dictionaries);
}

any_regular_t name_to_string(const any_regular_t& arguments) {
    return orrin::name_to_string(only_argument(arguments).get<name_t>());
}

any_regular_t serialize_regular(const any_regular_t& arguments) {
    return orrin::serialize_regular(only_argument(arguments));
}

any_regular_t serialize_token_stream(const any_regular_t& arguments) {
    return orrin::serialize_token_stream(only_argument(arguments).get<array_t>());
}

any_regular_t string_to_name(const any_regular_t& arguments) {
    return orrin::string_to_name(only_argument(arguments).get<std::string>());
}

any_regular_t tokenize_regular(const any_regular_t& arguments) {
    return orrin::tokenize_regular(only_argument(arguments));
}

any_regular_t tokenize_serialization(const any_regular_t& arguments) {
    const any_regular_t& argument = only_argument(arguments);
    if (const auto* const tokens = argument.get_if<array_t>()) return orrin::evaluate_token_stream(*tokens);
    return orrin::tokenize_serialization(argument.get<std::string>());
}

} // namespace functions

const array_t& positional_arguments(const any_regular_t& arguments, std::size_t count) {
    const array_t* const array = arguments.get_if<array_t>();
    if (!array) throw std::invalid_argument("takes its arguments by position");
    if (array->size() != count) {
        throw std::invalid_argument("takes " + std::to_string(count) + (count == 1 ? " argument" : " arguments") +
                                    ", not " + std::to_string(array->size()));
    }
    return *array;
}

const dictionary_t& named_arguments(const any_regular_t& arguments) {
    if (const auto* const dictionary = arguments.get_if<dictionary_t>()) return *dictionary;
    const array_t* const array = arguments.get_if<array_t>();
    const dictionary_t* const dictionary =
        array && array->size() == 1 ? array->front().get_if<dictionary_t>() : nullptr;
    if (!dictionary) throw std::invalid_argument("takes its arguments by name");
    return *dictionary;
}

} // namespace orrin
