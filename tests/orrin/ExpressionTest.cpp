#include "orrin/expression_parser.h"
#include "orrin/virtual_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace orrin {
namespace {

using testing::ElementsAre;

template <class Action>
std::string MessageOf(Action action) {
    try {
        action();
    } catch (const error_t& error) {
        return error.what();
    }
    return "no error";
}

std::string ParseError(std::string_view text) {
    return MessageOf([text] { parse_expression(text, "test"); });
}

TEST(Expression, ListsWhatItReadsAndCallsOnceInOrder) {
    const expression_t expression = parse_expression("b ? f(a, b) + g(c: a.d) : f(@e)[c]", "test");
    EXPECT_THAT(expression.variables(), ElementsAre(name_t("b"), name_t("a"), name_t("c")));
    EXPECT_THAT(expression.functions(), ElementsAre(name_t("f"), name_t("g")));
}

TEST(Expression, ManyVariablesKeepTheirSlots) {
    std::string text = "[";
    for (int i = 0; i < 200; ++i)
        text += "v" + std::to_string(i % 100) + ", ";
    const expression_t expression = parse_expression(text + "]", "test");
    ASSERT_EQ(expression.variables().size(), 100u);

    std::vector<any_regular_t> values(100);
    std::vector<const any_regular_t*> slots;
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(expression.variables()[i], name_t("v" + std::to_string(i)));
        values[i] = i;
        slots.push_back(&values[i]);
    }
    const any_regular_t result = virtual_machine_t().evaluate(expression, slots);
    for (int i = 0; i < 200; ++i)
        EXPECT_EQ(result.get<array_t>()[i], any_regular_t(i % 100));
}

TEST(Expression, OnlyLiteralsAreConstant) {
    const auto constant = [](std::string_view text) {
        const expression_t expression = parse_expression(text, "test");
        return expression.constant() ? *expression.constant() : any_regular_t(name_t("none"));
    };
    EXPECT_EQ(constant("-12"), any_regular_t(-12));
    EXPECT_EQ(constant("'a' \"b\""), any_regular_t("ab"));
    EXPECT_EQ(constant("(@bind)"), any_regular_t(name_t("bind")));
    EXPECT_EQ(constant("[]"), any_regular_t(name_t("none")));
    EXPECT_EQ(constant("a"), any_regular_t(name_t("none")));
    EXPECT_EQ(constant("-'a'"), any_regular_t(name_t("none")));
}

TEST(Expression, ListingShowsEveryInstructionWithItsPlace) {
    EXPECT_EQ(disassemble(parse_expression("on && f(a, -2) ?\n { x: 1 }.x : g[0] + \"s\"", "test")),
              "0 1:1 variable on\n"
              "1 1:4 jump-and-false -> 7\n"
              "2 1:9 variable a\n"
              "3 1:13 push -2\n"
              "4 1:8 array 2\n"
              "5 1:7 call f\n"
              "6 1:4 check-and\n"
              "7 1:16 jump-unless -> 13\n"
              "8 2:4 push @x\n"
              "9 2:7 push 1\n"
              "10 2:2 dictionary 1\n"
              "11 2:10 member @x\n"
              "12 2:13 jump -> 18\n"
              "13 2:15 variable g\n"
              "14 2:17 push 0\n"
              "15 2:16 index\n"
              "16 2:22 push \"s\"\n"
              "17 2:20 add\n");
}

TEST(Expression, PlacesCountEveryKindOfLineEnd) {
    EXPECT_EQ(ParseError("1 +\r\n/* a\r\n*/ \"b\r\n\" 2"),
              "test:4:3: expected the end of the expression, found a number");
    EXPECT_EQ(ParseError("1 // a\r + // b\r )"), "test:3:2: expected an expression, found ')'");
    EXPECT_EQ(ParseError("1 +\n\r\n\t$"), "test:3:2: unexpected '$'");
    EXPECT_EQ(ParseError("\xEF\xBB\xBF"
                         "1 +"),
              "test:1:7: expected an expression, found the end of the script");
    EXPECT_EQ(ParseError("1 /"), "test:1:4: expected an expression, found the end of the script");
}

TEST(Expression, BytesThatAreNoTextAreShownInHexadecimal) {
    EXPECT_EQ(ParseError("\x01"), "test:1:1: unexpected byte 0x01");
    EXPECT_EQ(ParseError("\xC3"), "test:1:1: unexpected byte 0xC3");
    EXPECT_EQ(ParseError("\xFF\xFF"), "test:1:1: unexpected byte 0xFF");
    EXPECT_EQ(ParseError(std::string_view("1\0", 2)), "test:1:2: unexpected byte 0x00");
}

