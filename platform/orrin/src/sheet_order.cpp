#include "sheet_program.h"

#include <algorithm>
#include <string>
#include <vector>

namespace orrin {

namespace {

// Finds out which relations need a planner, which stage they belong to, and in which order the others run.
class orderer_t {
public:
    explicit orderer_t(sheet_program_t& program) : fProgram(program) {}

    void order() {
        index_relations();
        choose_planned();
        choose_stages();
        check_conditions();
        sort_fixed();
        fill_planners();
    }

private:
    using flags_t = std::vector<char>;

    std::span<const index_t> targets_of(const sheet_program_t::clause_t& clause) const {
        return clause.targets.of(fProgram.targets);
    }

    // Calls for every cell that a clause reads the current value of.
    template <class Call>
    void for_reads(const sheet_program_t::clause_t& clause, Call call) const {
        const range_t variables = fProgram.expressions[clause.expression].variables;
        for (const sheet_program_t::variable_t variable : variables.of(fProgram.variables))
            if (variable.cell != kNone && !variable.contributed) call(variable.cell);
    }

    void index_relations() {
        std::vector<adjacency_t::pair_t> readers;
        std::vector<adjacency_t::pair_t> writers;
        for (index_t relation = 0; relation < fProgram.relations.size(); ++relation)
            for (const auto& clause : fProgram.relations[relation].clauses.of(fProgram.clauses)) {
                for_reads(clause, [&](index_t cell) { readers.emplace_back(cell, relation); });
                for (const index_t target : targets_of(clause))
                    writers.emplace_back(target, relation);
            }
        const auto without_repeats = [](std::vector<adjacency_t::pair_t>& pairs) {
            std::ranges::sort(pairs);
            pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
        };
        without_repeats(readers);
        without_repeats(writers);
        fReaders = adjacency_t(fProgram.cells.size(), readers);
        fWriters = adjacency_t(fProgram.cells.size(), writers);
    }

    // Marks the outputs of these relations, and those of all relations that read something marked.
    flags_t flow(std::vector<index_t> relations) const {
        flags_t marked(fProgram.cells.size(), false);
        flags_t seen(fProgram.relations.size(), false);
        for (const index_t relation : relations)
            seen[relation] = true;
        while (!relations.empty()) {
            const range_t clauses = fProgram.relations[relations.back()].clauses;
            relations.pop_back();
            for (const auto& clause : clauses.of(fProgram.clauses))
                for (const index_t target : targets_of(clause))
                    if (!std::exchange(marked[target], true)) push_unseen(fReaders[target], seen, relations);
        }
        return marked;
    }

    static void push_unseen(std::span<const index_t> some, flags_t& seen, std::vector<index_t>& relations) {
        for (const index_t relation : some)
            if (!std::exchange(seen[relation], true)) relations.push_back(relation);
    }

    // Relations with a choice, and those that stand on a way from one of these to another.
    void choose_planned() {
        fPlanned.assign(fProgram.relations.size(), false);
        for (index_t relation = 0; relation < fProgram.relations.size(); ++relation)
            fPlanned[relation] = has_choice(relation);
        const std::vector<index_t> choosing = planned_relations();
        fDynamic = flow(choosing);
        const flags_t leads = leading_to(choosing);
        for (index_t relation = 0; relation < fProgram.relations.size(); ++relation)
            if (leads[relation] && reads_marked(relation, fDynamic)) fPlanned[relation] = true;
    }

    bool has_choice(index_t number) const {
        const sheet_program_t::relation_t& relation = fProgram.relations[number];
        if (relation.clauses.size() > 1 || relation.condition != kNone) return true;
        return std::ranges::any_of(targets_of(fProgram.clauses[relation.clauses.begin]),
                                   [this](index_t target) { return fWriters[target].size() > 1; });
    }

    std::vector<index_t> planned_relations() const {
        std::vector<index_t> relations;
        for (index_t relation = 0; relation < fPlanned.size(); ++relation)
            if (fPlanned[relation]) relations.push_back(relation);
        return relations;
    }

    // The relations of whose outputs these relations read some, directly or through others.
    flags_t leading_to(std::vector<index_t> relations) const {
        flags_t leads(fProgram.relations.size(), false);
        while (!relations.empty()) {
            const range_t clauses = fProgram.relations[relations.back()].clauses;
            relations.pop_back();
            for (const auto& clause : clauses.of(fProgram.clauses))
                for_reads(clause, [&](index_t cell) { push_unseen(fWriters[cell], leads, relations); });
        }
        return leads;
    }

    bool reads_marked(index_t relation, const flags_t& marked) const {
        bool reads = false;
        for (const auto& clause : fProgram.relations[relation].clauses.of(fProgram.clauses))
            for_reads(clause, [&](index_t cell) { reads = reads || marked[cell]; });
        return reads;
    }

