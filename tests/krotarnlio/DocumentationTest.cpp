// Runs the examples of docs/scripts.md: blocks marked "expression", "tarn" or "lio". A layout is made on the sheet
// above it. Commands stand in comments and run in order, a block's after it has been read:
//   // let NAME = EXPRESSION         in an expression block, for the cases below it
//   // expect: VALUE                 of the expression above
//   // set: CELL VALUE, // expect: CELL VALUE
//   // click: IDENTIFIER
//   // error: LINE:COLUMN: MESSAGE   in the block's lines; of a layout all of them
#include "SourcePaths.h"
#include "krotarnlio/Functions.h"
#include "krotarnlio/ScriptChecker.h"
#include "krotarnlio/UI_KROLioRoot.h"
#include "krotarnlio/UI_Lio.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"
#include "orrin/expression_parser.h"
#include "orrin/serialization.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace krotarnlio {
namespace {

using orrin::any_regular_t;
using orrin::error_t;
using orrin::name_t;

const std::map<std::string_view, any_regular_t (*)(const any_regular_t&)> kFunctions = {
    {"default_minimum", default_minimum},
    {"dictionary_union", merge_dictionary_set},
    {"evaluate_serialization", evaluate_serialization},
    {"has_key", has_key},
    {"serialize_regular", serialize_regular},
};

any_regular_t CallFunction(name_t name, const any_regular_t& arguments) {
    return kFunctions.at(name.text())(arguments);
}

std::string PlaceAndMessage(const error_t& error) {
    return std::to_string(error.position().line) + ':' + std::to_string(error.position().column) + ": " +
           error.message();
}

struct Block {
    std::string language;
    std::string text;
    int line = 0; // of the fence in the document
};

std::vector<Block> ReadBlocks(const std::string& file) {
    std::ifstream document(file);
    EXPECT_TRUE(document) << file;
    std::vector<Block> blocks;
    bool isInside = false;
    int number = 0;
    for (std::string line; std::getline(document, line);) {
        ++number;
        const bool isFence = line.starts_with("```");
        if (isFence && !isInside) blocks.push_back({line.substr(3), "", number});
        if (isFence) isInside = !isInside;
        if (!isFence && isInside) blocks.back().text += line + '\n';
    }
    EXPECT_FALSE(isInside) << "a block without an end";
    return blocks;
}

struct Command {
    std::string word; // "expect"
    std::string argument;
};

std::optional<Command> CommandOf(const std::string& line) {
    for (const char* const word : {"expect", "error", "set", "click"}) {
        const std::string start = std::string("// ") + word + ": ";
        if (line.starts_with(start)) return Command{word, line.substr(start.size())};
    }
    return {};
}

std::vector<Command> CommandsOf(const std::string& text) {
    std::vector<Command> commands;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (auto command = CommandOf(line)) commands.push_back(*command);
    return commands;
}

std::vector<std::string> ErrorsIn(const std::vector<Command>& commands) {
    std::vector<std::string> errors;
    for (const Command& command : commands)
        if (command.word == "error") errors.push_back(command.argument);
    return errors;
}

class Documentation : public testing::Test {
protected:
    ~Documentation() override { UI_Lio::Release(fRoot); }

