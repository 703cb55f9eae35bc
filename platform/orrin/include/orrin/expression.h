#pragma once

#include "orrin/any_regular.h"
#include "orrin/source.h"

#include <cstdint>
#include <span>

namespace orrin {

enum class operation_t : std::uint8_t {
    push_constant,   // operand: index of a constant
    push_variable,   // operand: slot of the variable
    make_array,      // operand: how many elements stand on the stack
    make_dictionary, // operand: how many pairs of name and value stand on the stack
    call,            // operand: index of the function in functions(); the arguments stand on the stack
    index,
    member, // operand: index of the key, a constant
    negate,
    plus,
    invert,
    add,
    subtract,
    multiply,
    divide,
    remainder,
    equal,
    not_equal,
    less,
    greater,
    less_equal,
    greater_equal,
    jump,           // operand: index of an instruction, here and below
    jump_unless,    // takes the condition of ?:
    jump_and_false, // false stays on the stack as the result of &&, true is taken off
    jump_or_true,   // true stays on the stack as the result of ||, false is taken off
    check_and,      // the right side of && is a bool
    check_or,       // the right side of || is a bool
};

struct instruction_t {
    std::uint32_t operand = 0;
    std::uint32_t offset = 0; // in the script; see source_t
    operation_t operation = operation_t::push_constant;
};

// An expression, compiled: a flat list of instructions for a stack machine. Depends on no machine and no script text,
// can be copied, moved and evaluated again and again. Made by parse_expression (expression_parser.h).
//
// Variables are numbered: the slot of a variable is its index in variables(). Whoever evaluates the expression often
// binds the slots once to where the values are, see virtual_machine_t.
class expression_t {
public:
    expression_t() = default; // no instructions: evaluates to the empty value

    // The variables that it reads, each once, in the order of their first use; whether they are read in a given
    // evaluation depends on &&, || and ?:.
    const vector<name_t>& variables() const noexcept { return fVariables; }
    // The functions that it calls, each once.
    const vector<name_t>& functions() const noexcept { return fFunctions; }
    // The value if the expression is nothing but a constant (a literal, possibly negated), else null.
    const any_regular_t* constant() const noexcept;

    // Where it begins; the default one has no source.
    std::uint32_t offset() const noexcept { return fOffset; }
    const source_ptr_t& source() const noexcept { return fSource; }
    position_t position() const noexcept { return fSource ? fSource->position(fOffset) : position_t{}; }

    std::span<const instruction_t> code() const noexcept { return fCode; }
    std::span<const any_regular_t> constants() const noexcept { return fConstants; }

private:
    friend class expression_compiler_t;

    vector<instruction_t> fCode;
    vector<any_regular_t> fConstants;
    vector<name_t> fVariables;
    vector<name_t> fFunctions;
    source_ptr_t fSource;
    std::uint32_t fOffset = 0;
};

// One line an instruction: index, line:column, operation, operand. For tests and for looking at scripts.
std::string disassemble(const expression_t& expression);

} // namespace orrin
