#pragma once

#include "slot_numbers.h"

#include "orrin/expression.h"
#include "orrin/token_reader.h"

namespace orrin {

// Reads one expression and writes its instructions on the way: one function a form.
class expression_compiler_t {
public:
    explicit expression_compiler_t(token_reader_t& reader)
        : fReader(reader), fVariables(fExpression.fVariables), fFunctions(fExpression.fFunctions) {}

    expression_t compile();

private:
    void conditional();
    void binary(int loosest);
    void logical(const token_t& sign, operation_t jump, operation_t check, int rightSide);
    void unary();
    void postfix();
    void primary();
    void word();
    void call(const token_t& function);
    void array();
    void dictionary();
    void parenthesised();
    void index(const token_t& bracket);
    void member(const token_t& dot);

    std::uint32_t elements(token_kind_t close);
    std::uint32_t entries(token_kind_t close);
    bool negate_constant(std::size_t operandBegin);

    std::uint32_t here() const { return static_cast<std::uint32_t>(fExpression.fCode.size()); }
    std::uint32_t emit(operation_t operation, const token_t& token, std::uint32_t operand = 0);
    void emit_constant(any_regular_t value, const token_t& token);
    void land(std::uint32_t jump) { fExpression.fCode[jump].operand = here(); }

    token_reader_t& fReader;
    expression_t fExpression;
    slot_numbers_t fVariables;
    slot_numbers_t fFunctions;
};

} // namespace orrin
