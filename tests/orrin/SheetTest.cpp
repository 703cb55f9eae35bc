#include "orrin/sheet.h"
#include "orrin/dictionary.h"

#include <boost/bind/bind.hpp>
#include <boost/signals2/trackable.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace orrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

const name_t kA("a");
const name_t kB("b");
const name_t kIn0("in0");
const name_t kOut0("out0");
const name_t kOut1("out1");

constexpr const char* kTwoOutputs = R"(sheet two {
input: in0: 1;
interface: unlink a: in0;
output: out0 <== a * 2; out1 <== a > 5; })";

double Number(const any_regular_t& value) {
    return value.get<double>();
}

// What subscribers were told, in order.
class Log {
public:
    sheet_t::slot_t For(std::string name) {
        return [this, name = std::move(name)](const any_regular_t& value) {
            const double* const number = value.get_if<double>();
            fLines.push_back(name + (number ? " " + std::to_string(static_cast<int>(*number)) : ""));
        };
    }
    std::vector<std::string> Take() { return std::exchange(fLines, {}); }

private:
    std::vector<std::string> fLines;
};

class Sheet : public testing::Test {
protected:
    sheet_t fSheet;
    Log fLog;
};

TEST_F(Sheet, SubscribersHearTheValueAtOnceAndThenOfChangesOnly) {
    fSheet.load(kTwoOutputs, "test");
    fSheet.subscribe(kOut1, fLog.For("out1"));
    fSheet.subscribe(kOut0, fLog.For("out0"));
    fSheet.subscribe(kA, fLog.For("a"));
    EXPECT_THAT(fLog.Take(), ElementsAre("out1", "out0 2", "a 1"));
    fSheet.set(kA, 3);
    EXPECT_THAT(fLog.Take(), IsEmpty());
    fSheet.update();
    EXPECT_THAT(fLog.Take(), ElementsAre("a 3", "out0 6"));
    fSheet.set(kA, 3);
    fSheet.update();
    EXPECT_THAT(fLog.Take(), IsEmpty());
    fSheet.set(kA, 9);
    fSheet.update();
    EXPECT_THAT(fLog.Take(), ElementsAre("a 9", "out0 18", "out1"));
}

TEST_F(Sheet, SetIsSeenAfterTheUpdate) {
    fSheet.load(kTwoOutputs, "test");
    fSheet.set(kA, 4);
    EXPECT_EQ(Number(fSheet[kA]), 1);
    EXPECT_EQ(Number(fSheet.contributed(kA)), 4);
    fSheet.update();
    EXPECT_EQ(Number(fSheet[kA]), 4);
}

TEST_F(Sheet, SubscribersSeeAllCellsUpToDate) {
    fSheet.load(kTwoOutputs, "test");
    bool high = false;
    fSheet.subscribe(kOut0, [&](const any_regular_t&) { high = fSheet[kOut1].get<bool>(); });
    fSheet.set(kA, 6);
    fSheet.update();
    EXPECT_TRUE(high);
}

TEST_F(Sheet, ConnectionsEndWhenCutOrWhenTheirObjectDies) {
    struct Listener : boost::signals2::trackable {
        explicit Listener(int& calls) : fCalls(calls) {}
        void Hear(const any_regular_t&) { ++fCalls; }
        int& fCalls;
    };
    fSheet.load(kTwoOutputs, "test");
    int tracked = 0;
    auto listener = std::make_unique<Listener>(tracked);
    fSheet.subscribe(kOut0, boost::bind(&Listener::Hear, listener.get(), boost::placeholders::_1));
    boost::signals2::connection cut = fSheet.subscribe(kOut0, fLog.For("cut"));
    fSheet.subscribe(kOut0, fLog.For("dropped"));
    fLog.Take();
    cut.disconnect();
    listener.reset();
    fSheet.set(kA, 2);
    fSheet.update();
    EXPECT_EQ(tracked, 1);
    EXPECT_THAT(fLog.Take(), ElementsAre("dropped 4"));
}

TEST_F(Sheet, SubscriberThatSetsCellsWaitsForTheNextUpdate) {
    fSheet.load("sheet x { interface: a: 1; b: 1; output: out0 <== a; out1 <== b; }", "test");
    fSheet.subscribe(kOut0, [&](const any_regular_t& value) { fSheet.set(kB, value); });
    fSheet.subscribe(kOut1, fLog.For("out1"));
    fLog.Take();
    fSheet.set(kA, 7);
    fSheet.update();
    EXPECT_THAT(fLog.Take(), IsEmpty());
    fSheet.update();
    EXPECT_THAT(fLog.Take(), ElementsAre("out1 7"));
}

