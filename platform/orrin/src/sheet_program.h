#pragma once

#include "adjacency.h"
#include "name_index.h"
#include "sheet_script.h"

#include "orrin/expression.h"
#include "orrin/planner.h"
#include "orrin/sheet.h"

#include <array>
#include <cstdint>
#include <vector>

namespace orrin {

// A sheet's script with its names resolved, checked and put in order: what the engine runs. Does not change, except for
// the state of the planners.
//
// Order of an update: inputs; clauses that depend on inputs alone; initialisers; then each of the two stages. The
// second stage has all that conditional relations can influence, the first all the rest, so that conditions, which read
// the first stage only, are evaluated between them. In each stage run the clauses that do not depend on a plan's
// choice, the planned relations in the plan's order, then the clauses that depend on them.
struct sheet_program_t {
    struct cell_t {
        name_t name;
        cell_kind_t kind = cell_kind_t::constant;
        bool linked = false;
        std::uint32_t offset = 0;
        index_t initialiser = kNone; // an expression
        index_t stage = 0;           // of its planner
        index_t planned = kNone;     // in that planner
        index_t fixedWriter = kNone; // the clause that writes it whatever the plan

        bool can_be_set() const { return kind == cell_kind_t::input || kind == cell_kind_t::interface; }
    };
    // Where an expression finds one of its variables.
    struct variable_t {
        index_t cell = kNone; // kNone: no cell, to be looked up by name
        bool contributed = false;
    };
    struct expression_of_t {
        expression_t code;
        range_t variables;    // in variables
        index_t cell = kNone; // that is computed, the first one of several; kNone for conditions
        bool callsHost = false;
    };
    struct clause_t {
        index_t relation = 0;
        index_t expression = 0;
        range_t targets; // in targets
    };
    struct relation_t {
        range_t clauses;
        index_t condition = kNone; // in conditions
        std::uint32_t offset = 0;
        bool isDefinition = false;
        index_t stage = 0;
        index_t planned = kNone; // in the stage's planner
    };
    struct stage_t {
        planner_t planner;
        std::vector<index_t> relations; // by their number in the planner
        std::vector<index_t> cells;
        std::vector<index_t> clausesBefore; // in order
        std::vector<index_t> clausesAfter;
    };

    name_t name;
    source_ptr_t source;
    std::vector<cell_t> cells;
    name_index_t cellsByName;
    std::vector<expression_of_t> expressions;
    std::vector<variable_t> variables;
    std::vector<clause_t> clauses;
    std::vector<index_t> targets;
    std::vector<relation_t> relations;
    std::vector<index_t> conditions;   // expressions
    std::vector<index_t> callers;      // expressions that call functions of the host
    adjacency_t valueReaders;          // expressions, by the cell whose value they read
    adjacency_t contributedReaders;    // expressions, by the cell whose contributed value they read
    std::vector<index_t> inputClauses; // that depend on constants and inputs alone, in order
    std::array<stage_t, 2> stages;
    std::vector<error_t> warnings;

    error_t error(std::uint32_t offset, std::string message) const { return source->error(offset, std::move(message)); }
    // By a definition that does not read the cell's own contributed value.
    bool is_computed(index_t cell) const;
    std::string quoted(index_t cell) const { return in_quotes(cells[cell].name.text()); }
};

// True for a name that is no cell but that expressions may use. Must not throw.
using known_variable_t = boost::function<bool(name_t)>;

// Throws error_t.
sheet_program_t compile_sheet(sheet_script_t script, const known_variable_t& known);

// Decides on stages and order: fills in stages, inputClauses and what cells and relations say of them. Throws error_t
// for definitions in a circle and for relations and conditions that cannot be. A part of compile_sheet.
void order_sheet(sheet_program_t& program);

} // namespace orrin
