#include "orrin/planner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <stdexcept>
#include <vector>

namespace orrin {
namespace {

using testing::ElementsAre;
using index_t = planner_t::index_t;
using clauses_t = std::vector<planner_t::clause_t>;
constexpr index_t kNone = planner_t::kNone;

// One clause a cell, which is computed from all others.
clauses_t AnyFromTheOthers(const std::vector<index_t>& cells) {
    clauses_t clauses;
    for (const index_t output : cells) {
        planner_t::clause_t clause{{}, {output}};
        std::ranges::copy_if(cells, std::back_inserter(clause.inputs), [&](index_t cell) { return cell != output; });
        clauses.push_back(clause);
    }
    return clauses;
}

planner_t PlannerOf(std::size_t cells) {
    planner_t planner;
    for (std::size_t i = 0; i < cells; ++i)
        planner.add_cell();
    return planner;
}

std::vector<index_t> Sources(const planner_t& planner, std::size_t cells) {
    std::vector<index_t> sources;
    for (index_t cell = 0; cell < cells; ++cell)
        if (planner.writer_of(cell) == kNone) sources.push_back(cell);
    return sources;
}

TEST(Planner, SumTheCellThatWasTouchedLongestAgoIsComputed) {
    std::vector<index_t> order{0, 1, 2};
    do {
        planner_t planner = PlannerOf(3);
        planner.add_relation(AnyFromTheOthers({0, 1, 2}));
        planner.plan();
        for (const index_t cell : order) {
            planner.touch(cell);
            planner.plan();
        }
        EXPECT_THAT(planner.selections(), ElementsAre(planner_t::selection_t{0, order.front()}));
    } while (std::ranges::next_permutation(order).found);
}

TEST(Planner, UntouchedCellsTheOnesAddedLastAreComputed) {
    planner_t planner = PlannerOf(4);
    planner.add_relation(AnyFromTheOthers({0, 1, 2, 3}));
    EXPECT_TRUE(planner.plan());
    EXPECT_THAT(Sources(planner, 4), ElementsAre(0, 1, 2));
    EXPECT_FALSE(planner.plan());
}

TEST(Planner, ChainClausesRunAwayFromTheTouchedCell) {
    planner_t planner = PlannerOf(4);
    for (index_t i = 0; i < 3; ++i)
        planner.add_relation(AnyFromTheOthers({i, i + 1}));
    planner.touch(2);
    planner.plan();
    EXPECT_THAT(Sources(planner, 4), ElementsAre(2));
    const auto place = [&](index_t relation) {
        return std::ranges::find(planner.selections(), relation, &planner_t::selection_t::relation);
    };
    EXPECT_LT(place(1), place(0)); // 1 from 2 before 0 from 1
    EXPECT_EQ(planner.writer_of(3), 2u);
}

TEST(Planner, GroupsThatNothingJoinsKeepTheirPlans) {
    planner_t planner = PlannerOf(4);
    planner.add_relation(AnyFromTheOthers({0, 1}));
    planner.add_relation(AnyFromTheOthers({2, 3}));
    planner.plan();
    planner.touch(3);
    EXPECT_TRUE(planner.plan());
    EXPECT_THAT(Sources(planner, 4), ElementsAre(0, 3));
    planner.touch(3);
    EXPECT_FALSE(planner.plan());
}

TEST(Planner, TouchingSeveralKeepsTheirOrder) {
    planner_t planner = PlannerOf(4);
    planner.add_relation(AnyFromTheOthers({0, 1, 2, 3}));
    planner.touch(2);
    planner.touch(3); // 3, 2, 0, 1
    planner.touch(std::vector<index_t>{1, 2});
    planner.touch(0); // 0, 2, 1, 3
    planner.plan();
    EXPECT_THAT(Sources(planner, 4), ElementsAre(0, 1, 2));
}

TEST(Planner, ClauseWithTwoOutputsGivesWayToTheOneWithFewer) {
    planner_t planner = PlannerOf(3);
    planner.add_relation(clauses_t{{{2}, {0, 1}}, {{0, 1}, {2}}});
    planner.plan();
    EXPECT_THAT(Sources(planner, 3), ElementsAre(0, 1));
    planner.touch(2);
    planner.plan();
    EXPECT_THAT(Sources(planner, 3), ElementsAre(2));
    planner.touch(1);
    planner.plan();
    EXPECT_THAT(Sources(planner, 3), ElementsAre(0, 1));
}

TEST(Planner, CellThatNobodyCanSetNeverHolds) {
    planner_t planner;
    planner.add_cell(false);
    planner.add_cell();
    planner.add_relation(AnyFromTheOthers({0, 1}));
    planner.plan();
    EXPECT_THAT(Sources(planner, 2), ElementsAre(1));
}

TEST(Planner, InactiveRelationLeavesItsCellsAlone) {
    planner_t planner = PlannerOf(2);
    const index_t relation = planner.add_relation(AnyFromTheOthers({0, 1}), false);
    planner.plan();
    EXPECT_THAT(Sources(planner, 2), ElementsAre(0, 1));
    planner.set_active(relation, true);
    EXPECT_TRUE(planner.plan());
    EXPECT_THAT(Sources(planner, 2), ElementsAre(0));
    planner.set_active(relation, false);
    planner.plan();
    EXPECT_EQ(planner.clause_of(relation), kNone);
}

struct ConflictCase {
    const char* name;
    std::size_t cells;
    std::vector<clauses_t> relations;
    planner_t::problem_t problem;
    std::vector<index_t> named;
};

TEST(Planner, RelationsThatCannotHoldTogetherAreNamed) {
    const ConflictCase cases[] = {
        {"two writers of one cell", 2, {{{{1}, {0}}}, {{{1}, {0}}}}, planner_t::problem_t::over_constrained, {0, 1}},
        // Counting writers alone would take this for a plan.
        {"a pair in a circle", 2, {{{{1}, {0}}}, {{{0}, {1}}}}, planner_t::problem_t::cycle, {0, 1}},
        {"three relations, two cells",
         2,
         {AnyFromTheOthers({0, 1}), AnyFromTheOthers({0, 1}), AnyFromTheOthers({0, 1})},
         planner_t::problem_t::over_constrained,
         {0, 1, 2}},
        {"what hangs on the circle is not named",
         4,
         {{{{1}, {0}}}, {{{0}, {1}}}, {{{1}, {2}}}, AnyFromTheOthers({2, 3})},
         planner_t::problem_t::cycle,
         {0, 1}},
        {"each cell of a ring has two relations",
         3,
         {AnyFromTheOthers({0, 1}), AnyFromTheOthers({1, 2}), AnyFromTheOthers({2, 0})},
         planner_t::problem_t::cycle,
         {0, 1, 2}},
    };
    for (const ConflictCase& conflict : cases) {
        SCOPED_TRACE(conflict.name);
        planner_t planner = PlannerOf(conflict.cells + 2);
        for (const clauses_t& clauses : conflict.relations)
            planner.add_relation(clauses);
        const auto apart = static_cast<index_t>(conflict.cells);
        const index_t good = planner.add_relation(AnyFromTheOthers({apart, apart + 1}));
        planner.plan();
        ASSERT_EQ(planner.conflicts().size(), 1u);
        EXPECT_EQ(planner.conflicts()[0].problem, conflict.problem);
        EXPECT_EQ(planner.conflicts()[0].relations, conflict.named);
        EXPECT_TRUE(planner.is_in_conflict(0));
        EXPECT_THAT(planner.selections(), ElementsAre(planner_t::selection_t{good, 1}));
    }
}

TEST(Planner, ConflictEndsWithTheRelationThatCausesIt) {
    planner_t planner = PlannerOf(2);
    planner.add_relation(clauses_t{{{1}, {0}}});
    const index_t second = planner.add_relation(clauses_t{{{1}, {0}}});
    planner.plan();
    planner.set_active(second, false);
    planner.plan();
    EXPECT_TRUE(planner.conflicts().empty());
    EXPECT_FALSE(planner.is_in_conflict(0));
    EXPECT_EQ(planner.writer_of(0), 0u);
}

TEST(Planner, MalformedRelationsAreRefused) {
    const clauses_t malformed[] = {
        {}, {{{0}, {}}}, {{{0}, {1, 1}}}, {{{0, 1}, {1}}}, {{{0, 1}, {2}}, {{0}, {1}}},
    };
    for (const clauses_t& clauses : malformed)
        EXPECT_THROW(PlannerOf(3).add_relation(clauses), std::invalid_argument);
    EXPECT_THROW(PlannerOf(3).add_relation(clauses_t{{{0}, {3}}}), std::out_of_range);
    const planner_t::unused_t unused = planner_t::find_unused(malformed[4]);
    EXPECT_EQ(unused.clause, 1u);
    EXPECT_EQ(unused.cell, 2u);
}

// Tries every choice of clauses: true if one of them writes no cell twice, lets `kept` alone and has no circle.
class EveryPlan {
public:
    EveryPlan(std::size_t cells, const std::vector<clauses_t>& relations) : fCells(cells), fRelations(relations) {}

