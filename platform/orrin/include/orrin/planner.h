#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orrin {

// Decides in which direction the relations between cells run. A relation has clauses; running any one of them, which
// reads its inputs and writes its outputs, makes the relation hold. A plan selects one clause for every active relation
// so that no cell is written twice and nothing goes in a circle. Of all plans it takes the one that lets the strongest
// cells keep their values: a cell is the stronger the later it was touched, at first those that were added earlier are
// stronger.
//
// The algorithm is propagation of degrees of freedom (Vander Zanden, "An incremental algorithm for satisfying
// hierarchies of multiway dataflow constraints", TOPLAS 18(1), 1996) with one weak constraint a cell for keeping its
// value. Cells that no relation joins are planned apart, and only where something changed.
//
// Planning takes time in proportion to the cells and relations that are joined, and as much again for every cell whose
// wish a first guess got wrong, which needs relations that are joined in rings. Touching takes none until the next
// plan, and an edit of a cell that is the strongest already needs no new one.
//
// Knows numbers only, no values. A sheet owns one for each of its stages.
class planner_t {
public:
    using index_t = std::uint32_t;
    static constexpr index_t kNone = ~index_t{0};

    struct clause_t {
        std::vector<index_t> inputs;
        std::vector<index_t> outputs;
    };
    struct selection_t {
        index_t relation = 0;
        index_t clause = 0; // within the relation
        friend bool operator==(const selection_t&, const selection_t&) = default;
    };

    enum class problem_t : std::uint8_t {
        over_constrained, // more relations than cells for them to write
        cycle,            // enough cells, but every choice of clauses goes in a circle
    };
    // Relations for which there is no plan. None of the relations joined with them runs.
    struct conflict_t {
        problem_t problem = problem_t::over_constrained;
        std::vector<index_t> relations;
    };

    // A cell that does not keep its value is one that nobody can set, so that it never stands against a plan. Adding
    // cells or relations after the first plan puts the strengths back to the order in which the cells were added.
    index_t add_cell(bool keepsValue = true);

    // A cell of the relation that one of its clauses neither reads nor writes; kNone if there is none. A relation of
    // which every clause uses every cell always gets a plan in polynomial time if there is one.
    struct unused_t {
        index_t clause = kNone;
        index_t cell = kNone;
    };
    static unused_t find_unused(std::span<const clause_t> clauses);

    // Throws std::invalid_argument for a relation without clauses, a clause without outputs, with an unused cell, or
    // that writes a cell twice or one that it reads, and std::out_of_range for an unknown cell.
    index_t add_relation(std::span<const clause_t> clauses, bool active = true);

    void set_active(index_t relation, bool active);
    // How many relations are joined at most, directly or through others.
    std::size_t most_joined();

    // Makes the cells the strongest ones, in the order of strength that they have among themselves.
    void touch(std::span<const index_t> cells);
    void touch(index_t cell);

    // Plans what changed since the last time. False if nothing had to be planned, so that all below is as it was.
    bool plan();

    // In an order in which the clauses can run.
    std::span<const selection_t> selections() const { return fSelections; }
    // The clause that the relation runs, kNone if it runs none.
    index_t clause_of(index_t relation) const { return fRelations[relation].selected; }
    // The relation that writes the cell, kNone if the cell keeps its value.
    index_t writer_of(index_t cell) const { return fCells[cell].writer; }
    std::span<const conflict_t> conflicts() const { return fConflicts; }
    // True if the cell is joined to relations for which there is no plan.
    bool is_in_conflict(index_t cell) const;

    // How many times a clause was chosen so far, in trials too: what planning costs.
    std::uint64_t choice_count() const { return fChoices; }

private:
    struct range_t {
        index_t begin = 0;
        index_t end = 0;
        index_t size() const { return end - begin; }
    };
    struct planned_clause_t {
        range_t inputs; // in fClauseCells, and so the outputs
        range_t outputs;
    };
    struct relation_t {
        range_t cells;   // in fRelationCells
        range_t clauses; // in fClauses
        index_t group = kNone;
        index_t selected = kNone;
        index_t fewestOutputs = kNone; // of its clauses
        index_t waitsFor = 0;          // inputs of its selected clause that are not settled, or have no rank yet
        bool active = true;
        bool pending = false; // in a trial
    };
    struct cell_t {
        range_t relations; // in fCellRelations
        index_t group = kNone;
        index_t writer = kNone;
        index_t relationCount = 0;   // active ones that mention it
        index_t references = 0;      // of those, the ones that are pending, and its own wish to keep its value
        index_t rank = 0;            // in its group, 0 the strongest
        std::uint64_t touchedAt = 0; // 0: not since the group's order was brought up to date
        bool keepsValue = true;
        bool stays = false;   // its wish is granted
        bool holds = false;   // its wish counts in the trial
        bool settled = false; // it stays, or is computed from settled cells alone
    };
    // Cells that relations join, directly or through others.
    struct group_t {
        std::vector<index_t> cells; // from the strongest to the weakest
        std::vector<index_t> relations;
        std::vector<selection_t> selections;
        std::vector<index_t> conflict;
        index_t latest = kNone; // touched since the order was brought up to date, the last one
        bool stale = true;
    };

    std::span<const index_t> clause_cells(range_t range) const;
    std::span<const index_t> cells_of(index_t relation) const;
    std::span<const index_t> relations_of(index_t cell) const;
    const planned_clause_t& selected_clause(selection_t selection) const;

    void join();
    void index_relations_of_cells();
    std::vector<index_t> join_groups() const;
    void note_touch(index_t cell);
    void raise_touched();
    void raise_touched(group_t& group);
    void plan_group(group_t& group);
    void count_relations(const group_t& group);
    void grant_stays(group_t& group);
    bool keep(group_t& group, std::size_t rank);
    bool attempt(const group_t& group) { return propose(group, group.cells.size()); }
    bool propose(const group_t& group, std::size_t firstWish);
    std::size_t begin_trial(const group_t& group, std::size_t firstWish);
    void give_way(index_t cell);
    void follow_trial(group_t& group);
    void settle(index_t cell);
    void settle_outputs(const relation_t& relation);
    void settle_what_follows();
    void free_queued();
    void free_cell(index_t cell);
    index_t pending_relation(index_t cell) const;
    index_t freest_clause(index_t relation, index_t cell) const;
    void select(selection_t selection);
    void note_plan(const group_t& group);
    void rank_along_flow(group_t& group);
    void gather();
    bool can_match(std::span<const index_t> relations) const;

    std::vector<cell_t> fCells;
    std::vector<relation_t> fRelations;
    std::vector<planned_clause_t> fClauses;
    std::vector<index_t> fClauseCells;
    std::vector<index_t> fRelationCells;
    std::vector<index_t> fCellRelations;
    std::vector<group_t> fGroups;
    std::vector<selection_t> fSelections;
    std::vector<conflict_t> fConflicts;
    std::vector<index_t> fTouched; // groups
    std::uint64_t fTouches = 0;
    std::uint64_t fChoices = 0;

    // Of the trial in progress.
    std::vector<index_t> fQueue;
    std::vector<selection_t> fTrial;

    bool fJoined = false;
    bool fStale = true;
};

} // namespace orrin
