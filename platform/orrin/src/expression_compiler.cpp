#include "expression_compiler.h"

#include "list_parser.h"

#include "orrin/expression_parser.h"

#include <iterator>

namespace orrin {

using nesting_t = token_reader_t::nesting_t;

namespace {

// How tight binary operators bind, the loosest first. ?: is looser than all of them.
enum precedence_t : int {
    kPrecedenceOr = 1,
    kPrecedenceAnd,
    kPrecedenceEquality,
    kPrecedenceComparison,
    kPrecedenceSum,
    kPrecedenceProduct,
};

struct binary_rule_t {
    token_kind_t token;
    int precedence;
    operation_t operation;
};

constexpr binary_rule_t kBinaryRules[] = {
    {token_kind_t::logical_or, kPrecedenceOr, operation_t::jump_or_true},
    {token_kind_t::logical_and, kPrecedenceAnd, operation_t::jump_and_false},
    {token_kind_t::equal, kPrecedenceEquality, operation_t::equal},
    {token_kind_t::not_equal, kPrecedenceEquality, operation_t::not_equal},
    {token_kind_t::less, kPrecedenceComparison, operation_t::less},
    {token_kind_t::greater, kPrecedenceComparison, operation_t::greater},
    {token_kind_t::less_equal, kPrecedenceComparison, operation_t::less_equal},
    {token_kind_t::greater_equal, kPrecedenceComparison, operation_t::greater_equal},
    {token_kind_t::plus, kPrecedenceSum, operation_t::add},
    {token_kind_t::minus, kPrecedenceSum, operation_t::subtract},
    {token_kind_t::star, kPrecedenceProduct, operation_t::multiply},
    {token_kind_t::slash, kPrecedenceProduct, operation_t::divide},
    {token_kind_t::percent, kPrecedenceProduct, operation_t::remainder},
};

// The rules stand in the order of the tokens.
constexpr auto kFirstBinaryToken = token_kind_t::logical_or;
constexpr auto kLastBinaryToken = token_kind_t::percent;
static_assert(std::size(kBinaryRules) ==
              static_cast<std::size_t>(kLastBinaryToken) - static_cast<std::size_t>(kFirstBinaryToken) + 1);

const binary_rule_t* find_binary_rule(token_kind_t kind) {
    if (kind < kFirstBinaryToken || kind > kLastBinaryToken) return nullptr;
    return &kBinaryRules[static_cast<std::size_t>(kind) - static_cast<std::size_t>(kFirstBinaryToken)];
}

name_t parse_name(token_reader_t& reader) {
    const token_t first = reader.next();
    if (!first.isQuoted || !reader.at(token_kind_t::string)) return name_t(first.text);
    return name_t(std::string(first.text) + parse_string(reader));
}

} // namespace

expression_t expression_compiler_t::compile() {
    fExpression.fSource = fReader.source();
    fExpression.fOffset = fReader.peek().offset;
    conditional();
    return std::move(fExpression);
}

// A chain a ? b : c ? d : e is read in a loop, whatever its length.
void expression_compiler_t::conditional() {
    const nesting_t nesting(fReader);
    vector<std::uint32_t> toEnd;
    binary(kPrecedenceOr);
    while (fReader.at(token_kind_t::question)) {
        const token_t question = fReader.next();
        const std::uint32_t toOtherwise = emit(operation_t::jump_unless, question);
        conditional();
        const token_t colon = fReader.expect(token_kind_t::colon, "of '?:'");
        toEnd.push_back(emit(operation_t::jump, colon));
        land(toOtherwise);
        binary(kPrecedenceOr);
    }
    for (const std::uint32_t jump : toEnd)
        land(jump);
}

// Operators that bind at least as tight as `loosest`, from left to right.
void expression_compiler_t::binary(int loosest) {
    unary();
    while (const binary_rule_t* const rule = find_binary_rule(fReader.peek().kind)) {
        if (rule->precedence < loosest) return;
        const token_t sign = fReader.next();
        if (rule->operation == operation_t::jump_and_false) {
            logical(sign, rule->operation, operation_t::check_and, rule->precedence + 1);
        } else if (rule->operation == operation_t::jump_or_true) {
            logical(sign, rule->operation, operation_t::check_or, rule->precedence + 1);
        } else {
            binary(rule->precedence + 1);
            emit(rule->operation, sign);
        }
    }
}

void expression_compiler_t::logical(const token_t& sign, operation_t jump, operation_t check, int rightSide) {
    const std::uint32_t toEnd = emit(jump, sign);
    binary(rightSide);
    emit(check, sign);
    land(toEnd);
}

void expression_compiler_t::unary() {
    const auto operation = [kind = fReader.peek().kind] {
        if (kind == token_kind_t::exclamation) return operation_t::invert;
        if (kind == token_kind_t::minus) return operation_t::negate;
        return operation_t::plus;
    }();
    if (operation == operation_t::plus && !fReader.at(token_kind_t::plus)) return postfix();

    const nesting_t nesting(fReader);
    const token_t sign = fReader.next();
    const std::size_t operandBegin = here();
    unary();
    if (operation == operation_t::negate && negate_constant(operandBegin)) return;
    emit(operation, sign);
}

void expression_compiler_t::postfix() {
    primary();
    for (;;) {
        if (fReader.at(token_kind_t::bracket_open)) {
            index(fReader.next());
        } else if (fReader.at(token_kind_t::dot)) {
            member(fReader.next());
        } else {
            return;
        }
    }
}

void expression_compiler_t::primary() {
    switch (fReader.peek().kind) {
    case token_kind_t::number: {
        const token_t token = fReader.next();
        return emit_constant(token.number, token);
    }
    case token_kind_t::name: {
        const token_t token = fReader.peek();
        return emit_constant(parse_name(fReader), token);
    }
    case token_kind_t::string: {
        const token_t first = fReader.peek();
        return emit_constant(parse_string(fReader), first);
    }
    case token_kind_t::identifier: return word();
    case token_kind_t::bracket_open: return array();
    case token_kind_t::brace_open: return dictionary();
    case token_kind_t::parenthesis_open: return parenthesised();
    default: fReader.fail_expected("an expression");
    }
}

void expression_compiler_t::word() {
    const token_t token = fReader.next();
    if (token.text == "true") return emit_constant(true, token);
    if (token.text == "false") return emit_constant(false, token);
    if (token.text == "empty") return emit_constant({}, token);
    if (fReader.at(token_kind_t::parenthesis_open)) return call(token);
    emit(operation_t::push_variable, token, fVariables.index_of(name_t(token.text)));
}

// Named arguments are recognised by the colon behind the first word.
void expression_compiler_t::call(const token_t& function) {
    const token_t open = fReader.next();
    const token_kind_t first = fReader.peek().kind;
    const bool isNamed = (first == token_kind_t::identifier || first == token_kind_t::string) &&
                         fReader.peek(1).kind == token_kind_t::colon;
    if (isNamed) {
        emit(operation_t::make_dictionary, open, entries(token_kind_t::parenthesis_close));
    } else {
        emit(operation_t::make_array, open, elements(token_kind_t::parenthesis_close));
    }
    emit(operation_t::call, function, fFunctions.index_of(name_t(function.text)));
}

void expression_compiler_t::array() {
    const token_t open = fReader.next();
    emit(operation_t::make_array, open, elements(token_kind_t::bracket_close));
}

void expression_compiler_t::dictionary() {
    const token_t open = fReader.next();
    emit(operation_t::make_dictionary, open, entries(token_kind_t::brace_close));
}

void expression_compiler_t::parenthesised() {
    fReader.next();
    conditional();
    fReader.expect(token_kind_t::parenthesis_close);
}

void expression_compiler_t::index(const token_t& bracket) {
    conditional();
    fReader.expect(token_kind_t::bracket_close, "behind the index");
    emit(operation_t::index, bracket);
}

void expression_compiler_t::member(const token_t& dot) {
    const name_t key = fReader.expect_name("a key");
    emit(operation_t::member, dot, static_cast<std::uint32_t>(fExpression.fConstants.size()));
    fExpression.fConstants.emplace_back(key);
}

std::uint32_t expression_compiler_t::elements(token_kind_t close) {
    std::uint32_t count = 0;
    parse_list(fReader, close, [&] {
        conditional();
        ++count;
    });
    return count;
}

std::uint32_t expression_compiler_t::entries(token_kind_t close) {
    vector<key_t> keys;
    parse_list(fReader, close, [&] {
        const token_t token = fReader.peek();
        keys.push_back(parse_key(fReader));
        emit_constant(keys.back().name, token);
        conditional();
    });
    check_unique(fReader, keys);
    return static_cast<std::uint32_t>(keys.size());
}

// The minus of a literal becomes part of it.
bool expression_compiler_t::negate_constant(std::size_t operandBegin) {
    const bool isConstant =
        operandBegin + 1 == here() && fExpression.fCode.back().operation == operation_t::push_constant;
    const double* const number = isConstant ? fExpression.fConstants.back().get_if<double>() : nullptr;
    if (!number) return false;
    fExpression.fConstants.back() = -*number;
    return true;
}

std::uint32_t expression_compiler_t::emit(operation_t operation, const token_t& token, std::uint32_t operand) {
    fExpression.fCode.push_back({operand, token.offset, operation});
    return here() - 1;
}

void expression_compiler_t::emit_constant(any_regular_t value, const token_t& token) {
    emit(operation_t::push_constant, token, static_cast<std::uint32_t>(fExpression.fConstants.size()));
    fExpression.fConstants.push_back(std::move(value));
}

} // namespace orrin