    bool Allows(const std::set<index_t>& kept) const {
        std::vector<const planner_t::clause_t*> chosen(fRelations.size());
        return Choose(0, kept, chosen);
    }

private:
    bool Choose(std::size_t relation, const std::set<index_t>& kept,
                std::vector<const planner_t::clause_t*>& chosen) const {
        if (relation == fRelations.size()) return Works(kept, chosen);
        return std::ranges::any_of(fRelations[relation], [&](const planner_t::clause_t& clause) {
            chosen[relation] = &clause;
            return Choose(relation + 1, kept, chosen);
        });
    }

    bool Works(const std::set<index_t>& kept, const std::vector<const planner_t::clause_t*>& chosen) const {
        std::vector<int> writers(fCells);
        for (const planner_t::clause_t* clause : chosen)
            for (const index_t output : clause->outputs)
                if (++writers[output] > 1 || kept.contains(output)) return false;
        std::vector<char> known(fCells);
        for (index_t cell = 0; cell < fCells; ++cell)
            known[cell] = writers[cell] == 0;
        for (std::size_t pass = 0; pass < chosen.size(); ++pass)
            for (const planner_t::clause_t* clause : chosen)
                if (std::ranges::all_of(clause->inputs, [&](index_t input) { return known[input]; }))
                    for (const index_t output : clause->outputs)
                        known[output] = true;
        return std::ranges::all_of(known, [](char one) { return one; });
    }

