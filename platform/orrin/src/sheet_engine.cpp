#include "sheet_engine.h"

#include "orrin/dictionary.h"
#include "orrin/serialization.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>
#include <utility>

namespace orrin {

namespace {

// Rounds of one update, when subscribers set cells and update again.
constexpr int kMostRounds = 100;
constexpr std::size_t kMostNamed = 10; // in a message

// But for what a conversion and its inverse lose of a double.
bool nearly_equal(const any_regular_t& left, const any_regular_t& right, double tolerance = 1e-9) {
    const auto areEqual = [=](const any_regular_t& a, const any_regular_t& b) { return nearly_equal(a, b, tolerance); };
    if (left == right) return true;
    const double* const number = left.get_if<double>();
    const double* const other = right.get_if<double>();
    if (number && other) return std::abs(*number - *other) <= tolerance * std::max(1.0, std::abs(*number));
    const array_t* const array = left.get_if<array_t>();
    const array_t* const otherArray = right.get_if<array_t>();
    if (array && otherArray) return std::ranges::equal(*array, *otherArray, areEqual);
    const dictionary_t* const entries = left.get_if<dictionary_t>();
    const dictionary_t* const otherEntries = right.get_if<dictionary_t>();
    return entries && otherEntries && std::ranges::equal(*entries, *otherEntries, [&](const auto& a, const auto& b) {
               return a.first == b.first && areEqual(a.second, b.second);
           });
}

} // namespace

class sheet_engine_t::running_t {
public:
    explicit running_t(sheet_engine_t& engine) : fEngine(engine) { fEngine.fRunning = true; }
    ~running_t() { fEngine.fRunning = false; }
    running_t(const running_t&) = delete;
    running_t& operator=(const running_t&) = delete;

private:
    sheet_engine_t& fEngine;
};

sheet_engine_t::sheet_engine_t(sheet_program_t program, virtual_machine_t& machine)
    : fProgram(std::move(program)), fMachine(machine) {
    const std::size_t cells = fProgram.cells.size();
    fValues.resize(cells);
    fNext.resize(cells);
    fContributed.resize(cells);
    fInitial.resize(cells);
    fIsChanged.resize(cells);
    fIsSet.resize(cells);
    fIsSetSinceInitialised.resize(cells);
    fIsDue.resize(cells);
    fSignals.resize(cells);
    for (const sheet_program_t::cell_t& cell : fProgram.cells)
        fWriters.push_back(cell.fixedWriter);
    fIsDirty.assign(fProgram.expressions.size(), true);
    fSelected.assign(fProgram.relations.size(), kNone);
    fHolds.resize(fProgram.conditions.size());
    bind();
}

void sheet_engine_t::bind() {
    fBindings.reserve(fProgram.variables.size());
    for (const sheet_program_t::variable_t variable : fProgram.variables)
        fBindings.push_back(variable.cell == kNone ? nullptr
                            : variable.contributed ? &fContributed[variable.cell]
                                                   : &fNext[variable.cell]);
}

void sheet_engine_t::start() {
    const running_t running(*this);
    initialise_once(cell_kind_t::constant);
    initialise_once(cell_kind_t::input);
    want_initial_values();
    round();
    fToNotify.clear();
    fErrors.take_new();
    if (const error_t* const conflict = fErrors.conflict()) throw *conflict;
}

void sheet_engine_t::initialise_once(cell_kind_t kind) {
    for (index_t number = 0; number < fProgram.cells.size(); ++number) {
        const sheet_program_t::cell_t& cell = fProgram.cells[number];
        if (cell.kind != kind || cell.initialiser == kNone) continue;
        if (!evaluate(cell.initialiser, fNext[number])) throw *fErrors.failure(cell.initialiser);
        fContributed[number] = fValues[number] = fNext[number];
    }
}

void sheet_engine_t::set(index_t cell, any_regular_t value) {
    if (!(fContributed[cell] == value)) {
        fContributed[cell] = std::move(value);
        mark(fProgram.contributedReaders[cell]);
    }
    if (!std::exchange(fIsSet[cell], true)) fSetCells.push_back(cell);
    touch(cell);
}

void sheet_engine_t::touch(index_t cell) {
    fIsSetSinceInitialised[cell] = true;
    const sheet_program_t::cell_t& touched = fProgram.cells[cell];
    if (touched.planned != kNone) fProgram.stages[touched.stage].planner.touch(touched.planned);
}

void sheet_engine_t::want_initial_values() {
    fIsDue.assign(fIsDue.size(), true);
    fWantsInitialise = true;
}

void sheet_engine_t::want_initial_values_of(index_t input, const any_regular_t& told) {
    fIsDue[input] = true;
    fWantsInitialise = true;
    if (told.type() != type_t::empty) fEchoes.push_back({input, told});
}

bool sheet_engine_t::settle() {
    if (fHeldBack.empty()) return false;
    const bool isInUse = std::ranges::find(fIsSetSinceInitialised, true) != fIsSetSinceInitialised.end();
    fIsSetSinceInitialised.assign(fIsSetSinceInitialised.size(), false);
    if (isInUse) return false;
    std::swap(fSettling, fHeldBack);
    for (const index_t cell : fSettling)
        fIsDue[cell] = true;
    fWantsInitialise = true;
    return true;
}

void sheet_engine_t::update() {
    fWantsUpdate = true;
    if (fRunning) return;
    const std::shared_ptr<sheet_engine_t> self = shared_from_this();
    const running_t running(*this);
    std::exception_ptr thrown;
    fErrors.clear_endless();
    for (int rounds = 0; std::exchange(fWantsUpdate, false) && !fStopped; ++rounds) {
        if (rounds == kMostRounds) {
            fErrors.set_endless(fProgram.error(0, "subscribers set cells and update again without an end"));
            report_errors();
            break;
        }
        round();
        notify(thrown);
        report_errors();
    }
    if (thrown) std::rethrow_exception(thrown);
}

void sheet_engine_t::round() {
    fTaken.clear();
    fInitialised.clear();
    std::swap(fTaken, fSetCells);
    take_inputs();
    run(fProgram.inputClauses);
    initialise();
    adopt_set_cells(0, false);
    run_stage(0);
    evaluate_conditions();
    run_stage(1);
    commit();
}

void sheet_engine_t::take_inputs() {
    for (const index_t cell : fTaken) {
        fIsSet[cell] = false;
        if (fProgram.cells[cell].kind == cell_kind_t::input) assign(cell, fContributed[cell]);
    }
    if (!fChanged.empty()) mark(fProgram.callers);
}

// What depends on the inputs that are due: what is computed from them, and what is initialised from either.
void sheet_engine_t::mark_due() {
    for (const index_t number : fProgram.inputClauses) {
        const sheet_program_t::clause_t& clause = fProgram.clauses[number];
        if (!reads_due(clause.expression)) continue;
        for (const index_t target : clause.targets.of(fProgram.targets))
            fIsDue[target] = true;
    }
    for (index_t cell = 0; cell < fProgram.cells.size(); ++cell)
        if (const index_t initialiser = fProgram.cells[cell].initialiser;
            fProgram.cells[cell].kind == cell_kind_t::interface && initialiser != kNone && reads_due(initialiser))
            fIsDue[cell] = true;
}

// A function may look at anything that the host has changed.
bool sheet_engine_t::reads_due(index_t number) const {
    const sheet_program_t::expression_of_t& expression = fProgram.expressions[number];
    return expression.callsHost ||
           std::ranges::any_of(expression.variables.of(fProgram.variables), [this](const auto& variable) {
               return variable.cell != kNone && fIsDue[variable.cell];
           });
}

void sheet_engine_t::initialise() {
    if (!std::exchange(fWantsInitialise, false)) return;
    mark_due();
    for (index_t cell = 0; cell < fProgram.cells.size(); ++cell) {
        const bool isDue = std::exchange(fIsDue[cell], false);
        if (!isDue || fProgram.cells[cell].kind != cell_kind_t::interface) continue;
        if (!initial_value_changes(cell) || is_echo(cell)) continue;
        fContributed[cell] = fInitial[cell];
        fInitialised.push_back(cell);
        mark(fProgram.contributedReaders[cell]);
    }
    fEchoes.clear();
    fInitialised.insert(fInitialised.end(), fSettling.begin(), fSettling.end());
    fSettling.clear();
    raise_initialised();
    fIsSetSinceInitialised.assign(fIsSetSinceInitialised.size(), false);
}

bool sheet_engine_t::initial_value_changes(index_t cell) {
    const index_t initialiser = fProgram.cells[cell].initialiser;
    if (initialiser == kNone) return false;
    if (std::exchange(fIsDirty[initialiser], false)) evaluate(initialiser, fInitial[cell]);
    return !fErrors.failure(initialiser) && !(fInitial[cell] == fContributed[cell]);
}

// Whether the cell has what its initialiser says, but for the rounding of the inputs.
bool sheet_engine_t::is_echo(index_t cell) {
    const index_t initialiser = fProgram.cells[cell].initialiser;
    return !fEchoes.empty() && nearly_equal(initial_value_as_told(initialiser), fContributed[cell]);
}

any_regular_t sheet_engine_t::initial_value_as_told(index_t initialiser) {
    const auto exchange = [this] {
        for (echo_t& echo : fEchoes)
            std::swap(fNext[echo.input], echo.told);
    };
    exchange();
    any_regular_t value;
    evaluate(initialiser, value);
    exchange();
    return value;
}

// Where initial values have come up, puts the cells that have an initialiser in front of the others. One of these that
// was set keeps its place, and holds them back.
void sheet_engine_t::raise_initialised() {
    fHeldBack.clear();
    for (index_t number = 0; number < fProgram.stages.size(); ++number) {
        const auto isOfStage = [&](index_t cell) {
            return fProgram.cells[cell].planned != kNone && fProgram.cells[cell].stage == number;
        };
        if (std::ranges::none_of(fInitialised, isOfStage)) continue;
        sheet_program_t::stage_t& stage = fProgram.stages[number];
        std::vector<index_t> raised;
        for (const index_t cell : stage.cells)
            if (fProgram.cells[cell].initialiser != kNone || fIsSetSinceInitialised[cell])
                raised.push_back(fProgram.cells[cell].planned);
        stage.planner.touch(raised);
        if (std::ranges::any_of(stage.cells, [this](index_t cell) { return is_set_without_initialiser(cell); }))
            std::ranges::copy_if(fInitialised, std::back_inserter(fHeldBack), isOfStage);
    }
}

bool sheet_engine_t::is_set_without_initialiser(index_t cell) const {
    return fIsSetSinceInitialised[cell] && fProgram.cells[cell].initialiser == kNone;
}

void sheet_engine_t::evaluate_conditions() {
    bool turned = false;
    for (index_t condition = 0; condition < fProgram.conditions.size(); ++condition)
        if (std::exchange(fIsDirty[fProgram.conditions[condition]], false))
            turned = evaluate_condition(condition) || turned;
    if (!turned) return;
    for (const index_t number : fProgram.stages[1].relations) {
        const sheet_program_t::relation_t& relation = fProgram.relations[number];
        if (relation.condition != kNone)
            fProgram.stages[1].planner.set_active(relation.planned, fHolds[relation.condition]);
    }
}

// True if it has turned. A condition that fails stays as it was.
bool sheet_engine_t::evaluate_condition(index_t condition) {
    any_regular_t result;
    const index_t expression = fProgram.conditions[condition];
    if (!evaluate(expression, result)) return false;
    const bool* const holds = result.get_if<bool>();
    if (!holds) {
        fErrors.fail(expression, error_of(expression, type_error_t(type_t::boolean, result.type())));
        return false;
    }
    return std::exchange(fHolds[condition], *holds) != static_cast<char>(*holds);
}

void sheet_engine_t::run_stage(index_t number) {
    sheet_program_t::stage_t& stage = fProgram.stages[number];
    run(stage.clausesBefore);
    plan(number);
    adopt_set_cells(number, true);
    for (const planner_t::selection_t selection : stage.planner.selections())
        run(fSelected[stage.relations[selection.relation]]);
    run(stage.clausesAfter);
}

void sheet_engine_t::plan(index_t number) {
    sheet_program_t::stage_t& stage = fProgram.stages[number];
    if (!stage.planner.plan()) return;
    adopt_plan(stage);
    note_conflicts(number);
}

void sheet_engine_t::adopt_plan(const sheet_program_t::stage_t& stage) {
    for (const index_t number : stage.relations) {
        const sheet_program_t::relation_t& relation = fProgram.relations[number];
        const index_t selected = stage.planner.clause_of(relation.planned);
        const index_t clause = selected == planner_t::kNone ? kNone : relation.clauses.begin + selected;
        if (std::exchange(fSelected[number], clause) != clause && clause != kNone)
            fIsDirty[fProgram.clauses[clause].expression] = true;
    }
    for (const index_t cell : stage.cells) {
        const index_t writer = stage.planner.writer_of(fProgram.cells[cell].planned);
        fWriters[cell] = writer == planner_t::kNone ? kNone : fSelected[stage.relations[writer]];
        if (fWriters[cell] == kNone && !stage.planner.is_in_conflict(fProgram.cells[cell].planned))
            assign(cell, fContributed[cell]);
    }
}

void sheet_engine_t::note_conflicts(index_t number) {
    std::vector<error_t> conflicts;
    for (const planner_t::conflict_t& conflict : fProgram.stages[number].planner.conflicts())
        conflicts.push_back(conflict_error(fProgram.stages[number], conflict));
    fErrors.set_conflicts(number, std::move(conflicts));
}

error_t sheet_engine_t::conflict_error(const sheet_program_t::stage_t& stage,
                                       const planner_t::conflict_t& conflict) const {
    std::string places;
    for (std::size_t i = 0; i < std::min(conflict.relations.size(), kMostNamed); ++i) {
        const std::uint32_t offset = fProgram.relations[stage.relations[conflict.relations[i]]].offset;
        const position_t position = fProgram.source->position(offset);
        places += (i == 0 ? "" : ", ") + std::to_string(position.line) + ":" + std::to_string(position.column);
    }
    if (conflict.relations.size() > kMostNamed) places += ", ...";
    const bool isCycle = conflict.problem == planner_t::problem_t::cycle;
    return fProgram.error(
        fProgram.relations[stage.relations[conflict.relations.front()]].offset,
        isCycle ? "a circle: however they run, the relations at " + places + " need each other's results"
                : "over-constrained: there are not enough cells for the relations at " + places + " to write");
}

// Cells without a plan take what was set before the stages, planned ones when their stage has its plan.
void sheet_engine_t::adopt_set_cells(index_t stage, bool planned) {
    for (const std::vector<index_t>* const cells : {&fTaken, &fInitialised})
        for (const index_t number : *cells) {
            const sheet_program_t::cell_t& cell = fProgram.cells[number];
            if ((cell.planned != kNone) == planned && (!planned || cell.stage == stage) && fWriters[number] == kNone)
                assign(number, fContributed[number]);
        }
}

void sheet_engine_t::run(std::span<const index_t> clauses) {
    for (const index_t clause : clauses)
        run(clause);
}

void sheet_engine_t::run(index_t number) {
    const sheet_program_t::clause_t& clause = fProgram.clauses[number];
    if (!std::exchange(fIsDirty[clause.expression], false)) return;
    any_regular_t result;
    if (!evaluate(clause.expression, result)) return;
    if (clause.targets.size() > 1) return assign_each(clause, result);
    const index_t target = fProgram.targets[clause.targets.begin];
    if (fProgram.cells[target].kind == cell_kind_t::invariant && !result.get_if<bool>())
        return fErrors.fail(clause.expression,
                            error_of(clause.expression, type_error_t(type_t::boolean, result.type())));
    assign(target, result);
}

void sheet_engine_t::assign_each(const sheet_program_t::clause_t& clause, const any_regular_t& result) {
    const array_t* const elements = result.get_if<array_t>();
    if (!elements || elements->size() != clause.targets.size()) {
        const std::string needed = "needs an array of " + std::to_string(clause.targets.size());
        const std::string found = elements ? std::to_string(elements->size()) : type_phrase(result.type());
        return fErrors.fail(clause.expression, error_of(clause.expression, type_error_t(needed + ", not " + found)));
    }
    for (std::size_t i = 0; i < elements->size(); ++i)
        assign(fProgram.targets[clause.targets.begin + i], (*elements)[i]);
}

void sheet_engine_t::assign(index_t cell, const any_regular_t& value) {
    if (fNext[cell] == value) return;
    fNext[cell] = value;
    if (!std::exchange(fIsChanged[cell], true)) fChanged.push_back(cell);
    mark(fProgram.valueReaders[cell]);
}

void sheet_engine_t::mark(std::span<const index_t> expressions) {
    for (const index_t expression : expressions)
        fIsDirty[expression] = true;
}

void sheet_engine_t::commit() {
    for (const index_t cell : fTaken)
        if (!(fContributed[cell] == fNext[cell])) fToNotify.push_back(cell);
    for (const index_t cell : fChanged) {
        fIsChanged[cell] = false;
        contribute_computed(cell);
        if (fValues[cell] == fNext[cell]) continue;
        fValues[cell] = fNext[cell];
        fToNotify.push_back(cell);
    }
    fChanged.clear();
    for (const std::vector<index_t>* const cells : {&fTaken, &fInitialised})
        for (const index_t cell : *cells)
            contribute_computed(cell);
    std::ranges::sort(fToNotify);
    fToNotify.erase(std::unique(fToNotify.begin(), fToNotify.end()), fToNotify.end());
}

// Of its readers only initialisers have to run again: a definition is not fed with its own result.
void sheet_engine_t::contribute_computed(index_t number) {
    const sheet_program_t::cell_t& cell = fProgram.cells[number];
    if (!cell.linked || fWriters[number] == kNone || fContributed[number] == fNext[number]) return;
    fContributed[number] = fNext[number];
    for (const index_t expression : fProgram.contributedReaders[number])
        if (fProgram.cells[fProgram.expressions[expression].cell].initialiser == expression)
            fIsDirty[expression] = true;
}

void sheet_engine_t::notify(std::exception_ptr& thrown) {
    const std::vector<index_t> cells = std::exchange(fToNotify, {});
    for (const index_t cell : cells) {
        if (fStopped) return;
        if (!fSignals[cell]) continue;
        const std::exception_ptr first = (*fSignals[cell])(fValues[cell]);
        if (!thrown) thrown = first;
    }
}

void sheet_engine_t::report_errors() {
    const sheet_t::error_handler_t handler = fErrorHandler; // which may install another one
    for (const error_t& error : fErrors.take_new())
        if (handler && !fStopped) handler(error);
}

std::vector<clause_trial_t> sheet_engine_t::try_other_clauses() const {
    std::vector<clause_trial_t> trials;
    for (index_t number = 0; number < fProgram.relations.size(); ++number) {
        if (fSelected[number] == kNone) continue;
        const range_t clauses = fProgram.relations[number].clauses;
        for (index_t clause = clauses.begin; clause < clauses.end; ++clause) {
            if (clause == fSelected[number]) continue;
            try {
                trials.push_back(try_clause(fProgram.clauses[clause]));
            } catch (const std::exception&) {
                continue; // a clause that fails says nothing
            }
        }
    }
    return trials;
}

clause_trial_t sheet_engine_t::try_clause(const sheet_program_t::clause_t& clause) const {
    constexpr double kTolerance = 1e-4; // of what people read
    const sheet_program_t::expression_of_t& tried = fProgram.expressions[clause.expression];
    clause_trial_t trial;
    trial.position = fProgram.source->position(tried.code.offset());
    const any_regular_t result = fMachine.evaluate(tried.code, tried.variables.of(fBindings));
    const auto targets = clause.targets.of(fProgram.targets);
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const any_regular_t& value = targets.size() == 1 ? result : result.get<array_t>().at(i);
        if (!trial.agrees || nearly_equal(value, fValues[targets[i]], kTolerance)) continue;
        trial.agrees = false;
        trial.message = "contradicts the other clauses of its relation: it makes " + fProgram.quoted(targets[i]) + " " +
                        serialize_regular(value) + ", they " + serialize_regular(fValues[targets[i]]);
    }
    return trial;
}