    // The second stage is what conditional relations write and all that can be computed from it, or be chosen because
    // of it.
    void choose_stages() {
        std::vector<index_t> conditional;
        for (index_t relation = 0; relation < fProgram.relations.size(); ++relation)
            if (fProgram.relations[relation].condition != kNone) conditional.push_back(relation);
        fLate = late_cells(std::move(conditional));
        for (sheet_program_t::relation_t& relation : fProgram.relations)
            for (const auto& clause : relation.clauses.of(fProgram.clauses))
                for (const index_t target : targets_of(clause))
                    if (fLate[target]) relation.stage = 1;
    }

    flags_t late_cells(std::vector<index_t> relations) const {
        flags_t late(fProgram.cells.size(), false);
        flags_t seen(fProgram.relations.size(), false);
        for (const index_t relation : relations)
            seen[relation] = true;
        while (!relations.empty()) {
            const range_t clauses = fProgram.relations[relations.back()].clauses;
            relations.pop_back();
            for (const auto& clause : clauses.of(fProgram.clauses))
                for (const index_t target : targets_of(clause)) {
                    if (std::exchange(late[target], true)) continue;
                    push_unseen(fReaders[target], seen, relations);
                    push_unseen(fWriters[target], seen, relations);
                }
        }
        return late;
    }

    void check_conditions() const {
        for (const index_t number : fProgram.conditions) {
            const sheet_program_t::expression_of_t& condition = fProgram.expressions[number];
            for (const sheet_program_t::variable_t variable : condition.variables.of(fProgram.variables))
                if (variable.cell != kNone && fLate[variable.cell])
                    throw fProgram.error(condition.code.offset(), "a condition cannot read " +
                                                                      fProgram.quoted(variable.cell) +
                                                                      ", which conditional relations can change");
        }
    }

    // Topological order of the relations without a choice.
    void sort_fixed() {
        std::vector<index_t> waitsFor(fProgram.relations.size(), 0);
        std::vector<index_t> ready;
        for (index_t relation = 0; relation < fProgram.relations.size(); ++relation) {
            if (fPlanned[relation]) continue;
            for_fixed_writers(relation, [&](index_t) { ++waitsFor[relation]; });
            if (waitsFor[relation] == 0) ready.push_back(relation);
        }
        const flags_t ofInterface = from_interface();
        for (std::size_t next = 0; next < ready.size(); ++next) {
            place_fixed(ready[next], ofInterface);
            for (const index_t target : targets_of(only_clause(ready[next])))
                for (const index_t reader : fReaders[target])
                    if (!fPlanned[reader] && --waitsFor[reader] == 0) ready.push_back(reader);
        }
        for (index_t relation = 0; relation < fProgram.relations.size(); ++relation)
            if (!fPlanned[relation] && waitsFor[relation] > 0) report_circle(relation, waitsFor);
    }

    const sheet_program_t::clause_t& only_clause(index_t relation) const {
        return fProgram.clauses[fProgram.relations[relation].clauses.begin];
    }

    // Calls once for every cell that the relation reads and another one without a choice writes.
    template <class Call>
    void for_fixed_writers(index_t relation, Call call) const {
        for_reads(only_clause(relation), [&](index_t cell) {
            for (const index_t writer : fWriters[cell])
                if (!fPlanned[writer]) call(writer);
        });
    }

    flags_t from_interface() const {
        std::vector<index_t> relations;
        flags_t seen(fProgram.relations.size(), false);
        for (index_t cell = 0; cell < fProgram.cells.size(); ++cell) {
            if (fProgram.cells[cell].kind != cell_kind_t::interface) continue;
            push_unseen(fReaders[cell], seen, relations);
            push_unseen(fWriters[cell], seen, relations);
        }
        return flow(std::move(relations));
    }

    void place_fixed(index_t number, const flags_t& ofInterface) {
        const sheet_program_t::relation_t& relation = fProgram.relations[number];
        const index_t first = targets_of(only_clause(number)).front();
        sheet_program_t::stage_t& stage = fProgram.stages[relation.stage];
        std::vector<index_t>& clauses = !ofInterface[first] ? fProgram.inputClauses
                                        : fDynamic[first]   ? stage.clausesAfter
                                                            : stage.clausesBefore;
        clauses.push_back(relation.clauses.begin);
        for (const index_t target : targets_of(only_clause(number)))
            fProgram.cells[target].fixedWriter = relation.clauses.begin;
    }

    // Every relation that still waits does so for another one: following these comes round.
    [[noreturn]] void report_circle(index_t relation, const std::vector<index_t>& waitsFor) const {
        std::vector<index_t> path;
        std::vector<index_t> at(fProgram.relations.size(), kNone); // in path
        while (at[relation] == kNone) {
            at[relation] = static_cast<index_t>(path.size());
            path.push_back(relation);
            for_fixed_writers(path.back(), [&](index_t writer) {
                if (waitsFor[writer] > 0) relation = writer;
            });
        }
        path.erase(path.begin(), path.begin() + at[relation]);
        std::rotate(path.begin(), std::ranges::min_element(path), path.end());
        std::string message = "a circle: ";
        for (const index_t one : std::span(path).first(std::min(path.size(), kMostNamed)))
            message += first_target(one) + " <== ";
        message += path.size() > kMostNamed ? "..." : first_target(path.front());
        throw fProgram.error(fProgram.relations[path.front()].offset, std::move(message));
    }