TEST(Expression, NamedExpressionsAreReadUpToTheirEnd) {
    token_reader_t reader("bind: @gain, digits: 4, \"two words\": a ? b : c) next", "test");
    const vector<named_expression_t> attributes = parse_named_expressions(reader, token_kind_t::parenthesis_close);
    ASSERT_EQ(attributes.size(), 3u);
    EXPECT_EQ(attributes[0].name, name_t("bind"));
    EXPECT_EQ(*attributes[0].expression.constant(), any_regular_t(name_t("gain")));
    EXPECT_EQ(attributes[1].expression.position(), (position_t{1, 22}));
    EXPECT_EQ(attributes[2].name, name_t("two words"));
    EXPECT_THAT(attributes[2].expression.variables(), ElementsAre(name_t("a"), name_t("b"), name_t("c")));
    EXPECT_TRUE(reader.accept_word("next"));

    token_reader_t twice("digits: 4, bind: 1, digits: 5)", "test");
    EXPECT_EQ(MessageOf([&] { parse_named_expressions(twice, token_kind_t::parenthesis_close); }),
              "test:1:21: the key 'digits' occurs twice");
}

// Every form that can hold itself, without an end and as deep as is allowed.
TEST(Limits, NestingWithoutEndIsAnErrorAndNotTheEndOfTheStack) {
    constexpr int kEndless = 100'000;
    constexpr std::string_view kForms[] = {"(", "[", "{a:", "-", "!", "f(", "f(a:", "a[", "a ? ", "1 + (", "-[{a: f("};
    for (const std::string_view form : kForms) {
        std::string text;
        for (int i = 0; i < kEndless; ++i)
            text += form;
        EXPECT_THAT(ParseError(text), testing::EndsWith(": nested too deeply")) << form;
    }
}

TEST(Limits, ReasonableNestingIsAccepted) {
    const int depth = token_reader_t::kDeepestNesting - 1;
    const std::string text = std::string(depth, '(') + "7" + std::string(depth, ')');
    EXPECT_EQ(virtual_machine_t().evaluate(parse_expression(text, "test")), any_regular_t(7));
}

TEST(Limits, LongChainsAreNoNesting) {
    constexpr int kLength = 100'000;
    const auto chain = [](std::string_view first, std::string_view link) {
        std::string text(first);
        for (int i = 0; i < kLength; ++i)
            text += link;
        return virtual_machine_t().evaluate(parse_expression(text, "test"));
    };
    EXPECT_EQ(chain("0", "+1"), any_regular_t(kLength));
    EXPECT_EQ(chain("true", "&&true"), any_regular_t(true));
    EXPECT_EQ(chain("true", "||false"), any_regular_t(true));
    EXPECT_EQ(chain("''", "'a'"), any_regular_t(std::string(kLength, 'a')));
    std::string conditions;
    for (int i = 0; i < kLength; ++i)
        conditions += "false ? 1 : ";
    EXPECT_EQ(virtual_machine_t().evaluate(parse_expression(conditions + "2", "test")), any_regular_t(2));
}

TEST(Limits, NumbersMayHaveAnyNumberOfDigits) {
    constexpr std::size_t kDigits = 10'000;
    const std::pair<std::string, double> cases[] = {
        {"1." + std::string(kDigits, '0') + "1", 1},
        {"0." + std::string(kDigits, '0') + "1", 0},
        {std::string(kDigits, '0') + "25", 25},
        {std::string(kDigits, '9') + "e-10000", 1},
        {"0." + std::string(kDigits, '0') + "1e10001", 1},
    };
    for (const auto& [text, number] : cases) {
        EXPECT_EQ(virtual_machine_t().evaluate(parse_expression(text, "test")), any_regular_t(number));
    }
    EXPECT_EQ(ParseError(std::string(kDigits, '9')), "test:1:1: the number is too large");
}

TEST(Limits, ValuesOfAnExpressionAreBounded) {
    virtual_machine_t machine;
    any_regular_t deep;
    for (std::uint32_t i = 0; i < any_regular_t::kDeepestValue; ++i)
        deep = array_t{deep};
    const any_regular_t* const slots[] = {&deep};
    EXPECT_EQ(MessageOf([&] { machine.evaluate(parse_expression("1 == [a]", "test"), slots); }),
              "test:1:6: the value is nested too deeply");

    const any_regular_t text = std::string(60'000'000, 'x');
    const any_regular_t* const textSlots[] = {&text};
    EXPECT_EQ(MessageOf([&] { machine.evaluate(parse_expression("a + a", "test"), textSlots); }),
              "test:1:3: the value is too large");
}

} // namespace
} // namespace orrin