TEST_F(Sheet, SubscriberThatUpdatesMakesAnotherRoundBehindTheRunningOne) {
    fSheet.load("sheet x { interface: a: 1; b: 1; output: out0 <== a; out1 <== a + b; }", "test");
    fSheet.subscribe(kOut0, [&](const any_regular_t& value) {
        fSheet.set(kB, value);
        fSheet.update();
    });
    fSheet.subscribe(kOut1, fLog.For("out1"));
    fLog.Take();
    fSheet.set(kA, 7);
    fSheet.update();
    EXPECT_THAT(fLog.Take(), ElementsAre("out1 8", "out1 14"));
}

TEST_F(Sheet, SubscribersThatNeverStopAreReported) {
    fSheet.load("sheet x { interface: a: 1; output: out0 <== a; }", "test");
    std::vector<std::string> told;
    fSheet.set_error_handler([&](const error_t& error) { told.push_back(error.message()); });
    const boost::signals2::connection endless = fSheet.subscribe(kOut0, [&](const any_regular_t& value) {
        if (Number(value) < 2) return;
        fSheet.set(kA, Number(value) + 1);
        fSheet.update();
    });
    fSheet.set(kA, 2);
    fSheet.update();
    EXPECT_THAT(told, ElementsAre(HasSubstr("without an end")));
    EXPECT_EQ(fSheet.errors().size(), 1u);
    endless.disconnect();
    fSheet.set(kA, 0);
    fSheet.update();
    EXPECT_EQ(Number(fSheet[kOut0]), 0);
    EXPECT_THAT(fSheet.errors(), IsEmpty());
}

TEST_F(Sheet, SubscriberThatThrowsKeepsNobodyFromHearing) {
    fSheet.load(kTwoOutputs, "test");
    bool throws = false;
    fSheet.subscribe(kOut0, [&](const any_regular_t&) {
        if (throws) throw std::runtime_error("first");
    });
    fSheet.subscribe(kOut0, fLog.For("out0"));
    fSheet.subscribe(kOut1, fLog.For("out1"));
    fLog.Take();
    throws = true;
    fSheet.set(kA, 8);
    EXPECT_THROW(fSheet.update(), std::runtime_error);
    EXPECT_THAT(fLog.Take(), ElementsAre("out0 16", "out1"));
    throws = false;
    fSheet.set(kA, 9);
    fSheet.update();
    EXPECT_THAT(fLog.Take(), ElementsAre("out0 18"));
}

TEST(SheetLife, SubscriberMayDestroyTheSheet) {
    auto sheet = std::make_unique<sheet_t>();
    sheet->load(kTwoOutputs, "test");
    int calls = 0;
    const auto destroy = [&](const any_regular_t&) {
        if (++calls == 2) sheet.reset();
    };
    sheet->subscribe(kA, destroy);
    sheet->subscribe(kOut0, [&](const any_regular_t&) { calls += 100; });
    calls = 1;
    sheet->set(kA, 3);
    sheet->update();
    EXPECT_EQ(sheet, nullptr);
    EXPECT_EQ(calls, 2);
}

TEST_F(Sheet, CellThatThePlanOverrulesTellsItsWidget) {
    fSheet.load("sheet x { input: in0: 1; interface: a: 1 <== in0 * 2; }", "test");
    fSheet.subscribe(kA, fLog.For("a"));
    fLog.Take();
    fSheet.set(kA, 50);
    fSheet.update();
    EXPECT_THAT(fLog.Take(), ElementsAre("a 2"));
}

TEST_F(Sheet, ScriptThatFailsToLoadLeavesEverythingAsItWas) {
    fSheet.load(kTwoOutputs, "test");
    fSheet.subscribe(kOut0, fLog.For("out0"));
    const char* const broken[] = {"sheet", "sheet x { output: out0 <== nothing; }", "sheet x { constant: a: 1 + @b; }",
                                  "sheet x { interface: a: 1; logic: relate { a <== 1; } relate { a <== 2; } }"};
    for (const char* const script : broken)
        EXPECT_THROW(fSheet.load(script, "test"), error_t) << script;
    fLog.Take();
    fSheet.set(kA, 5);
    fSheet.update();
    EXPECT_THAT(fLog.Take(), ElementsAre("out0 10"));
}