    std::size_t fCells;
    const std::vector<clauses_t>& fRelations;
};

// The best plan by definition: from the strongest cell on, keep whatever some plan lets keep.
std::vector<index_t> BestSources(const EveryPlan& plans, const std::vector<index_t>& strongestFirst) {
    std::set<index_t> kept;
    for (const index_t cell : strongestFirst) {
        kept.insert(cell);
        if (!plans.Allows(kept)) kept.erase(cell);
    }
    return {kept.begin(), kept.end()};
}

TEST(Planner, RandomRelationsThePlanIsTheBestOfAll) {
    std::mt19937 random(20240611);
    const auto below = [&](std::size_t bound) { return static_cast<index_t>(random() % bound); };
    int planned = 0;
    for (int round = 0; round < 400; ++round) {
        const std::size_t cells = 3 + below(5);
        std::vector<clauses_t> relations;
        for (std::size_t count = 1 + below(4); count > 0; --count) {
            std::vector<index_t> all(cells);
            for (index_t i = 0; i < cells; ++i)
                all[i] = i;
            std::ranges::shuffle(all, random);
            all.resize(2 + below(2));
            clauses_t clauses = AnyFromTheOthers(all);
            clauses.resize(1 + below(clauses.size()));
            relations.push_back(clauses);
        }
        planner_t planner = PlannerOf(cells);
        for (const clauses_t& clauses : relations)
            planner.add_relation(clauses);
        const EveryPlan plans(cells, relations);
        ASSERT_TRUE(planner.plan());
        ASSERT_EQ(planner.conflicts().empty(), plans.Allows({})) << "round " << round;
        if (!planner.conflicts().empty()) continue;
        ++planned;
        std::vector<index_t> order(cells);
        for (index_t i = 0; i < cells; ++i)
            order[i] = i;
        EXPECT_EQ(Sources(planner, cells), BestSources(plans, order)) << "round " << round;
        // All cells touched, so that their order is known whatever the ranks along the flow.
        std::ranges::shuffle(order, random);
        for (auto cell = order.rbegin(); cell != order.rend(); ++cell)
            planner.touch(*cell);
        planner.plan();
        EXPECT_EQ(Sources(planner, cells), BestSources(plans, order)) << "round " << round;
    }
    EXPECT_GT(planned, 100);
}

// The same rules spelled out: every cell asks in turn, and each wish is tried on a plan made from nothing.
class PlainPlanner {
public:
    PlainPlanner(std::vector<char> keepsValue, const std::vector<clauses_t>& relations)
        : fKeepsValue(std::move(keepsValue)), fRelations(relations), fActive(relations.size(), true) {
        std::set<index_t> cells;
        for (index_t relation = 0; relation < relations.size(); ++relation)
            cells.merge(CellsOf(relation));
        fStrongestFirst.assign(cells.begin(), cells.end());
    }

