#include "krotarnlio/ScriptChecker.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace krotarnlio {
namespace {

using orrin::any_regular_t;
using orrin::name_t;
using testing::ElementsAre;
using testing::IsEmpty;

class ScriptCheckerTest : public testing::Test {
protected:
    static any_regular_t Call(name_t name, const any_regular_t& arguments) {
        if (name == name_t("trace")) return arguments.get<orrin::array_t>().front();
        throw std::invalid_argument("no such function");
    }
    static void SetUpMachine(orrin::virtual_machine_t& machine, orrin::sheet_t* sheet) {
        machine.set_function_lookup(&ScriptCheckerTest::Call);
        machine.set_variable_lookup([sheet](name_t name) -> any_regular_t {
            if (name == name_t("align_fill")) return name;
            if (sheet) return sheet->get(name);
            throw std::runtime_error("Variable lookup failed");
        });
    }
    static std::vector<std::string> Texts(const std::vector<ScriptProblem>& problems) {
        std::vector<std::string> texts;
        for (const ScriptProblem& problem : problems)
            texts.push_back(problem.ToString());
        return texts;
    }
    std::vector<std::string> CheckSheet(const std::string& text) { return Texts(fChecker.CheckSheet({"a.trn", text})); }
    std::vector<std::string> CheckLayout(const std::string& widgets, const std::string& sheet = kSheet) {
        return Texts(
            fChecker.CheckLayout({"a.lio", "layout a { view subview() {\n" + widgets + "\n} }"}, {"a.trn", sheet}));
    }

    static constexpr const char* kSheet =
        "sheet a { input: in0: 1; interface: gain: 3; on: true; output: out0 <== gain / 3; }";

