#include "orrin/planner.h"

#include "matching.h"

#include <algorithm>
#include <numeric>
#include <queue>
#include <stdexcept>
#include <utility>

namespace orrin {

namespace {

std::vector<index_t> sorted_cells(std::span<const planner_t::clause_t> clauses) {
    std::vector<index_t> cells;
    for (const planner_t::clause_t& clause : clauses) {
        cells.insert(cells.end(), clause.inputs.begin(), clause.inputs.end());
        cells.insert(cells.end(), clause.outputs.begin(), clause.outputs.end());
    }
    std::ranges::sort(cells);
    cells.erase(std::unique(cells.begin(), cells.end()), cells.end());
    return cells;
}

std::vector<index_t> without_repeats(std::vector<index_t> cells) {
    std::ranges::sort(cells);
    cells.erase(std::unique(cells.begin(), cells.end()), cells.end());
    return cells;
}

void check_clause(const planner_t::clause_t& clause, std::size_t relationCells) {
    const std::vector<index_t> inputs = without_repeats(clause.inputs);
    const std::vector<index_t> outputs = without_repeats(clause.outputs);
    if (outputs.empty()) throw std::invalid_argument("a clause writes nothing");
    if (outputs.size() != clause.outputs.size()) throw std::invalid_argument("a clause writes a cell twice");
    std::vector<index_t> both;
    std::ranges::set_intersection(inputs, outputs, std::back_inserter(both));
    if (!both.empty()) throw std::invalid_argument("a clause writes a cell that it reads");
    if (inputs.size() + outputs.size() != relationCells)
        throw std::invalid_argument("a clause does not use every cell of its relation");
}

} // namespace

index_t planner_t::add_cell(bool keepsValue) {
    cell_t cell;
    cell.keepsValue = keepsValue;
    fCells.push_back(cell);
    fJoined = false;
    return static_cast<index_t>(fCells.size() - 1);
}

planner_t::unused_t planner_t::find_unused(std::span<const clause_t> clauses) {
    const std::vector<index_t> all = sorted_cells(clauses);
    for (index_t clause = 0; clause < clauses.size(); ++clause) {
        const std::vector<index_t> used = sorted_cells(clauses.subspan(clause, 1));
        const auto unused = std::ranges::mismatch(all, used).in1;
        if (unused != all.end()) return {clause, *unused};
    }
    return {};
}

index_t planner_t::add_relation(std::span<const clause_t> clauses, bool active) {
    if (clauses.empty()) throw std::invalid_argument("a relation has no clause");
    const std::vector<index_t> cells = sorted_cells(clauses);
    if (!cells.empty() && cells.back() >= fCells.size()) throw std::out_of_range("a clause uses an unknown cell");
    for (const clause_t& clause : clauses)
        check_clause(clause, cells.size());

    const auto append = [](std::vector<index_t>& all, const std::vector<index_t>& some) {
        const range_t range{static_cast<index_t>(all.size()), static_cast<index_t>(all.size() + some.size())};
        all.insert(all.end(), some.begin(), some.end());
        return range;
    };
    relation_t relation;
    relation.active = active;
    relation.cells = append(fRelationCells, cells);
    relation.clauses.begin = static_cast<index_t>(fClauses.size());
    for (const clause_t& clause : clauses) {
        relation.fewestOutputs = std::min(relation.fewestOutputs, static_cast<index_t>(clause.outputs.size()));
        const range_t inputs = append(fClauseCells, without_repeats(clause.inputs));
        fClauses.push_back({inputs, append(fClauseCells, clause.outputs)});
    }
    relation.clauses.end = static_cast<index_t>(fClauses.size());
    fRelations.push_back(relation);
    fJoined = false;
    return static_cast<index_t>(fRelations.size() - 1);
}

void planner_t::set_active(index_t relation, bool active) {
    relation_t& changed = fRelations[relation];
    if (changed.active == active) return;
    changed.active = active;
    fStale = true;
    if (fJoined) fGroups[changed.group].stale = true;
}

std::size_t planner_t::most_joined() {
    join();
    std::size_t most = 0;
    for (const group_t& group : fGroups)
        most = std::max(most, group.relations.size());
    return most;
}

void planner_t::touch(index_t cell) {
    join();
    if (fCells[cell].group == kNone) return;
    group_t& group = fGroups[fCells[cell].group];
    if (cell == (group.latest == kNone ? group.cells.front() : group.latest)) return;
    ++fTouches;
    note_touch(cell);
    group.stale = fStale = true;
}

void planner_t::touch(std::span<const index_t> cells) {
    join();
    raise_touched(); // so that they have the order that they keep among themselves
    ++fTouches;
    for (const index_t cell : cells)
        if (fCells[cell].group != kNone) note_touch(cell);
    raise_touched();
}

void planner_t::note_touch(index_t cell) {
    fCells[cell].touchedAt = fTouches;
    if (std::exchange(fGroups[fCells[cell].group].latest, cell) == kNone) fTouched.push_back(fCells[cell].group);
}

bool planner_t::plan() {
    join();
    raise_touched();
    if (!fStale) return false;
    for (group_t& group : fGroups)
        if (std::exchange(group.stale, false)) plan_group(group);
    gather();
    fStale = false;
    return true;
}

bool planner_t::is_in_conflict(index_t cell) const {
    const index_t group = fCells[cell].group;
    return group != kNone && !fGroups[group].conflict.empty();
}

std::span<const index_t> planner_t::clause_cells(range_t range) const {
    return std::span(fClauseCells).subspan(range.begin, range.end - range.begin);
}

std::span<const index_t> planner_t::cells_of(index_t relation) const {
    const range_t range = fRelations[relation].cells;
    return std::span(fRelationCells).subspan(range.begin, range.end - range.begin);
}

std::span<const index_t> planner_t::relations_of(index_t cell) const {
    const range_t range = fCells[cell].relations;
    return std::span(fCellRelations).subspan(range.begin, range.end - range.begin);
}

const planner_t::planned_clause_t& planner_t::selected_clause(selection_t selection) const {
    return fClauses[fRelations[selection.relation].clauses.begin + selection.clause];
}

// Brings the groups up to date with cells and relations that were added. Groups that grow keep the order of their
// cells' strengths only from before the first plan, which is when sheets add.
void planner_t::join() {
    if (fJoined) return;
    index_relations_of_cells();
    const std::vector<index_t> root = join_groups();
    fGroups.clear();
    fTouched.clear();
    std::vector<index_t> groupOf(fCells.size(), kNone);
    for (index_t cell = 0; cell < fCells.size(); ++cell) {
        fCells[cell].group = kNone;
        fCells[cell].touchedAt = 0;
        if (relations_of(cell).empty()) continue;
        index_t& group = groupOf[root[cell]];
        if (group == kNone) {
            group = static_cast<index_t>(fGroups.size());
            fGroups.emplace_back();
        }
        fCells[cell].group = group;
        fGroups[group].cells.push_back(cell);
    }
    for (index_t relation = 0; relation < fRelations.size(); ++relation) {
        fRelations[relation].group = fCells[cells_of(relation).front()].group;
        fGroups[fRelations[relation].group].relations.push_back(relation);
    }
    fJoined = fStale = true;
}

void planner_t::index_relations_of_cells() {
    std::vector<index_t> ends(fCells.size() + 1, 0);
    for (const index_t cell : fRelationCells)
        ++ends[cell + 1];
    std::partial_sum(ends.begin(), ends.end(), ends.begin());
    for (index_t cell = 0; cell < fCells.size(); ++cell)
        fCells[cell].relations = {ends[cell], ends[cell + 1]};
    fCellRelations.resize(fRelationCells.size());
    for (index_t relation = 0; relation < fRelations.size(); ++relation)
        for (const index_t cell : cells_of(relation))
            fCellRelations[ends[cell]++] = relation;
}

// A cell of the group for every cell, the same for all cells of a group.
std::vector<index_t> planner_t::join_groups() const {
    std::vector<index_t> parent(fCells.size());
    std::iota(parent.begin(), parent.end(), 0);
    const auto root = [&parent](index_t cell) {
        while (parent[cell] != cell)
            cell = parent[cell] = parent[parent[cell]];
        return cell;
    };
    for (index_t relation = 0; relation < fRelations.size(); ++relation)
        for (const index_t cell : cells_of(relation))
            parent[root(cell)] = root(cells_of(relation).front());
    for (index_t cell = 0; cell < parent.size(); ++cell)
        parent[cell] = root(cell);
    return parent;
}

void planner_t::raise_touched() {
    for (const index_t group : fTouched)
        raise_touched(fGroups[group]);
    fTouched.clear();
}

void planner_t::raise_touched(group_t& group) {
    const auto touchedAt = [this](index_t cell) { return fCells[cell].touchedAt; };
    if (!std::ranges::is_sorted(group.cells, std::greater<>(), touchedAt)) {
        std::ranges::stable_sort(group.cells, std::greater<>(), touchedAt);
        group.stale = fStale = true;
    }
    for (const index_t cell : group.cells)
        fCells[cell].touchedAt = 0;
    group.latest = kNone;
}

void planner_t::plan_group(group_t& group) {
    count_relations(group);
    group.selections.clear();
    group.conflict.clear();
    if (attempt(group)) {
        grant_stays(group);
        attempt(group);
        group.selections = fTrial;
        std::ranges::reverse(group.selections);
        note_plan(group);
        rank_along_flow(group);
    } else {
        for (const index_t relation : group.relations)
            if (fRelations[relation].pending) group.conflict.push_back(relation);
        note_plan(group);
    }
}

void planner_t::count_relations(const group_t& group) {
    for (const index_t cell : group.cells) {
        fCells[cell].stays = fCells[cell].settled = false;
        fCells[cell].relationCount = 0;
    }
    for (const index_t relation : group.relations)
        if (fRelations[relation].active)
            for (const index_t cell : cells_of(relation))
                ++fCells[cell].relationCount;
}

// From the strongest cell on, each keeps its value if any plan allows it together with the ones before. The plan at
// hand decides for most: what it leaves alone may stay, and what is settled cannot.
void planner_t::grant_stays(group_t& group) {
    propose(group, 0);
    follow_trial(group);
    for (std::size_t rank = 0; rank < group.cells.size(); ++rank) {
        const cell_t& cell = fCells[group.cells[rank]];
        if (cell.keepsValue && !cell.settled && keep(group, rank)) settle(group.cells[rank]);
    }
}

bool planner_t::keep(group_t& group, std::size_t rank) {
    cell_t& kept = fCells[group.cells[rank]];
    kept.stays = true;
    if (kept.writer == kNone) return true;
    kept.stays = propose(group, rank + 1);
    if (kept.stays) follow_trial(group);
    return kept.stays;
}

// Looks for a plan that leaves alone the cells that stay. Those from `firstWish` on, which are the weaker ones, wish to
// stay as well, but give way, the weakest first, when there is no going on.
bool planner_t::propose(const group_t& group, std::size_t firstWish) {
    const std::size_t wanted = begin_trial(group, firstWish);
    free_queued();
    for (std::size_t rank = group.cells.size(); rank > firstWish && fTrial.size() < wanted; --rank)
        give_way(group.cells[rank - 1]);
    return fTrial.size() == wanted;
}

// Returns how many relations need a clause.
std::size_t planner_t::begin_trial(const group_t& group, std::size_t firstWish) {
    fTrial.clear();
    fQueue.clear();
    std::size_t pending = 0;
    for (const index_t relation : group.relations)
        pending += fRelations[relation].pending = fRelations[relation].active;
    for (std::size_t rank = group.cells.size(); rank-- > 0;) {
        cell_t& cell = fCells[group.cells[rank]];
        cell.holds = cell.stays || (rank >= firstWish && cell.keepsValue && !cell.settled);
        cell.references = cell.relationCount + (cell.holds ? 1 : 0);
        if (cell.references == 1) fQueue.push_back(group.cells[rank]);
    }
    return pending;
}

void planner_t::give_way(index_t cell) {
    if (!fCells[cell].holds || fCells[cell].references == 1) return; // no relation is left that could write it
    fCells[cell].holds = false;
    if (--fCells[cell].references > 1) return;
    fQueue.push_back(cell);
    free_queued();
}

void planner_t::follow_trial(group_t& group) {
    group.selections = fTrial;
    note_plan(group);
    fQueue.clear();
    const auto isOpen = [this](index_t input) { return !fCells[input].settled; };
    for (const selection_t selection : group.selections)
        fRelations[selection.relation].waitsFor =
            static_cast<index_t>(std::ranges::count_if(clause_cells(selected_clause(selection).inputs), isOpen));
    for (const selection_t selection : group.selections)
        if (fRelations[selection.relation].waitsFor == 0) settle_outputs(fRelations[selection.relation]);
    settle_what_follows();
}

void planner_t::settle(index_t cell) {
    fCells[cell].settled = true;
    fQueue.assign(1, cell);
    settle_what_follows();
}

// Relations that read settled cells alone and write as few others as they can need all of these: none of them can stay.
void planner_t::settle_outputs(const relation_t& relation) {
    const range_t outputs = fClauses[relation.clauses.begin + relation.selected].outputs;
    if (outputs.size() > relation.fewestOutputs) return;
    for (const index_t output : clause_cells(outputs))
        if (!std::exchange(fCells[output].settled, true)) fQueue.push_back(output);
}

void planner_t::settle_what_follows() {
    for (std::size_t next = 0; next < fQueue.size(); ++next)
        for (const index_t index : relations_of(fQueue[next])) {
            relation_t& relation = fRelations[index];
            if (relation.selected == kNone || fCells[fQueue[next]].writer == index) continue;
            if (--relation.waitsFor == 0) settle_outputs(relation);
        }
    fQueue.clear();
}

// The simple planner: whatever only one relation mentions can be written by that relation last.
void planner_t::free_queued() {
    for (std::size_t next = 0; next < fQueue.size(); ++next)
        free_cell(fQueue[next]);
    fQueue.clear();
}

void planner_t::free_cell(index_t cell) {
    if (fCells[cell].references != 1) return;
    const index_t relation = pending_relation(cell);
    if (relation == kNone) return; // what is left is its own wish
    const index_t clause = freest_clause(relation, cell);
    if (clause != kNone) select({relation, clause});
}

index_t planner_t::pending_relation(index_t cell) const {
    const std::span<const index_t> relations = relations_of(cell);
    const auto found = std::ranges::find_if(relations, [this](index_t index) { return fRelations[index].pending; });
    return found == relations.end() ? kNone : *found;
}

// The clause with the fewest outputs of those that write the cell and otherwise only free ones.
index_t planner_t::freest_clause(index_t relation, index_t cell) const {
    const range_t clauses = fRelations[relation].clauses;
    index_t best = kNone;
    index_t fewest = kNone;
    for (index_t index = clauses.begin; index < clauses.end; ++index) {
        const std::span<const index_t> outputs = clause_cells(fClauses[index].outputs);
        if (outputs.size() >= fewest || !std::ranges::count(outputs, cell)) continue;
        if (!std::ranges::all_of(outputs, [this](index_t output) { return fCells[output].references == 1; })) continue;
        best = index - clauses.begin;
        fewest = static_cast<index_t>(outputs.size());
    }
    return best;
}

void planner_t::select(selection_t selection) {
    ++fChoices;
    fTrial.push_back(selection);
    fRelations[selection.relation].pending = false;
    for (const index_t cell : cells_of(selection.relation))
        if (--fCells[cell].references == 1) fQueue.push_back(cell);
}

// What relations run and who writes the cells, as the group's selections say.
void planner_t::note_plan(const group_t& group) {
    for (const index_t cell : group.cells)
        fCells[cell].writer = kNone;
    for (const index_t relation : group.relations)
        fRelations[relation].selected = kNone;
    for (const selection_t selection : group.selections) {
        fRelations[selection.relation].selected = selection.clause;
        for (const index_t output : clause_cells(selected_clause(selection).outputs))
            fCells[output].writer = selection.relation;
    }
}

// A cell that is computed becomes weaker than what it is computed from; otherwise the order stays. So a later change of
// a cell that kept its value turns no relation around.
void planner_t::rank_along_flow(group_t& group) {
    std::priority_queue<index_t, std::vector<index_t>, std::greater<>> ready; // ranks
    const auto finish = [&](selection_t selection) {
        for (const index_t output : clause_cells(selected_clause(selection).outputs))
            ready.push(fCells[output].rank);
    };
    for (index_t rank = 0; rank < group.cells.size(); ++rank) {
        fCells[group.cells[rank]].rank = rank;
        if (fCells[group.cells[rank]].writer == kNone) ready.push(rank);
    }
    for (const selection_t selection : group.selections) {
        fRelations[selection.relation].waitsFor = selected_clause(selection).inputs.size();
        if (fRelations[selection.relation].waitsFor == 0) finish(selection);
    }
    std::vector<index_t> ranked;
    ranked.reserve(group.cells.size());
    while (!ready.empty()) {
        const index_t cell = group.cells[ready.top()];
        ready.pop();
        ranked.push_back(cell);
        for (const index_t index : relations_of(cell)) {
            relation_t& relation = fRelations[index];
            if (relation.selected == kNone || fCells[cell].writer == index) continue;
            if (--relation.waitsFor == 0) finish({index, relation.selected});
        }
    }
    group.cells = std::move(ranked);
}

void planner_t::gather() {
    fSelections.clear();
    fConflicts.clear();
    for (const group_t& group : fGroups) {
        fSelections.insert(fSelections.end(), group.selections.begin(), group.selections.end());
        if (group.conflict.empty()) continue;
        const problem_t problem = can_match(group.conflict) ? problem_t::cycle : problem_t::over_constrained;
        fConflicts.push_back({problem, group.conflict});
    }
}

bool planner_t::can_match(std::span<const index_t> relations) const {
    matching_t::outputs_t outputs;
    for (const index_t relation : relations) {
        std::vector<index_t> written;
        const range_t clauses = fRelations[relation].clauses;
        for (index_t clause = clauses.begin; clause < clauses.end; ++clause)
            std::ranges::copy(clause_cells(fClauses[clause].outputs), std::back_inserter(written));
        outputs.push_back(without_repeats(std::move(written)));
    }
    return matching_t(outputs).matches_all();
}

} // namespace orrin