    void Touch(index_t cell) {
        if (fStrongestFirst.front() == cell || std::erase(fStrongestFirst, cell) == 0) return;
        fStrongestFirst.insert(fStrongestFirst.begin(), cell);
        fIsStale = true;
    }
    void SetActive(index_t relation, bool active) {
        fIsStale = fIsStale || fActive[relation] != static_cast<char>(active);
        fActive[relation] = active;
    }

    // The clause that each relation runs; empty if there is no plan.
    const std::vector<index_t>& Plan() {
        if (!std::exchange(fIsStale, false)) return fPlan;
        std::set<index_t> stays;
        fPlan = Attempt(stays);
        if (fPlan.empty()) return fPlan;
        for (const index_t cell : fStrongestFirst)
            if (fKeepsValue[cell]) Keep(cell, stays);
        RankAlongFlow();
        return fPlan;
    }

private:
    std::set<index_t> CellsOf(index_t relation) const {
        const planner_t::clause_t& clause = fRelations[relation].front();
        std::set<index_t> cells(clause.inputs.begin(), clause.inputs.end());
        cells.insert(clause.outputs.begin(), clause.outputs.end());
        return cells;
    }

    void Keep(index_t cell, std::set<index_t>& stays) {
        stays.insert(cell);
        if (!IsWritten(cell)) return;
        std::vector<index_t> plan = Attempt(stays);
        if (plan.empty())
            stays.erase(cell);
        else
            fPlan = std::move(plan);
    }

    // Whatever only one relation mentions can be written by that relation last.
    std::vector<index_t> Attempt(const std::set<index_t>& stays) const {
        std::vector<index_t> plan(fRelations.size(), kNone);
        std::vector<int> references(fKeepsValue.size());
        for (const index_t cell : stays)
            ++references[cell];
        std::set<index_t> pending;
        for (index_t relation = 0; relation < fRelations.size(); ++relation)
            if (fActive[relation]) pending.insert(relation);
        for (const index_t relation : pending)
            for (const index_t cell : CellsOf(relation))
                ++references[cell];
        std::vector<index_t> free;
        for (auto cell = fStrongestFirst.rbegin(); cell != fStrongestFirst.rend(); ++cell)
            if (references[*cell] == 1) free.push_back(*cell);
        for (std::size_t next = 0; next < free.size(); ++next) {
            const auto found =
                std::ranges::find_if(pending, [&](index_t relation) { return CellsOf(relation).contains(free[next]); });
            if (found == pending.end()) continue;
            plan[*found] = FreestClause(*found, free[next], references);
            if (plan[*found] == kNone) continue;
            for (const index_t cell : CellsOf(*found))
                if (--references[cell] == 1) free.push_back(cell);
            pending.erase(found);
        }
        return pending.empty() ? plan : std::vector<index_t>();
    }

