#include "orrin/core_functions.h"

#include "orrin/error.h"
#include "orrin/expression.h"
#include "orrin/functions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace orrin {

namespace {

any_regular_t round_number(const any_regular_t& arguments) {
    return std::round(positional_arguments(arguments, 1).front().get<double>());
}

// The argument that comes before all others.
template <class Before>
any_regular_t extreme(const any_regular_t& arguments, Before before) {
    const array_t* const array = arguments.get_if<array_t>();
    if (!array || array->empty()) throw std::invalid_argument("takes one number or more, by position");
    double found = array->front().get<double>();
    for (const any_regular_t& argument : *array) {
        const double number = argument.get<double>();
        if (std::isnan(number)) return std::numeric_limits<double>::quiet_NaN();
        if (before(number, found)) found = number;
    }
    return found;
}

any_regular_t least(const any_regular_t& arguments) {
    return extreme(arguments, std::less<>());
}

any_regular_t greatest(const any_regular_t& arguments) {
    return extreme(arguments, std::greater<>());
}

struct core_function_t {
    name_t name;
    any_regular_t (*call)(const any_regular_t& arguments);
};

const core_function_t* find_core_function(name_t name) {
    static const std::array<core_function_t, 3> kFunctions{
        {{name_t("round"), &round_number}, {name_t("min"), &least}, {name_t("max"), &greatest}}};
    const auto found = std::ranges::find(kFunctions, name, &core_function_t::name);
    return found != kFunctions.end() ? &*found : nullptr;
}

} // namespace

bool is_core_function(name_t name) {
    return find_core_function(name) != nullptr;
}

any_regular_t call_core_function(name_t name, const any_regular_t& arguments) {
    const core_function_t* const function = find_core_function(name);
    if (!function) throw std::invalid_argument("is no function of the language");
    return function->call(arguments);
}

bool calls_host(const expression_t& expression) {
    return !std::ranges::all_of(expression.functions(), &is_core_function);
}

} // namespace orrin