TEST_F(Sheet, LoadingAgainReplacesCellsAndEndsConnections) {
    fSheet.load(kTwoOutputs, "test");
    const boost::signals2::connection connection = fSheet.subscribe(kOut0, fLog.For("out0"));
    fSheet.load("sheet other { interface: b: 1; }", "test");
    EXPECT_FALSE(connection.connected());
    EXPECT_FALSE(fSheet.has_cell(kA));
    EXPECT_EQ(fSheet.name(), name_t("other"));
}

TEST_F(Sheet, LoadingFromWithinAnUpdateIsRefused) {
    fSheet.load(kTwoOutputs, "test");
    int refused = 0;
    bool tries = false;
    fSheet.subscribe(kOut0, [&](const any_regular_t&) {
        if (!tries) return;
        EXPECT_THROW(fSheet.load("", "test"), std::logic_error);
        ++refused;
    });
    tries = true;
    fSheet.set(kA, 2);
    fSheet.update();
    EXPECT_EQ(refused, 1);
    EXPECT_TRUE(fSheet.has_cell(kA));
}

TEST_F(Sheet, MisuseIsRefusedByName) {
    fSheet.load("sheet x { constant: c: 1; input: in0: 1; output: out0 <== in0; }", "test");
    EXPECT_THROW(fSheet.get(kA), std::out_of_range);
    EXPECT_THROW(fSheet.set(kA, 1), std::out_of_range);
    EXPECT_THROW(fSheet.subscribe(name_t(), fLog.For("none")), std::out_of_range);
    EXPECT_THROW(fSheet.set(kOut0, 1), std::invalid_argument);
    EXPECT_THROW(fSheet.set(name_t("c"), 1), std::invalid_argument);
    EXPECT_TRUE(fSheet.has_input(kIn0));
    EXPECT_FALSE(fSheet.has_input(kOut0));
    EXPECT_TRUE(fSheet.has_output(kOut0));
    EXPECT_FALSE(fSheet.has_output(kA));
}

TEST_F(Sheet, CellsAreListedAsDeclared) {
    fSheet.load("sheet x {\ninput: in0;\ninterface: unlink a: 1;\n  b <== 1;\noutput: out0 <== a; }", "test");
    const std::vector<cell_info_t> cells = fSheet.cells();
    ASSERT_EQ(cells.size(), 4u);
    EXPECT_EQ(cells[0].name, kIn0);
    EXPECT_EQ(cells[0].kind, cell_kind_t::input);
    EXPECT_FALSE(cells[0].initialised);
    EXPECT_EQ(cells[1].position, (position_t{3, 19}));
    EXPECT_FALSE(cells[1].linked);
    EXPECT_TRUE(cells[1].initialised);
    EXPECT_TRUE(cells[2].linked);
    EXPECT_EQ(cell_kind_name(cells[3].kind), "output");
}

class SheetWithLookups : public Sheet {
protected:
    SheetWithLookups() {
        fSheet.machine().set_function_lookup([this](name_t function, const any_regular_t& arguments) -> any_regular_t {
            ++fCalls;
            if (function == name_t("host")) return fHost;
            if (function == name_t("first")) return arguments.get<array_t>().at(0);
            throw std::runtime_error("no such function");
        });
        fSheet.machine().set_variable_lookup([this](name_t name) -> any_regular_t {
            if (name == name_t("align_left")) return name;
            return fSheet.get(name);
        });
    }

    double fHost = 1;
    int fCalls = 0;
};

TEST_F(SheetWithLookups, NamesThatAreNoCellsAreLookedUp) {
    fSheet.load("sheet x { constant: c: align_left; output: out0 <== first(c) == @align_left; }", "test");
    EXPECT_EQ(fSheet[kOut0], any_regular_t(true));
    // A cell of the old script is none of the new one.
    fSheet.load("sheet x { input: in0: 1; }", "test");
    EXPECT_THROW(fSheet.load("sheet x { output: out0 <== in0; }", "test"), error_t);
}

TEST_F(SheetWithLookups, FunctionsAreCalledAgainWhenTheHostChangedAnInput) {
    fSheet.load(R"(sheet x {
        input: in0: 1;
        interface: a: 1; unlink b: host();
        output: out0 <== host() + 0 * a; out1 <== a; })",
                "test");
    fHost = 5;
    fSheet.set(kIn0, 2);
    fSheet.update();
    EXPECT_EQ(Number(fSheet[kOut0]), 5);
    fSheet.reinitialise();
    EXPECT_EQ(Number(fSheet[kB]), 5);
    fCalls = 0;
    fSheet.set(kIn0, 2);
    fSheet.update();
    fSheet.reinitialise();
    EXPECT_EQ(fCalls, 0);
}