    index_t FreestClause(index_t relation, index_t cell, const std::vector<int>& references) const {
        index_t best = kNone;
        const clauses_t& clauses = fRelations[relation];
        for (index_t clause = 0; clause < clauses.size(); ++clause) {
            const std::vector<index_t>& outputs = clauses[clause].outputs;
            if (std::ranges::count(outputs, cell) > 0 &&
                std::ranges::all_of(outputs, [&](index_t output) { return references[output] == 1; }) &&
                (best == kNone || outputs.size() < clauses[best].outputs.size()))
                best = clause;
        }
        return best;
    }

    const planner_t::clause_t* WriterOf(index_t cell) const {
        for (index_t relation = 0; relation < fPlan.size(); ++relation) {
            if (fPlan[relation] == kNone) continue;
            const planner_t::clause_t& clause = fRelations[relation][fPlan[relation]];
            if (std::ranges::count(clause.outputs, cell) > 0) return &clause;
        }
        return nullptr;
    }
    bool IsWritten(index_t cell) const { return WriterOf(cell) != nullptr; }

    // The strongest cell of which all that it is computed from is ranked comes next.
    void RankAlongFlow() {
        const auto isRanked = [&](index_t cell) { return std::ranges::count(fStrongestFirst, cell) == 0; };
        const auto isReady = [&](index_t cell) {
            const planner_t::clause_t* const writer = WriterOf(cell);
            return !writer || std::ranges::all_of(writer->inputs, isRanked);
        };
        std::vector<index_t> ranked;
        while (!fStrongestFirst.empty()) {
            const auto next = std::ranges::find_if(fStrongestFirst, isReady);
            ranked.push_back(*next);
            fStrongestFirst.erase(next);
        }
        fStrongestFirst = std::move(ranked);
    }

