#pragma once

#include "orrin/expression.h"

#include <boost/function.hpp>

#include <span>

namespace orrin {

// The arguments are an array (of a call with positional arguments) or a dictionary (of named ones). Says that it knows
// no such function, or that it does not like the arguments, by throwing a standard exception.
using function_lookup_t = boost::function<any_regular_t(name_t function, const any_regular_t& arguments)>;
// Throws a standard exception for a name that it does not know.
using variable_lookup_t = boost::function<any_regular_t(name_t variable)>;

// Evaluates expressions. Functions, beyond those of the language (core_functions.h), and variables come from two
// lookups that its owner installs; without one every function or variable is unknown. The lookups may evaluate on the
// same machine again. User-interface thread.
class virtual_machine_t {
public:
    void set_function_lookup(function_lookup_t lookup);
    void set_variable_lookup(variable_lookup_t lookup);
    const function_lookup_t& function_lookup() const noexcept { return fFunctionLookup; }
    // Whether the lookup for variables has a value for the name now.
    bool knows_variable(name_t name) const;

    // Throws error_t with the place in the script: for what the expression does wrong, and with the message of whatever
    // standard exception a lookup throws (an error_t and std::bad_alloc pass as they are). Nothing stays behind on the
    // machine. Numbers are IEEE 754: dividing by zero is no error.
    any_regular_t evaluate(const expression_t& expression);

    // With the variables' values by slot, at least expression.variables().size() of them. A variable whose pointer is
    // null is looked up by name. The values must stay until the end of the evaluation.
    any_regular_t evaluate(const expression_t& expression, std::span<const any_regular_t* const> variables);

    // Of evaluations inside evaluations, by way of the lookups; one more is an error.
    static constexpr int kDeepestEvaluation = 100;

private:
    class run_t;

    function_lookup_t fFunctionLookup;
    variable_lookup_t fVariableLookup;
    vector<any_regular_t> fStack; // of all running evaluations, each above the one that called it
    int fDepth = 0;
};

} // namespace orrin