TEST_F(SheetWithLookups, FunctionThatUsesTheSheetSeesTheLastUpdate) {
    std::vector<double> seen;
    fSheet.machine().set_function_lookup([&](name_t, const any_regular_t& arguments) -> any_regular_t {
        if (fSheet.has_cell(kA)) seen.push_back(Number(fSheet.get(kA)));
        fSheet.update();
        return arguments.get<array_t>().at(0);
    });
    fSheet.load("sheet x { interface: a: 1; output: out0 <== f(a); }", "test");
    fSheet.set(kA, 2);
    fSheet.update();
    EXPECT_THAT(seen, ElementsAre(1));
    EXPECT_EQ(Number(fSheet[kOut0]), 2);
}

TEST_F(SheetWithLookups, ErrorsAreToldOnceAndNameScriptCellAndReason) {
    std::vector<std::string> told;
    fSheet.set_error_handler([&](const error_t& error) { told.emplace_back(error.what()); });
    fSheet.load("sheet x {\ninput: in0: 1;\noutput: out0 <== in0 > 5 ? missing(1) : in0; }", "gain");
    for (const int value : {6, 7, 8, 1, 9}) {
        fSheet.set(kIn0, value);
        fSheet.update();
    }
    const auto expected = HasSubstr("gain:3:28: cell 'out0': ");
    EXPECT_THAT(told, ElementsAre(expected, expected));
    EXPECT_THAT(told.front(), HasSubstr("no such function"));
    EXPECT_EQ(Number(fSheet[kOut0]), 1);
}

TEST_F(SheetWithLookups, CallsAreListedForCheckers) {
    fSheet.load("sheet x {\nconstant: c: first(2);\noutput: out0 <== c + 1 > 5 ? missing(host()) : 0; }", "test");
    std::vector<std::string> uses;
    for (const function_use_t& use : fSheet.function_uses())
        uses.push_back(std::string(use.function.text()) + " " + std::to_string(use.position.line) + ":" +
                       std::to_string(use.position.column));
    EXPECT_THAT(uses, UnorderedElementsAre("first 2:14", "missing 3:30", "host 3:38"));
}

// The sheet of a graphic equaliser.
std::string EqualizerScript(int bands) {
    std::string constants, inputs, interface, logic, outputs;
    for (int band = 0; band < bands; ++band) {
        const std::string n = std::to_string(band);
        inputs += "in" + n + ": 0.5;\r\n";
        interface += "unlink gain" + n + ": (in" + n + " * gain_range) + gain_min;\r\n";
        outputs += "out" + n + " <== (gain" + n + " - gain_min) / gain_range;\r\n";
    }
    return "sheet GraphicEQ__Bands {\r\nconstant:\r\ngain_min: -24; gain_max: 24; gain_range: gain_max - gain_min;\r\n"
           "input:\r\n" +
           inputs + "interface:\r\n" + interface +
           "logic:\r\ngain_filter <== { min_value: gain_min, max_value: gain_max };\r\noutput:\r\n" + outputs + "}\r\n";
}

TEST_F(Sheet, AMisspeltKeywordIsToldAsOne) {
    const std::pair<const char*, const char*> cases[] = {
        {"sheet x {\ninterfce: unlink a: 1;\n}", "2:1: 'interfce' is no section, perhaps \"interface:\" is meant"},
        {"sheet x {\nInput: in0: 0;\n}", "2:1: 'Input' is no section, perhaps \"input:\" is meant"},
        // Reads as a cell with an initialiser.
        {"sheet x { interface: a: 1;\noutpt:\nout0 <== a; }",
         "2:1: 'outpt' is no section, perhaps \"output:\" is meant"},
        {"sheet x { interface:\nunlnik a: 1; }", "2:1: 'unlnik' is no keyword, perhaps \"unlink\" is meant"},
        {"sheet x { interface: a: 1; b: 2; logic:\nrelte { a <== b; b <== a; } }",
         "2:1: 'relte' is no keyword, perhaps \"relate\" is meant"},
        {"sheet x { interface: a: 1; b: 2; logic:\nwehn (true) relate { a <== b; b <== a; } }",
         "2:1: 'wehn' is no keyword, perhaps \"when\" is meant"},
        // What stands inside of a declaration is none.
        {"sheet x { interface: a: { inputs: 1 }; b: 2 output: out0 <== b; }",
         "1:45: expected ';' behind the expression, found 'output'"},
    };
    for (const auto& [script, expected] : cases) {
        try {
            fSheet.load(script, "test");
            ADD_FAILURE() << script;
        } catch (const error_t& error) {
            EXPECT_EQ(error.what(), "test:" + std::string(expected));
        }
    }
    EXPECT_NO_THROW(fSheet.load("sheet x { input: inputs: 1; interface: outputs: 2 <== inputs; }", "test"));
}