    const ScriptChecker fChecker{{&ScriptCheckerTest::SetUpMachine, {name_t("trace")}, {}, nullptr}};
};

TEST_F(ScriptCheckerTest, SheetTellsEveryFunctionThatIsNotThereAlsoWhereItIsNotCalled) {
    EXPECT_THAT(CheckSheet("sheet a {\n"
                           "input: in0: 0.5; in1: 0;\n"
                           "interface: unlink a: in0 > 2 ? nothing(in0) : trace(in0);\n"
                           "output: out0 <== none(a);\n"
                           "out1 <== out0 + 1;\n"
                           "}"),
                ElementsAre("a.trn:3:32: there is no function 'nothing'", "a.trn:4:18: there is no function 'none'"));
}

TEST_F(ScriptCheckerTest, SheetIsRunAtBothEndsOfItsInputs) {
    const std::string sheet = "sheet a {\n"
                              "constant: names: ['a', 'b'];\n"
                              "input: in0: 0;\n"
                              "interface: unlink a: in0;\n"
                              "output: out0 <== names[a * 2] == 'a' ? 1 : 0;\n"
                              "}";
    // At the initial value, 0, nothing is wrong.
    EXPECT_THAT(CheckSheet(sheet),
                ElementsAre("a.trn:5:23: cell 'out0': the index 2 is outside the array, which has 2 elements"));
}

TEST_F(ScriptCheckerTest, SheetTellsOutputsThatCannotBeParameters) {
    EXPECT_THAT(CheckSheet("sheet a {\ninput: in0: 0; in1: 0; in2: 0;\n"
                           "interface: unlink on: in0 >= 0.5; unlink b: in1; unlink c: in2;\n"
                           "output:\nout0 <== on;\nout1 <== b > 0.75 ? b * 2 : 0;\nout2 <== c - 0.25;\n"
                           "out7 <== c;\n}"),
                ElementsAre("a.trn:5:1: cell 'out0' needs a number from 0 to 1, not a bool",
                            "a.trn:6:1: cell 'out1' is 2 with all inputs at 1, expected a number from 0 to 1",
                            "a.trn:7:1: cell 'out2' is -0.25, expected a number from 0 to 1",
                            "a.trn:8:1: warning: there is no input 'in7', so that the panel never shows what it writes "
                            "here"));
    // Seen only with one input alone, in the middle.
    EXPECT_THAT(CheckSheet("sheet a {\ninput: in0: 0; in1: 0;\ninterface: unlink b: in0; unlink c: in1;\n"
                           "output: out0 <== b == 0.5 && c == 0 ? 3 : b;\n}"),
                ElementsAre("a.trn:4:9: cell 'out0' is 3 with in0 at 0.5, expected a number from 0 to 1"));
}

TEST_F(ScriptCheckerTest, SheetTellsClausesThatContradictEachOther) {
    const auto sheet = [](const std::string& clause) {
        return "sheet a {\ninput: in0: 0.75;\ninterface: unlink a: in0; unlink b;\nlogic: relate { b <== a * 2;\na "
               "<== " +
               clause + "; }\noutput: out0 <== a;\n}";
    };
    EXPECT_THAT(CheckSheet(sheet("b / 3")),
                ElementsAre("a.trn:5:7: the clause contradicts the other clauses of its relation: it makes 'a' 0.5, "
                            "they 0.75"));
    EXPECT_THAT(CheckSheet(sheet("b / 2")), IsEmpty());
    EXPECT_THAT(CheckSheet(sheet("min(b / 2, 0.9)")), IsEmpty()) << "a bound is no contradiction";
}

TEST_F(ScriptCheckerTest, SheetIsComparedWithTheRangesOfItsEffect) {
    const auto check = [&](const std::string& range) {
        const ScriptEffect effect{44100, {{0, "Gain", -96, 0}}};
        return Texts(fChecker.CheckSheet(
            {"a.trn", "sheet a {\ninput: in0: 0.5;\ninterface:\nunlink gain: in0 * " + range + " - " + range +
                          ";\nunlink share: in0 * 100;\noutput: out0 <== gain / " + range + " + 1;\n}"},
            &effect));
    };
    EXPECT_THAT(check("60"), ElementsAre("a.trn:4:8: warning: cell 'gain' runs from -60 to 0 over in0, the effect's "
                                         "\"Gain\" from -96 to 0"));
    EXPECT_THAT(check("96"), IsEmpty());
}

TEST_F(ScriptCheckerTest, SheetThatCannotBeReadTellsWhereReadingEnds) {
    EXPECT_THAT(CheckSheet("sheet a {\ninput: in0 0.5;\n}"), ElementsAre(testing::StartsWith("a.trn:2:12: expected ")));
    EXPECT_THAT(CheckSheet("sheet a {\noutput: out0 <== gain;\n}"), ElementsAre(testing::StartsWith("a.trn:2:18: ")));
}

TEST_F(ScriptCheckerTest, SheetWarnsOfCellsThatNothingSets) {
    EXPECT_THAT(CheckSheet("sheet a {\ninput: in0: 0; interface:\n  gain;\noutput: out0 <== in0;\n}"),
                ElementsAre(testing::StartsWith("a.trn:3:3: warning: ")));
    EXPECT_THAT(CheckSheet(kSheet), IsEmpty());
}

TEST_F(ScriptCheckerTest, LayoutTellsEveryFaultOnceInOrder) {
    EXPECT_THAT(
        CheckLayout("knob(bind: @nothing) { checkbox(nane: 'a'); }\n"
                    "checkbox(bind: @nothing, name: 3);\n"
                    "checkbox(bind: @gain, identifier: 'x') { knob(); }\n"
                    "checkbox(bind: @on, identifier: 'x', name: nowhere(localize('$$$/A=a')));\n"
                    "column(horizontal: align_fil, spacing: -1);\n"
                    "display_text(value: true || bad(gain));\n"
                    "row(horizontal: align_fill) { checkbox(bind: @on, name: 'fine'); }"),
        ElementsAre("a.lio:2:1: there is no widget 'knob'", //
                    "a.lio:2:33: 'checkbox' has no attribute 'nane'",
                    "a.lio:3:10: 'bind' needs the name of a cell; the sheet has no 'nothing'",
                    "a.lio:3:26: 'name' needs a string, not a number", "a.lio:4:10: 'bind' needs a bool, not a number",
                    "a.lio:4:42: 'checkbox' takes no widgets inside", //
                    "a.lio:5:1: the identifier 'x' is taken already", //
                    "a.lio:5:44: there is no function 'nowhere'",
                    "a.lio:6:20: there is nothing named 'align_fil' in a layout; a cell of the sheet is written "
                    "@align_fil",
                    "a.lio:6:31: 'spacing' needs a length from 0 to 100000",
                    "a.lio:7:14: 'value' needs a string, a number or a name, not a bool",
                    "a.lio:7:29: there is no function 'bad'",
                    "a.lio:7:33: there is nothing named 'gain' in a layout; a cell of the sheet is written "
                    "@gain"));
}

TEST_F(ScriptCheckerTest, LayoutTellsPartsThatNeverComeUp) {
    EXPECT_THAT(
        CheckLayout("popup(items: ['A', 'B'], bind: @mode);\n"
                    "optional(bind: @mode, value: 2) { row(); }\n" // the sheet itself
                    "optional(bind: @mode, value: 3) { row(); }\n"
                    "optional(bind: @on, value: 1) { row(); }\n"
                    "panel(bind: @on, value_on: false) { row(); }\n"
                    "tab_group(items: ['x', 'y'], bind: @page) { panel(value: 1) { row(); }\n"
                    "panel(value: 5) { row(); } }",
                    "sheet a { input: in0: 0.5; interface: unlink mode: round(in0 * 2); on: true; unlink page: 0;"
                    "output: out0 <== mode / 2; }"),
        ElementsAre("a.lio:4:23: warning: 'mode' never is 3, so that this part never comes up",
                    "a.lio:5:21: warning: 'on' never is 1, so that this part never comes up",
                    "a.lio:8:7: warning: no tab has the value 5, so that this page never comes up"));
    EXPECT_THAT(CheckLayout("row();", "sheet b {}"),
                ElementsAre("a.lio:1:8: warning: the layout is named 'a', its sheet 'b'"));
}

TEST_F(ScriptCheckerTest, LayoutOfABrokenSheetIsNotBlamedForTheCells) {
    EXPECT_THAT(CheckLayout("checkbox(bind: @nothing, name: 3);", "sheet a {"),
                ElementsAre("a.lio:2:26: 'name' needs a string, not a number"));
}

TEST_F(ScriptCheckerTest, LayoutThatCannotBeReadTellsWhereReadingEnds) {
    EXPECT_THAT(CheckLayout("checkbox(name 3);"), ElementsAre(testing::StartsWith("a.lio:2:15: expected ")));
    EXPECT_THAT(Texts(fChecker.CheckLayout({"a.lio", ""}, {"a.trn", ""})), IsEmpty());
}

} // namespace
} // namespace krotarnlio