    void Run(const Block& block) {
        if (block.language == "expression") RunExpressions(block.text);
        if (block.language == "tarn") RunSheet(block.text);
        if (block.language == "lio") RunLayout(block.text);
    }

private:
    // Lines of earlier cases are blanks, so that places count from the beginning of the block.
    void RunExpressions(const std::string& text) {
        std::string expression;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line); expression += '\n') {
            const auto command = CommandOf(line);
            if (line.starts_with("// let ")) {
                const std::size_t sign = line.find(" = ");
                fVariables[name_t(line.substr(7, sign - 7))] = Evaluate(line.substr(sign + 3));
            } else if (command) {
                EXPECT_EQ(Outcome(expression), command->argument);
                expression.assign(static_cast<std::size_t>(std::ranges::count(expression, '\n')), '\n');
                ++fCases;
            } else {
                expression += line;
            }
        }
    }
    std::string Outcome(const std::string& expression) {
        try {
            return orrin::serialize_regular(Evaluate(expression));
        } catch (const error_t& error) {
            return PlaceAndMessage(error);
        }
    }
    any_regular_t Evaluate(const std::string& text) {
        orrin::virtual_machine_t machine;
        machine.set_function_lookup(&CallFunction);
        machine.set_variable_lookup([this](name_t name) {
            const any_regular_t* const value = fVariables.find(name);
            if (!value) throw std::invalid_argument("unknown variable");
            return *value;
        });
        return machine.evaluate(orrin::parse_expression(text, "docs"));
    }

    void RunSheet(const std::string& text) {
        const std::vector<Command> commands = CommandsOf(text);
        const std::vector<std::string> errors = ErrorsIn(commands);
        auto sheet = std::make_shared<orrin::sheet_t>();
        SetUpMachine(sheet->machine(), sheet.get());
        try {
            sheet->load(text, "docs");
            EXPECT_THAT(errors, testing::IsEmpty());
        } catch (const error_t& error) {
            EXPECT_THAT(errors, testing::ElementsAre(PlaceAndMessage(error)));
            ++fCases;
            return;
        }
        EXPECT_THAT(sheet->errors(), testing::IsEmpty());
        fSheet = std::move(sheet);
        fSheetText = text;
        RunCommands(commands);
    }

    void RunLayout(const std::string& text) {
        const std::vector<Command> commands = CommandsOf(text);
        const ScriptChecker checker({&Documentation::SetUpMachine, {}, uit::lio::GetAdapterFactoryProc(), &fSupplier});
        std::vector<std::string> found;
        for (const ScriptProblem& problem : checker.CheckLayout({"", text}, {"", fSheetText}))
            found.push_back(problem.ToString().substr(1));
        ++fCases;
        EXPECT_EQ(found, ErrorsIn(commands));
        if (!found.empty()) return;
        UI_Lio::Release(std::exchange(fRoot, nullptr));
        UI_Lio lio(&fSupplier, nullptr);
        SetUpMachine(lio.GetLayoutEngineVM(), nullptr);
        lio.SetClientWidgetAdpaterFactory(uit::lio::GetAdapterFactoryProc());
        std::istringstream stream(text);
        fRoot = lio.ParseLioScript(stream, fSheet);
        fRoot->Layout();
        fWindow.Window().SetContent(fRoot->GetTopNode());
        RunCommands(commands);
    }

    void RunCommands(const std::vector<Command>& commands) {
        for (const auto& [word, argument] : commands) {
            SCOPED_TRACE(word + ": " + argument);
            const std::size_t space = argument.find(' ');
            const name_t cell(argument.substr(0, space));
            if (word == "click") {
                kroui::ui::UI_Node* const control = fRoot->GetViewHolder().GetControl(argument);
                ASSERT_NE(control, nullptr);
                fWindow.Click(kroui::ui::HeadlessWindow::CentreOf(*control));
            } else if (word == "set") {
                fSheet->set(cell, Evaluate(argument.substr(space)));
                fSheet->update();
            } else if (word == "expect") {
                EXPECT_EQ(orrin::serialize_regular(fSheet->get(cell)), argument.substr(space + 1));
                ++fCases;
            }
        }
    }

    static void SetUpMachine(orrin::virtual_machine_t& machine, orrin::sheet_t* /*sheet*/) {
        machine.set_function_lookup(&CallFunction);
        machine.set_variable_lookup([](name_t name) -> any_regular_t {
            if (name.text().starts_with("align_") && name != name_t("align_fil")) return name;
            throw std::runtime_error("Variable lookup failed");
        });
    }

    kroui::limner::CairoSupplier fSupplier;
    kroui::ui::HeadlessWindow fWindow{fSupplier, {600, 400}};
    orrin::dictionary_t fVariables;
    std::shared_ptr<orrin::sheet_t> fSheet;
    std::string fSheetText;
    UI_KROLioRoot* fRoot = nullptr;

protected:
    int fCases = 0;
};

TEST_F(Documentation, ExamplesDoWhatTheySay) {
    for (const Block& block : ReadBlocks(QO_SOURCE_DIR "/docs/scripts.md")) {
        SCOPED_TRACE("docs/scripts.md:" + std::to_string(block.line));
        const int before = fCases;
        Run(block);
        const bool isRun = block.language == "expression" || block.language == "tarn" || block.language == "lio";
        EXPECT_TRUE(!isRun || fCases > before) << "a block that shows nothing";
    }
    EXPECT_GT(fCases, 0);
}

} // namespace
} // namespace krotarnlio