TEST_F(Sheet, PollComputesOnlyWhatTheInputReaches) {
    fSheet.load(EqualizerScript(30), "eq");
    const std::uint64_t before = fSheet.evaluation_count();
    fSheet.set(name_t("in7"), 0.75);
    fSheet.update();
    fSheet.reinitialise();
    EXPECT_EQ(Number(fSheet[name_t("gain7")]), 12); // 0.75 * 48 - 24
    EXPECT_EQ(Number(fSheet[name_t("out7")]), 0.75);
    EXPECT_EQ(fSheet.evaluation_count() - before, 2u); // gain7 and out7
}

std::string Repeated(const std::string& text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

TEST_F(Sheet, NestingWithoutEndIsAMessage) {
    constexpr int kDeep = 100'000;
    const std::string scripts[] = {
        "sheet x { output: out0 <== " + Repeated("(", kDeep) + "1" + Repeated(")", kDeep) + "; }",
        "sheet x { output: out0 <== " + Repeated("[", kDeep),
        "sheet x { output: out0 <== " + Repeated("{ a: ", kDeep),
        "sheet x { output: out0 <== " + Repeated("true ? ", kDeep),
        "sheet x { output: out0 <== " + Repeated("-", kDeep) + "1; }",
        "sheet x { logic: " + Repeated("when (", kDeep),
        Repeated("sheet x { ", kDeep),
        "sheet x { logic: relate {" + Repeated("relate {", kDeep),
    };
    for (const std::string& script : scripts)
        EXPECT_THROW(fSheet.load(script, "deep"), error_t) << script.substr(0, 60);
}

TEST_F(Sheet, HundredThousandCellsInARowAreComputedInOrder) {
    constexpr int kCells = 100'000;
    std::string script = "sheet x { input: in0: 1; logic: c0 <== in0; ";
    for (int i = kCells - 1; i > 0; --i) // declared backwards
        script += "c" + std::to_string(i) + " <== c" + std::to_string(i - 1) + " + 1; ";
    fSheet.load(script + "}", "row");
    fSheet.set(kIn0, 5);
    fSheet.update();
    EXPECT_EQ(Number(fSheet[name_t("c99999")]), 100'004);
    EXPECT_THAT(fSheet.contributing(name_t("c99999")), ElementsAre(kIn0));
}

TEST_F(Sheet, CircleOfManyCellsIsNamedInShort) {
    std::string script = "sheet x { logic: c0 <== c9999; ";
    for (int i = 1; i < 10'000; ++i)
        script += "c" + std::to_string(i) + " <== c" + std::to_string(i - 1) + "; ";
    try {
        fSheet.load(script + "}", "circle");
        FAIL();
    } catch (const error_t& error) {
        EXPECT_THAT(error.what(), HasSubstr("circle:1:18: a circle: 'c0' <== 'c9999' <== 'c9998'"));
        EXPECT_LT(error.message().size(), 200u);
    }
}

std::string ChainScript(int cells) {
    std::string interface, relations;
    for (int i = 0; i < cells; ++i) {
        const std::string here = "c" + std::to_string(i), next = "c" + std::to_string(i + 1);
        interface += here + ": 0; ";
        if (i + 1 < cells)
            relations += "relate { " + here + " <== " + next + " - 1; " + next + " <== " + here + " + 1; } ";
    }
    return "sheet x { interface: " + interface + "logic: " + relations + "}";
}

TEST_F(Sheet, LongChainOfRelationsFollowsEitherEnd) {
    fSheet.load(ChainScript(2000), "chain");
    EXPECT_EQ(Number(fSheet[name_t("c1999")]), 1999);
    fSheet.set(name_t("c1999"), 0);
    fSheet.update();
    EXPECT_EQ(Number(fSheet[name_t("c0")]), -1999);
    try {
        fSheet.load(ChainScript(2002), "chain");
        FAIL();
    } catch (const error_t& error) {
        EXPECT_THAT(error.what(), HasSubstr("more than 2000 relations"));
    }
}

} // namespace
} // namespace orrin