    std::string first_target(index_t relation) const {
        return fProgram.quoted(targets_of(only_clause(relation)).front());
    }

    void fill_planners() {
        add_planned_cells();
        for (index_t relation = 0; relation < fProgram.relations.size(); ++relation)
            if (fPlanned[relation]) add_planned_relation(relation);
        for (sheet_program_t::stage_t& stage : fProgram.stages)
            if (stage.planner.most_joined() > kMostJoined)
                throw fProgram.error(fProgram.relations[stage.relations.front()].offset,
                                     "more than " + std::to_string(kMostJoined) +
                                         " relations, from here on, are joined with each other");
    }

    // From the strongest to the weakest: those that are initialised, the others that can be set, the rest.
    void add_planned_cells() {
        flags_t defined(fProgram.cells.size(), false);
        flags_t planned(fProgram.cells.size(), false);
        for (const index_t relation : planned_relations())
            for (const auto& clause : fProgram.relations[relation].clauses.of(fProgram.clauses))
                for (const index_t target : targets_of(clause)) {
                    planned[target] = true;
                    defined[target] |= fProgram.relations[relation].isDefinition;
                }
        const auto add_all = [&](auto isMeant) {
            for (index_t cell = 0; cell < fProgram.cells.size(); ++cell)
                if (planned[cell] && isMeant(cell)) add_planned_cell(cell, !defined[cell]);
        };
        const auto initialised = [this](index_t cell) { return fProgram.cells[cell].initialiser != kNone; };
        add_all([&](index_t cell) { return !defined[cell] && initialised(cell); });
        add_all([&](index_t cell) { return !defined[cell] && !initialised(cell); });
        add_all([&](index_t cell) { return defined[cell]; });
    }

    void add_planned_cell(index_t number, bool keepsValue) {
        sheet_program_t::cell_t& cell = fProgram.cells[number];
        cell.stage = fLate[number] ? 1 : 0;
        sheet_program_t::stage_t& stage = fProgram.stages[cell.stage];
        cell.planned = stage.planner.add_cell(keepsValue);
        stage.cells.push_back(number);
    }

    void add_planned_relation(index_t number) {
        sheet_program_t::relation_t& relation = fProgram.relations[number];
        std::vector<planner_t::clause_t> clauses;
        for (const auto& clause : relation.clauses.of(fProgram.clauses))
            clauses.push_back(planner_clause(clause, relation.stage));
        check_uses_all(relation, clauses);
        sheet_program_t::stage_t& stage = fProgram.stages[relation.stage];
        relation.planned = stage.planner.add_relation(clauses, relation.condition == kNone);
        stage.relations.push_back(number);
    }

    planner_t::clause_t planner_clause(const sheet_program_t::clause_t& clause, index_t stage) const {
        planner_t::clause_t result;
        for_reads(clause, [&](index_t cell) {
            if (fProgram.cells[cell].planned != kNone && fProgram.cells[cell].stage == stage)
                result.inputs.push_back(fProgram.cells[cell].planned);
        });
        for (const index_t target : targets_of(clause))
            result.outputs.push_back(fProgram.cells[target].planned);
        return result;
    }

    void check_uses_all(const sheet_program_t::relation_t& relation,
                        const std::vector<planner_t::clause_t>& clauses) const {
        const planner_t::unused_t unused = planner_t::find_unused(clauses);
        if (unused.clause == planner_t::kNone) return;
        const sheet_program_t::clause_t& clause = fProgram.clauses[relation.clauses.begin + unused.clause];
        const index_t cell = fProgram.stages[relation.stage].cells[unused.cell];
        throw fProgram.error(fProgram.expressions[clause.expression].code.offset(),
                             "every clause must use all cells of its relation that relations can change, this one "
                             "does not use " +
                                 fProgram.quoted(cell));
    }

    static constexpr std::size_t kMostNamed = 10;    // in a message
    static constexpr std::size_t kMostJoined = 2000; // planned in a tenth of a second or two

    sheet_program_t& fProgram;
    adjacency_t fReaders; // relations, by the cell that they read
    adjacency_t fWriters; // relations, by the cell that they can write
    flags_t fPlanned;     // relations
    flags_t fDynamic;     // cells whose value depends on a plan's choice
    flags_t fLate;        // cells of the second stage
};

} // namespace

void order_sheet(sheet_program_t& program) {
    orderer_t(program).order();
}

} // namespace orrin
