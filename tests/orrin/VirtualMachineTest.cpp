#include "orrin/virtual_machine.h"

#include "orrin/expression_parser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>

namespace orrin {
namespace {

expression_t Parse(std::string_view text) {
    return parse_expression(text, "test");
}

std::string ErrorOf(virtual_machine_t& machine, std::string_view text) {
    try {
        machine.evaluate(Parse(text));
    } catch (const error_t& error) {
        return error.what();
    }
    return "no error";
}

TEST(VirtualMachine, SlotsComeBeforeTheLookup) {
    virtual_machine_t machine;
    machine.set_variable_lookup([](name_t name) { return any_regular_t(name); });
    const any_regular_t one = 1;
    const any_regular_t* const slots[] = {&one, nullptr};
    EXPECT_EQ(machine.evaluate(Parse("[a, align_fill]"), slots), any_regular_t(array_t{1, name_t("align_fill")}));
}

TEST(VirtualMachine, WithoutLookupsEverythingIsUnknown) {
    virtual_machine_t machine;
    EXPECT_EQ(ErrorOf(machine, "1 + gain"), "test:1:5: unknown variable 'gain'");
    EXPECT_EQ(ErrorOf(machine, "1 + gain()"), "test:1:5: unknown function 'gain'");
    EXPECT_EQ(machine.evaluate(expression_t()), any_regular_t());
}

TEST(VirtualMachine, StandardExceptionsOfLookupsGetTheirPlaceAndOthersPassAsTheyAre) {
    virtual_machine_t machine;
    machine.set_variable_lookup([](name_t) -> any_regular_t { throw std::runtime_error("Variable lookup failed"); });
    machine.set_function_lookup([](name_t function, const any_regular_t&) -> any_regular_t {
        if (function == name_t("memory")) throw std::bad_alloc();
        if (function == name_t("nested")) throw error_t("other", {7, 8}, "inside");
        throw 42;
    });
    EXPECT_EQ(ErrorOf(machine, "[1,\n gain]"), "test:2:2: 'gain': Variable lookup failed");
    EXPECT_EQ(ErrorOf(machine, "nested()"), "other:7:8: inside");
    EXPECT_THROW(machine.evaluate(Parse("memory()")), std::bad_alloc);
    EXPECT_THROW(machine.evaluate(Parse("number()")), int);
}

// A lookup that evaluates on the machine that calls it, as a sheet's does: nothing of the outer evaluation is lost.
TEST(VirtualMachine, LookupsMayEvaluateOnTheSameMachine) {
    virtual_machine_t machine;
    const expression_t inner = Parse("[1, [2, 3], 'text'][1][0] * 10");
    const expression_t failing = Parse("[1, 2, [3, -'a']]");
    machine.set_variable_lookup([&](name_t) { return machine.evaluate(inner); });
    machine.set_function_lookup([&](name_t, const any_regular_t& arguments) {
        try {
            machine.evaluate(failing);
        } catch (const error_t&) {
        }
        return any_regular_t(array_t{arguments, machine.evaluate(inner)});
    });
    EXPECT_EQ(machine.evaluate(Parse("[0, a, f(a, 1), a + 1]")),
              any_regular_t(array_t{0, 20, array_t{array_t{20, 1}, 20}, 21}));
}

TEST(VirtualMachine, EvaluationsThatCallThemselvesForEverAreAnError) {
    virtual_machine_t machine;
    const expression_t self = Parse("1 + a");
    machine.set_variable_lookup([&](name_t) { return machine.evaluate(self); });
    EXPECT_EQ(ErrorOf(machine, "1 + a"), "test:1:1: evaluations call each other too deeply");

    machine.set_variable_lookup([](name_t) { return any_regular_t(1); });
    EXPECT_EQ(machine.evaluate(self), any_regular_t(2)); // what went wrong leaves nothing behind
}

} // namespace
} // namespace orrin
