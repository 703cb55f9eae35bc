#include "orrin/expression.h"

#include "orrin/serialization.h"

#include <array>

namespace orrin {
namespace {

// What stands behind an operation in a listing.
enum class operand_kind_t : std::uint8_t { none, constant, variable, function, count, target };

struct operation_description_t {
    std::string_view name;
    operand_kind_t operand = operand_kind_t::none;
};

// In the order of operation_t.
constexpr std::array<operation_description_t, 27> kDescriptions = {{
    {"push", operand_kind_t::constant},
    {"variable", operand_kind_t::variable},
    {"array", operand_kind_t::count},
    {"dictionary", operand_kind_t::count},
    {"call", operand_kind_t::function},
    {"index"},
    {"member", operand_kind_t::constant},
    {"negate"},
    {"plus"},
    {"not"},
    {"add"},
    {"subtract"},
    {"multiply"},
    {"divide"},
    {"remainder"},
    {"equal"},
    {"not-equal"},
    {"less"},
    {"greater"},
    {"less-equal"},
    {"greater-equal"},
    {"jump", operand_kind_t::target},
    {"jump-unless", operand_kind_t::target},
    {"jump-and-false", operand_kind_t::target},
    {"jump-or-true", operand_kind_t::target},
    {"check-and"},
    {"check-or"},
}};

std::string operand_text(const expression_t& expression, operand_kind_t kind, std::uint32_t operand) {
    switch (kind) {
    case operand_kind_t::none: break;
    case operand_kind_t::constant: return ' ' + serialize_regular(expression.constants()[operand]);
    case operand_kind_t::variable: return ' ' + std::string(expression.variables()[operand].text());
    case operand_kind_t::function: return ' ' + std::string(expression.functions()[operand].text());
    case operand_kind_t::count: return ' ' + std::to_string(operand);
    case operand_kind_t::target: return " -> " + std::to_string(operand);
    }
    return {};
}

} // namespace

const any_regular_t* expression_t::constant() const noexcept {
    const bool isConstant = fCode.size() == 1 && fCode.front().operation == operation_t::push_constant;
    return isConstant ? &fConstants[fCode.front().operand] : nullptr;
}

std::string disassemble(const expression_t& expression) {
    std::string text;
    for (std::size_t i = 0; i < expression.code().size(); ++i) {
        const instruction_t& instruction = expression.code()[i];
        const operation_description_t& description = kDescriptions[static_cast<std::size_t>(instruction.operation)];
        const position_t position = expression.source()->position(instruction.offset);
        text += std::to_string(i) + ' ' + std::to_string(position.line) + ':' + std::to_string(position.column) + ' ';
        text += description.name;
        text += operand_text(expression, description.operand, instruction.operand) + '\n';
    }
    return text;
}

} // namespace orrin
