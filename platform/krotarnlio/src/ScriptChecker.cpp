#include "krotarnlio/ScriptChecker.h"

#include "LayoutSense.h"
#include "LioBuilder.h"
#include "LocalizeFunction.h"

#include "orrin/core_functions.h"
#include "orrin/error.h"

#include <algorithm>
#include <utility>

namespace krotarnlio {

using orrin::any_regular_t;
using orrin::in_quotes;
using orrin::instruction_t;
using orrin::name_t;
using orrin::operation_t;

namespace {

std::string NoFunction(name_t name) {
    return "there is no function " + in_quotes(name.text());
}

} // namespace

std::string ScriptProblem::ToString() const {
    return file + ':' + std::to_string(position.line) + ':' + std::to_string(position.column) + ": " +
           (isOnlyWarning ? "warning: " : "") + message;
}

// What has been found in one script: one message a place.
class ScriptChecker::Findings {
public:
    explicit Findings(std::string file) : fFile(std::move(file)) {}

    void Add(const orrin::error_t& error, bool isOnlyWarning = false) {
        Add(error.position(), error.message(), isOnlyWarning);
    }
    void Add(orrin::position_t position, std::string message, bool isOnlyWarning = false) {
        const bool isKnown = std::ranges::find(fProblems, position, &ScriptProblem::position) != fProblems.end();
        if (!isKnown) fProblems.push_back({fFile, position, std::move(message), isOnlyWarning});
    }
    SheetTrial::Report Reporter() {
        return [this](orrin::position_t position, std::string message, bool isOnlyWarning) {
            Add(position, std::move(message), isOnlyWarning);
        };
    }

    std::vector<ScriptProblem> InOrder() {
        MuteConsequences();
        std::ranges::stable_sort(fProblems, {}, [](const ScriptProblem& problem) {
            return std::pair(problem.position.line, problem.position.column);
        });
        return std::move(fProblems);
    }

private:
    // A cell that can't be computed stays empty, and so do those that are computed from it.
    void MuteConsequences() {
        const std::string empty = orrin::type_phrase(orrin::type_t::empty);
        const auto isOfEmptyCell = [&](const ScriptProblem& problem) {
            return problem.message.find(empty) != std::string::npos;
        };
        const auto isCause = [&](const ScriptProblem& problem) {
            return !problem.isOnlyWarning && !isOfEmptyCell(problem);
        };
        if (std::ranges::any_of(fProblems, isCause)) std::erase_if(fProblems, isOfEmptyCell);
    }

    std::string fFile;
    std::vector<ScriptProblem> fProblems;
};

namespace {

// Finds the names in a layout's expressions that nobody knows, also in the parts that are not evaluated.
class NameCheck {
public:
    using Predicate = boost::function<bool(name_t)>;
    using Report = boost::function<void(const orrin::error_t&)>;

    NameCheck(Predicate isFunction, Predicate isVariable, Report report)
        : fIsFunction(std::move(isFunction)), fIsVariable(std::move(isVariable)), fReport(std::move(report)) {}

    void Check(const LioElement& element) const {
        for (const orrin::named_expression_t& said : element.attributes)
            for (const instruction_t& instruction : said.expression.code())
                Check(said.expression, instruction);
        for (const LioElement& child : element.children)
            Check(child);
    }

private:
    void Check(const orrin::expression_t& expression, const instruction_t& instruction) const {
        if (instruction.operation == operation_t::call) {
            const name_t function = expression.functions()[instruction.operand];
            if (!fIsFunction(function)) fReport(expression.source()->error(instruction.offset, NoFunction(function)));
        } else if (instruction.operation == operation_t::push_variable) {
            const name_t name = expression.variables()[instruction.operand];
            if (!fIsVariable(name)) fReport(expression.source()->error(instruction.offset, NoVariable(name)));
        }
    }
    static std::string NoVariable(name_t name) {
        return "there is nothing named " + in_quotes(name.text()) + " in a layout; a cell of the sheet is written @" +
               std::string(name.text());
    }