    std::vector<char> fKeepsValue;
    const std::vector<clauses_t>& fRelations;
    std::vector<char> fActive;
    std::vector<index_t> fStrongestFirst;
    std::vector<index_t> fPlan;
    bool fIsStale = true;
};

// Relations of two to four cells, each joined with the one before, with clauses of one output and often one of two.
std::vector<clauses_t> RandomRelations(std::mt19937& random, std::size_t cells, std::size_t count) {
    std::vector<clauses_t> relations;
    std::vector<index_t> all(cells);
    for (index_t i = 0; i < cells; ++i)
        all[i] = i;
    for (; count > 0; --count) {
        std::ranges::shuffle(all, random);
        if (!relations.empty()) std::swap(all[0], *std::ranges::find(all, relations.back().front().outputs.front()));
        const std::vector<index_t> some(all.begin(), all.begin() + 2 + random() % std::min<std::size_t>(3, cells - 1));
        clauses_t clauses = AnyFromTheOthers(some);
        clauses.resize(1 + random() % clauses.size());
        if (some.size() > 2 && random() % 2 == 0)
            clauses.insert(clauses.begin() + random() % clauses.size(),
                           {{some.begin() + 2, some.end()}, {some[0], some[1]}});
        relations.push_back(clauses);
    }
    return relations;
}

TEST(Planner, RandomEditsThePlansAreThoseOfTheRulesSpelledOut) {
    std::mt19937 random(20261123);
    int plans = 0;
    for (int round = 0; round < 1000; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const std::size_t cells = 3 + random() % 14;
        const bool allKeep = random() % 2 == 0;
        const std::vector<clauses_t> relations = RandomRelations(random, cells, 1 + random() % cells);
        std::vector<char> keepsValue(cells, true);
        planner_t planner;
        for (char& keeps : keepsValue) {
            keeps = allKeep || random() % 4 > 0;
            planner.add_cell(keeps);
        }
        for (const clauses_t& clauses : relations)
            planner.add_relation(clauses);
        PlainPlanner plain(keepsValue, relations);
        for (int step = 0; step < 12; ++step) {
            planner.plan();
            const std::vector<index_t>& expected = plain.Plan();
            ASSERT_EQ(planner.conflicts().empty(), !expected.empty());
            if (expected.empty()) break;
            ++plans;
            for (index_t relation = 0; relation < relations.size(); ++relation)
                ASSERT_EQ(planner.clause_of(relation), expected[relation]) << "step " << step;
            for (std::size_t edits = 1 + random() % 4; edits > 0; --edits) {
                const auto relation = static_cast<index_t>(random() % relations.size());
                const bool active = random() % 3 > 0;
                if (random() % 6 == 0) planner.set_active(relation, active), plain.SetActive(relation, active);
                const auto cell = static_cast<index_t>(random() % cells);
                planner.touch(cell);
                plain.Touch(cell);
            }
        }
    }
    EXPECT_GT(plans, 1000);
}

// Running totals: c2 = c0 + c1, c4 = c2 + c3, c6 = c4 + c5, ...
planner_t RunningTotals(index_t relations) {
    planner_t planner = PlannerOf(2 * relations + 1);
    for (index_t i = 0; i < relations; ++i)
        planner.add_relation(AnyFromTheOthers({2 * i, 2 * i + 1, 2 * i + 2}));
    planner.plan();
    return planner;
}

// A table whose rows and columns have totals.
planner_t TotalsOfATable(index_t side) {
    planner_t planner = PlannerOf(side * side + 2 * side);
    for (index_t line = 0; line < side; ++line) {
        std::vector<index_t> row{side * side + line}, column{side * side + side + line};
        for (index_t i = 0; i < side; ++i) {
            row.push_back(line * side + i);
            column.push_back(i * side + line);
        }
        planner.add_relation(AnyFromTheOthers(row));
        planner.add_relation(AnyFromTheOthers(column));
    }
    planner.plan();
    return planner;
}

TEST(Planner, SettingAllCellsCostsAFewChoicesForEveryRelation) {
    std::mt19937 random(1);
    const auto choicesOf = [&](planner_t planner, index_t cells, int order) {
        std::vector<index_t> touched(cells);
        for (index_t i = 0; i < cells; ++i)
            touched[i] = i;
        if (order == 1) std::ranges::reverse(touched);
        if (order == 2) std::ranges::shuffle(touched, random);
        const std::uint64_t before = planner.choice_count();
        for (const index_t cell : touched)
            planner.touch(cell);
        planner.plan();
        return planner.choice_count() - before;
    };
    for (const int order : {0, 1, 2}) {
        EXPECT_LE(choicesOf(RunningTotals(2000), 4001, order), 4U * 2000) << order;
        EXPECT_LE(choicesOf(TotalsOfATable(30), 960, order), 8U * 60) << order;
    }
}

TEST(Planner, LongChainIsPlannedFromEitherEnd) {
    constexpr index_t kCells = 20'000;
    planner_t planner = PlannerOf(kCells);
    for (index_t i = 0; i + 1 < kCells; ++i)
        planner.add_relation(AnyFromTheOthers({i, i + 1}));
    planner.plan();
    EXPECT_THAT(Sources(planner, kCells), ElementsAre(0));
    planner.touch(kCells - 1);
    planner.plan();
    EXPECT_THAT(Sources(planner, kCells), ElementsAre(kCells - 1));
    EXPECT_EQ(planner.selections().front().relation, kCells - 2);
}

} // namespace
} // namespace orrin