boost::signals2::connection sheet_engine_t::subscribe(index_t cell, const sheet_t::slot_t& slot) {
    if (!fSignals[cell]) fSignals[cell] = std::make_unique<signal_t>();
    boost::signals2::connection connection = fSignals[cell]->connect(slot);
    slot(fValues[cell]);
    return connection;
}

bool sheet_engine_t::evaluate(index_t expression, any_regular_t& result) {
    const sheet_program_t::expression_of_t& evaluated = fProgram.expressions[expression];
    ++fEvaluations;
    try {
        result = fMachine.evaluate(evaluated.code, evaluated.variables.of(fBindings));
        fErrors.succeed(expression);
        return true;
    } catch (const std::exception& exception) {
        fErrors.fail(expression, error_of(expression, exception));
        return false;
    }
}

error_t sheet_engine_t::error_of(index_t expression, const std::exception& exception) const {
    const sheet_program_t::expression_of_t& failed = fProgram.expressions[expression];
    const std::string of =
        failed.cell == kNone ? std::string("the condition: ") : "cell " + fProgram.quoted(failed.cell) + ": ";
    if (const auto* const placed = dynamic_cast<const error_t*>(&exception))
        return {placed->script(), placed->position(), of + placed->message()};
    return fProgram.error(failed.code.offset(), of + exception.what());
}

} // namespace orrin