    Predicate fIsFunction;
    Predicate fIsVariable;
    Report fReport;
};

// Nobody uses the widgets of a layout that is only checked.
void WriteNothing(name_t /*cell*/, const any_regular_t& /*value*/) {
}

} // namespace

ScriptChecker::ScriptChecker(Surroundings surroundings) : fSurroundings(std::move(surroundings)) {
}

std::vector<ScriptProblem> ScriptChecker::CheckSheet(const Script& sheet, const ScriptEffect* effect) const {
    Findings findings(sheet.file);
    const std::shared_ptr<orrin::sheet_t> loaded = Load(sheet, findings);
    if (!loaded) return findings.InOrder();
    for (const orrin::function_use_t& use : loaded->function_uses())
        if (!IsFunction(use.function)) findings.Add(use.position, NoFunction(use.function));
    SheetTrial trial(*loaded, findings.Reporter());
    trial.Run();
    if (effect) trial.CompareRanges(*effect);
    for (const orrin::error_t& warning : loaded->warnings())
        findings.Add(warning, true);
    return findings.InOrder();
}

std::vector<ScriptProblem> ScriptChecker::CheckLayout(const Script& layout, const Script& sheet) const {
    Findings findings(layout.file);
    Findings unheeded(sheet.file);
    const std::shared_ptr<orrin::sheet_t> loaded = Load(sheet, unheeded);
    try {
        const LioScript script = ParseLioText(layout.text, layout.file);
        if (!script.name.empty()) Build(script, loaded.get(), findings);
        if (!script.name.empty() && loaded) CheckSense(script, *loaded, findings);
    } catch (const orrin::error_t& error) {
        findings.Add(error);
    }
    return findings.InOrder();
}

void ScriptChecker::Build(const LioScript& script, orrin::sheet_t* sheet, Findings& findings) const {
    orrin::virtual_machine_t machine;
    fSurroundings.setUp(machine, nullptr);
    const auto isFunction = [this](name_t name) { return name == LocalizeName() || IsFunction(name); };
    const auto isVariable = [&](name_t name) { return machine.knows_variable(name); };
    const auto report = [&](const orrin::error_t& error) { findings.Add(error); };
    NameCheck(isFunction, isVariable, report).Check(script.view);

    const WithLocalize localize(machine);
    const uit::lio::WidgetContext context{fSurroundings.supplier, {}, [] {}};
    UI_LioViewHolder holder;
    LioBuilder::Connections connections;
    LioBuilder::Environment environment;
    environment.machine = &machine;
    environment.sheet = sheet;
    environment.clientWidgets = fSurroundings.clientWidgets;
    environment.context = &context;
    environment.write = &WriteNothing;
    environment.report = report;
    const auto widgets = LioBuilder(script, std::move(environment), holder, connections).Build();
    connections.clear(); // before the widgets that they reach
}

void ScriptChecker::CheckSense(const LioScript& script, orrin::sheet_t& sheet, Findings& findings) const {
    if (!sheet.name().empty() && sheet.name() != script.name)
        findings.Add(script.source->position(script.nameOffset),
                     "the layout is named " + in_quotes(script.name.text()) + ", its sheet " +
                         in_quotes(sheet.name().text()),
                     true);
    orrin::virtual_machine_t machine;
    fSurroundings.setUp(machine, nullptr);
    const WithLocalize localize(machine);
    SheetTrial trial(sheet, [](orrin::position_t, const std::string&, bool) {});
    trial.Run();
    LayoutSense(script, machine, sheet, trial, findings.Reporter()).Check();
}

// Null if it can't be read.
std::shared_ptr<orrin::sheet_t> ScriptChecker::Load(const Script& sheet, Findings& findings) const {
    auto loaded = std::make_shared<orrin::sheet_t>();
    fSurroundings.setUp(loaded->machine(), loaded.get());
    try {
        loaded->load(sheet.text, sheet.file);
        return loaded;
    } catch (const orrin::error_t& error) {
        findings.Add(error);
        return {};
    }
}

bool ScriptChecker::IsFunction(name_t name) const {
    return orrin::is_core_function(name) ||
           std::ranges::find(fSurroundings.functions, name) != fSurroundings.functions.end();
}

} // namespace krotarnlio
