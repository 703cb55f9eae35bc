#include "orrin/virtual_machine.h"

#include "operators.h"

#include "orrin/core_functions.h"
#include "orrin/dictionary.h"
#include "orrin/error.h"

#include <iterator>
#include <new>
#include <stdexcept>

namespace orrin {
namespace {

// Runs a lookup for a name, whose exceptions leave as errors that tell the name.
template <class Lookup>
any_regular_t look_up(name_t name, Lookup lookup) {
    try {
        return lookup();
    } catch (const error_t&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& exception) {
        throw std::runtime_error(in_quotes(name.text()) + ": " + exception.what());
    }
}

} // namespace

// One evaluation. What it leaves on the machine's stack goes with it.
class virtual_machine_t::run_t {
public:
    run_t(virtual_machine_t& machine, const expression_t& expression, std::span<const any_regular_t* const> variables)
        : fMachine(machine), fStack(machine.fStack), fExpression(expression), fVariables(variables),
          fBase(fStack.size()) {
        ++fMachine.fDepth;
    }
    ~run_t() {
        fStack.erase(fStack.begin() + static_cast<std::ptrdiff_t>(fBase), fStack.end());
        --fMachine.fDepth;
    }
    run_t(const run_t&) = delete;
    run_t& operator=(const run_t&) = delete;

    any_regular_t run();

private:
    void step(const instruction_t& instruction);
    void push_variable(std::uint32_t slot);
    void make_array(std::size_t count);
    void make_dictionary(std::size_t count);
    void call(name_t function);
    void jump_unless(std::uint32_t target);
    void jump_if(bool outcome, std::uint32_t target, std::string_view operation);

    any_regular_t& top() { return fStack.back(); }
    void push(any_regular_t value) { fStack.push_back(std::move(value)); }
    any_regular_t pop() {
        any_regular_t value = std::move(fStack.back());
        fStack.pop_back();
        return value;
    }
    auto from_top(std::size_t count) { return fStack.end() - static_cast<std::ptrdiff_t>(count); }

    virtual_machine_t& fMachine;
    vector<any_regular_t>& fStack;
    const expression_t& fExpression;
    const std::span<const any_regular_t* const> fVariables;
    const std::size_t fBase;
    std::size_t fNext = 0; // instruction
};

any_regular_t virtual_machine_t::run_t::run() {
    const std::span<const instruction_t> code = fExpression.code();
    if (code.empty()) return {};
    std::uint32_t offset = fExpression.offset();
    try {
        if (fMachine.fDepth > kDeepestEvaluation) throw std::length_error("evaluations call each other too deeply");
        while (fNext < code.size()) {
            const instruction_t& instruction = code[fNext++];
            offset = instruction.offset;
            step(instruction);
        }
    } catch (const error_t&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& exception) {
        throw fExpression.source()->error(offset, exception.what());
    }
    return pop();
}

void virtual_machine_t::run_t::step(const instruction_t& instruction) {
    switch (instruction.operation) {
    case operation_t::push_constant: return push(fExpression.constants()[instruction.operand]);
    case operation_t::push_variable: return push_variable(instruction.operand);
    case operation_t::make_array: return make_array(instruction.operand);
    case operation_t::make_dictionary: return make_dictionary(instruction.operand);
    case operation_t::call: return call(fExpression.functions()[instruction.operand]);
    case operation_t::member:
        top() = member_of(top(), fExpression.constants()[instruction.operand].get<name_t>());
        return;
    case operation_t::negate: top() = -operand(top(), "-"); return;
    case operation_t::plus: operand(top(), "+"); return;
    case operation_t::invert: top() = !condition(top(), "!"); return;

    case operation_t::index: {
        const any_regular_t index = pop();
        top() = element_or_entry(top(), index);
        return;
    }
    case operation_t::add:
    case operation_t::subtract:
    case operation_t::multiply:
    case operation_t::divide:
    case operation_t::remainder: {
        const any_regular_t right = pop();
        top() = combine(instruction.operation, top(), right);
        return;
    }
    case operation_t::equal:
    case operation_t::not_equal: {
        const any_regular_t right = pop();
        top() = (top() == right) == (instruction.operation == operation_t::equal);
        return;
    }
    case operation_t::less:
    case operation_t::greater:
    case operation_t::less_equal:
    case operation_t::greater_equal: {
        const any_regular_t right = pop();
        top() = compare_values(instruction.operation, top(), right);
        return;
    }
    case operation_t::jump: fNext = instruction.operand; return;
    case operation_t::jump_unless: return jump_unless(instruction.operand);
    case operation_t::jump_and_false: return jump_if(false, instruction.operand, "&&");
    case operation_t::jump_or_true: return jump_if(true, instruction.operand, "||");
    case operation_t::check_and: condition(top(), "&&"); return;
    case operation_t::check_or: condition(top(), "||"); return;
    }
}

void virtual_machine_t::run_t::push_variable(std::uint32_t slot) {
    if (slot < fVariables.size() && fVariables[slot]) return push(*fVariables[slot]);
    const name_t name = fExpression.variables()[slot];
    if (!fMachine.fVariableLookup) throw std::runtime_error("unknown variable " + in_quotes(name.text()));
    push(look_up(name, [&] { return fMachine.fVariableLookup(name); }));
}

void virtual_machine_t::run_t::make_array(std::size_t count) {
    const auto first = from_top(count);
    array_t elements(std::make_move_iterator(first), std::make_move_iterator(fStack.end()));
    fStack.erase(first, fStack.end());
    push(std::move(elements));
}

void virtual_machine_t::run_t::make_dictionary(std::size_t count) {
    const auto first = from_top(2 * count);
    vector<dictionary_t::value_type> entries;
    entries.reserve(count);
    for (auto at = first; at != fStack.end(); at += 2)
        entries.emplace_back(at[0].get<name_t>(), std::move(at[1]));
    fStack.erase(first, fStack.end());
    push(dictionary_t(std::move(entries)));
}

void virtual_machine_t::run_t::call(name_t function) {
    const bool isCore = is_core_function(function);
    if (!isCore && !fMachine.fFunctionLookup)
        throw std::runtime_error("unknown function " + in_quotes(function.text()));
    const any_regular_t arguments = pop();
    push(look_up(function, [&] {
        return isCore ? call_core_function(function, arguments) : fMachine.fFunctionLookup(function, arguments);
    }));
}

void virtual_machine_t::run_t::jump_unless(std::uint32_t target) {
    if (!condition(pop(), "?:")) fNext = target;
}

// The left side of && and ||: stays as the result if it decides, else makes place for the right side.
void virtual_machine_t::run_t::jump_if(bool outcome, std::uint32_t target, std::string_view operation) {
    if (condition(top(), operation) == outcome) {
        fNext = target;
    } else {
        fStack.pop_back();
    }
}

void virtual_machine_t::set_function_lookup(function_lookup_t lookup) {
    fFunctionLookup.swap(lookup);
}

void virtual_machine_t::set_variable_lookup(variable_lookup_t lookup) {
    fVariableLookup.swap(lookup);
}

bool virtual_machine_t::knows_variable(name_t name) const {
    if (!fVariableLookup) return false;
    try {
        fVariableLookup(name);
        return true;
    } catch (const std::exception&) {
        return false; // how a lookup says no
    }
}

any_regular_t virtual_machine_t::evaluate(const expression_t& expression) {
    return evaluate(expression, {});
}

any_regular_t virtual_machine_t::evaluate(const expression_t& expression,
                                          std::span<const any_regular_t* const> variables) {
    return run_t(*this, expression, variables).run();
}

} // namespace orrin
